#!/usr/bin/env bash
# Benchmark of photo decoding: milliseconds per photo of LoadPhotoSized (WIC under Wine) to
# 1920x1080 and 3840x2160, for a ~2 MP and an ~18 MP JPEG, next to native djpeg (libjpeg-turbo)
# decoding the same files in full, as a ratio. Not a test: it asserts nothing.
#
#   bash scripts/bench.sh            # 10 runs per file and size
#   LUMIVANE_BENCH_RUNS=30 bash scripts/bench.sh
#
# The real photos of the mate-backgrounds package are timed too when it is installed.
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$ROOT"
RUNS="${LUMIVANE_BENCH_RUNS:-10}"
BENCH_BUILD="${LUMIVANE_BENCH_BUILD:-$ROOT/build/bench}"
export LUMIVANE_BUILD_DIR="${LUMIVANE_BUILD_DIR:-$ROOT/build}"

bash scripts/install-deps.sh libjpeg-turbo-progs </dev/null

cmake -S . -B "$BENCH_BUILD" -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake \
  -DCMAKE_BUILD_TYPE=Release -DLUMIVANE_TESTS=ON >/dev/null
cmake --build "$BENCH_BUILD" --target lumivane_photo_bench >/dev/null
BENCH="$BENCH_BUILD/tests/bench/lumivane_photo_bench.exe"

# shellcheck source=scripts/wine-env.sh
source "$ROOT/scripts/wine-env.sh"
lumivane_wine_start >/dev/null

winpath() { echo "Z:${1//\//\\}"; }

photos="$BENCH_BUILD/photos"
mkdir -p "$photos"
files=()
for size in 1920x1080 5184x3456; do
  file="$photos/made-$size.jpg"
  if [ ! -s "$file" ]; then
    lumivane_wine "$BENCH" --make "$(winpath "$file")" "${size%x*}" "${size#*x}"
  fi
  files+=("$file")
done
if [ -d /usr/share/backgrounds/mate ]; then
  for file in /usr/share/backgrounds/mate/nature/Storage.jpg \
              /usr/share/backgrounds/mate/abstract/*.jpg; do
    [ -f "$file" ] && files+=("$file")
  done
fi

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
results="$(lumivane_wine "$BENCH" "$RUNS" "${winfiles[@]}" | tr -d '\r')"

echo "ms per photo, mean of $RUNS runs; ratio = LoadPhotoSized / djpeg"
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
