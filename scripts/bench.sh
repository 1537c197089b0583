#!/usr/bin/env bash
# Benchmarks; not tests: they assert nothing. In order:
#   1. our own cost per frame of each presentation, on the host (Google Benchmark), drawing on a
#      surface that does nothing;
#   2. photo decoding: milliseconds per photo of LoadPhotoSized (WIC under Wine) to 1920x1080 and
#      3840x2160, for real photos from 2 to 18 MP, next to native djpeg (libjpeg-turbo) decoding
#      the same files in full, as a ratio;
#   3. the real show under Wine on two virtual monitors of LUMIVANE_SCREEN (default 1920x1080):
#      per presentation, the render loop's first pass and the time to the first photo, its other
#      passes (fps, median and worst), and the passes that upload a photo apart;
#   4. the companion's photo import: the downscaler's filters on the host (milliseconds and PSNR),
#      then photos per second of ImportPhoto under Wine for the same real photos, each to a copy
#      that covers 1920x1080, next to ImageMagick's convert -resize of the same files to the same
#      size natively, as a ratio; and the peak memory of importing the 18 MP photo;
#   5. a 12 MP photo through the saver's decoding chain to 1920x1080 as if its orientation tag were
#      1, 6 or 4, the turned ones as a ratio to the upright one.
#
#   bash scripts/bench.sh            # 10 decoding runs per file and size, 30 s per presentation
#   LUMIVANE_BENCH_RUNS=30 LUMIVANE_BENCH_SHOW_SECONDS=40 bash scripts/bench.sh
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$ROOT"
RUNS="${LUMIVANE_BENCH_RUNS:-10}"
BENCH_BUILD="${LUMIVANE_BENCH_BUILD:-$ROOT/build/bench}"
SHOW_SECONDS="${LUMIVANE_BENCH_SHOW_SECONDS:-30}"
export LUMIVANE_BUILD_DIR="${LUMIVANE_BUILD_DIR:-$ROOT/build}"
export LUMIVANE_SCREEN="${LUMIVANE_SCREEN:-1920x1080x24}"

bash scripts/install-deps.sh libjpeg-turbo-progs mate-backgrounds imagemagick time </dev/null

echo "== our own cost per frame (host, Release, a drawing surface that does nothing)"
cmake -S . -B "$BENCH_BUILD-host" -G Ninja -DCMAKE_BUILD_TYPE=Release -DLUMIVANE_TESTS=ON >/dev/null
cmake --build "$BENCH_BUILD-host" --target lumivane_effect_bench lumivane_resample_bench >/dev/null
"$BENCH_BUILD-host/tests/bench/lumivane_effect_bench" 2>&1 | grep -v 'built as DEBUG'

cmake -S . -B "$BENCH_BUILD" -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake \
  -DCMAKE_BUILD_TYPE=Release -DLUMIVANE_TESTS=ON >/dev/null
cmake --build "$BENCH_BUILD" --target lumivane_wine_bench >/dev/null
BENCH="$BENCH_BUILD/tests/bench/lumivane_wine_bench.exe"

# shellcheck source=scripts/wine-env.sh
source "$ROOT/scripts/wine-env.sh"
lumivane_wine_start >/dev/null

winpath() { echo "Z:${1//\//\\}"; }

# Real photos: Elephants at 2.1, 8.3 and 17.9 MP, and Wood at 4.9 MP.
files=()
for file in /usr/share/backgrounds/mate/abstract/Elephants{,_3840x2160,_5640x3172}.jpg \
            /usr/share/backgrounds/mate/nature/Wood.jpg; do
  [ -f "$file" ] && files+=("$file")
done

# Mean milliseconds of a full djpeg decode of $1 over $RUNS runs (output thrown away).
djpeg_ms() {
  local start end
  start=$(date +%s%N)
  for _ in $(seq "$RUNS"); do djpeg -outfile /dev/null "$1"; done
  end=$(date +%s%N)
  awk -v ns=$((end - start)) -v runs="$RUNS" 'BEGIN { printf "%.1f", ns / 1e6 / runs }'
}

winfiles=()
for file in "${files[@]}"; do winfiles+=("$(winpath "$file")"); done
results="$(lumivane_wine "$BENCH" decode "$RUNS" "${winfiles[@]}" | tr -d '\r')"

echo
echo "== photo decoding: ms per photo, mean of $RUNS runs; ratio = LoadPhotoSized / djpeg"
printf '%-28s %10s %9s %14s %7s %14s %7s\n' file pixels djpeg "1920x1080" ratio "3840x2160" ratio
i=0
while read -r size full ultra _; do
  file="${files[$i]}"
  native="$(djpeg_ms "$file")"
  awk -v name="$(basename "$file")" -v size="$size" -v d="$native" -v f="$full" -v u="$ultra" \
    'BEGIN { split(size, s, "x"); mp = s[1] * s[2] / 1e6;
             printf "%-28s %6.1f MP %9.1f %14.1f %7.2f %14.1f %7.2f\n",
                    name, mp, d, f, f / d, u, u / d }'
  i=$((i + 1))
done <<<"$results"

# The show: real photos in a photo directory of the bench's own, inside the build tree.
show_dir="$BENCH_BUILD/show"
show_photos="$show_dir/Lumivane/Lumivane ScreenSaver"
mkdir -p "$show_photos"
for file in /usr/share/backgrounds/mate/nature/{Dune,Storm,Garden,Wood}.jpg; do
  name="$(basename "$file" .jpg)"
  [ -f "$file" ] && cp -n "$file" "$show_photos/$name-mate0000.jpg"
