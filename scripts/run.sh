#!/usr/bin/env bash
# Shows Lumivane running: builds Lumivane.scr, starts it full-screen (/s) under Wine, saves a few
# screenshots over some seconds, then ends it with a key press and stops what it started.
#
#   scripts/run.sh [--show message|crossfade] [screenshot-folder]   (default: ./screenshots)
#
#   --show message     what a new user sees before any photo has arrived: the photo directory
#                      (ImportsDir) is an empty folder, and every monitor shows the message that
#                      there are no photos yet, bottom left
#   --show crossfade   the plain GDI view of a machine without Direct2D: the nature photos of the
#                      mate-backgrounds package (installed if missing) with their captions, a
#                      photo resting 3 s (SaverPause "0"), then fading for 3 s; Wine is told not to
#                      load d2d1.dll (WINEDLLOVERRIDES)
# Both set those values of the options key in the demo's own Wine prefix, and Language to
# LUMIVANE_LANGUAGE ("de", "fr", ...; empty: the system's language).
#
# It runs on your own X display when DISPLAY is set and works, else on a virtual two-monitor
# display. LUMIVANE_VIRTUAL_DISPLAY=1 forces the virtual one. LUMIVANE_SHOTS (default 4) and
# LUMIVANE_SHOT_INTERVAL_MS (default 2000) set how many screenshots and how far apart.
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
SHOW=""
if [ "${1:-}" = --show ]; then
  SHOW="${2:-}"
  shift 2 || true
  case "$SHOW" in
    message | crossfade) ;;
    *) echo "run.sh: --show takes message or crossfade" >&2; exit 2 ;;
  esac
fi
SHOTS_DIR="${1:-$PWD/screenshots}"
mkdir -p "$SHOTS_DIR"
SHOTS_DIR="$(cd "$SHOTS_DIR" && pwd)"

if [ "$SHOW" = crossfade ]; then
  bash "$ROOT/scripts/install-deps.sh" mate-backgrounds </dev/null
else
  bash "$ROOT/scripts/install-deps.sh" </dev/null
fi

echo "run.sh: building Lumivane.scr"
cmake -S "$ROOT" -B "$ROOT/build/win" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake" -DCMAKE_BUILD_TYPE=Release \
  -DLUMIVANE_TESTS=ON >/dev/null
cmake --build "$ROOT/build/win" --target Lumivane lumivane_e2e

export LUMIVANE_BUILD_DIR="$ROOT/build"
# shellcheck source=scripts/wine-env.sh
source "$ROOT/scripts/wine-env.sh"
if [ "${LUMIVANE_VIRTUAL_DISPLAY:-0}" = 1 ]; then
  lumivane_wine_start
else
  lumivane_wine_start own-display
fi

windows_path() { echo "Z:${1//\//\\}"; }

# set_option NAME VALUE: a string value of the options key, in the prefix.
set_option() {
  lumivane_wine reg add 'HKCU\Software\LumivaneW' /v "$1" /t REG_SZ /d "$2" /f >/dev/null 2>&1
}

if [ -n "$SHOW" ]; then
  # A photo directory of the demo's own inside the prefix; the saver makes its tree in it.
  demo="$WINEPREFIX/drive_c/lumivane-demo-$SHOW"
  rm -rf "$demo"
  mkdir -p "$demo/Lumivane/Lumivane ScreenSaver"
  set_option ImportsDir "C:\\lumivane-demo-$SHOW"
  set_option Language "${LUMIVANE_LANGUAGE:-}"
fi
if [ "$SHOW" = crossfade ]; then
  # Captions are the file names without their last 13 characters, here "_sample01.jpg".
  n=0
  for photo in /usr/share/backgrounds/mate/nature/*.jpg; do
    n=$((n + 1))
    cp "$photo" "$demo/Lumivane/Lumivane ScreenSaver/$(basename "$photo" .jpg)_sample$(printf %02d $n).jpg"
  done
  set_option SaverPause 0
  export WINEDLLOVERRIDES="$WINEDLLOVERRIDES;d2d1="
fi

rm -f "$SHOTS_DIR"/shot-*.png
echo "run.sh: running Lumivane.scr /s on $DISPLAY${SHOW:+ (showing the $SHOW)}"
# The end-to-end driver starts the saver, takes the screenshots with GDI, and ends the run with
# a key press, as a user would.
(cd "$ROOT/build/win/tests" &&
  "$LUMIVANE_WINE64" ./lumivane_e2e.exe \
    --scr "$(windows_path "$ROOT/build/win/Lumivane.scr")" \
    --capture "$(windows_path "$SHOTS_DIR")" \
    --shots "${LUMIVANE_SHOTS:-4}" --interval "${LUMIVANE_SHOT_INTERVAL_MS:-2000}" </dev/null)

echo "run.sh: screenshots in $SHOTS_DIR:"
ls -1 "$SHOTS_DIR"/shot-*.png | sed 's/^/  /'