done
echo
echo "== the show under Wine: two monitors of ${LUMIVANE_SCREEN%x*}, ${SHOW_SECONDS} s each, SaverPause 0"
echo "   Direct2D renders in software here (Wine on Xvfb): these figures describe this machine's"
echo "   CPU renderer, not a GPU. A pass draws both monitors. ms; median and worst are of the passes"
echo "   that upload no photo, the first pass apart; the uploads' passes are counted and their median"
echo "   given apart."
printf '%-12s %11s %12s %7s %6s %7s %7s %8s %14s\n' show first-pass first-photo passes fps \
  median worst uploads upload-median
for show in fader slider kber reflections faller fourup; do
  lumivane_wine "$BENCH" show "$(winpath "$show_dir")" "$show" "$SHOW_SECONDS" </dev/null | tr -d '\r' |
    awk '{ printf "%-12s %11s %12s %7s %6s %7s %7s %8s %14s\n", $1, $2, $3, $4, $5, $6, $7, $8, $9 }'
done

echo
echo "== the photo import's downscaler (host, Release): 3 channels, best of 3 runs"
echo "   PSNR against the picture's low waves alone; the high ones must vanish (see docs/bench.md)"
"$BENCH_BUILD-host/tests/bench/lumivane_resample_bench"

# Mean milliseconds of ImageMagick's convert of $1 to a copy that covers 1920x1080, over $RUNS runs.
convert_ms() {
  local start end out="$BENCH_BUILD/convert-out.jpg"
  start=$(date +%s%N)
  for _ in $(seq "$RUNS"); do convert "$1" -resize 1920x1080^ -quality 90 "$out"; done
  end=$(date +%s%N)
  rm -f "$out"
  awk -v ns=$((end - start)) -v runs="$RUNS" 'BEGIN { printf "%.1f", ns / 1e6 / runs }'
}

echo
echo "== the photo import: ms per photo, mean of $RUNS runs, to a copy that covers 1920x1080"
echo "   ImportPhoto under Wine (decode, Lanczos-3, JPEG 0.9) next to native convert -resize WxH^"
echo "   -quality 90; ratio = ImportPhoto / convert, below 1 is faster"
printf '%-28s %10s %11s %9s %9s %9s %9s %7s\n' file pixels copy import photos/s convert photos/s ratio
results="$(lumivane_wine "$BENCH" import "$RUNS" "${winfiles[@]}" | tr -d '\r')"
i=0
while read -r size ms copy _; do
  [ "$size" = peak ] && continue
  file="${files[$i]}"
  native="$(convert_ms "$file")"
  awk -v name="$(basename "$file")" -v size="$size" -v copy="$copy" -v m="$ms" -v c="$native" \
    'BEGIN { split(size, s, "x"); printf "%-28s %6.1f MP %11s %9.1f %9.2f %9.1f %9.2f %7.2f\n",
             name, s[1] * s[2] / 1e6, copy, m, 1000 / m, c, 1000 / c, m / c }'
  i=$((i + 1))
done <<<"$results"

# The peak memory of one import of the largest photo, in a process of its own.
largest=/usr/share/backgrounds/mate/abstract/Elephants_5640x3172.jpg
if [ -f "$largest" ]; then
  echo
  echo "== peak memory of importing $(basename "$largest") once (a process of its own)"
  rss_log="$(mktemp)"
  peak="$(/usr/bin/time -f %M -o "$rss_log" "$LUMIVANE_WINE64" "$BENCH" import 1 \
    "$(winpath "$largest")" | tr -d '\r' | awk '$1 == "peak" { print $2, $3 }')"
  read -r after before <<<"$peak"
  echo "   peak working set (GetProcessMemoryInfo): $after MB, of which $before MB before the import"
  echo "   largest resident set of the Wine process (/usr/bin/time): $(awk '{ printf "%.1f", $1 / 1024 }' "$rss_log") MB"
  rm -f "$rss_log"
fi

# A 12 MP photo (4000 x 3000) made from the largest one, through the chain as each orientation.
twelve="$BENCH_BUILD/twelve-mp.jpg"
if [ -f "$largest" ]; then
  [ -f "$twelve" ] || convert "$largest" -resize '4000x3000!' -quality 92 "$twelve"
  echo
  echo "== a 12 MP photo to 1920x1080 through the saver's decoding chain, ms per photo, mean of $RUNS runs"
  echo "   tag 6 (a quarter turn) and 4 (upside down) read the scaled photo from memory; -1: the"
  echo "   flip-rotator can't turn it (Wine's turns only upside down)"
  printf '%-12s %9s %9s %9s %9s %9s\n' pixels "tag 1" "tag 6" ratio "tag 4" ratio
  lumivane_wine "$BENCH" orientation "$RUNS" "$(winpath "$twelve")" | tr -d '\r' |
    awk '{ split($1, s, "x"); r6 = $3 > 0 ? sprintf("%.2f", $3 / $2) : "-";
           printf "%6.1f MP %9.1f %9.1f %9s %9.1f %9.2f\n", s[1] * s[2] / 1e6, $2, $3, r6, $4, $4 / $2 }'
fi
