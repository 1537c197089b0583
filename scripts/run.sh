#!/usr/bin/env bash
# Shows Lumivane running: builds Lumivane.scr, starts it full-screen (/s) under Wine, saves a few
# screenshots over some seconds, then ends it with a key press and stops what it started.
#
#   scripts/run.sh [screenshot-folder]        (default: ./screenshots)
#
# It runs on your own X display when DISPLAY is set and works, else on a virtual two-monitor
# display. LUMIVANE_VIRTUAL_DISPLAY=1 forces the virtual one. LUMIVANE_SHOTS (default 4) and
# LUMIVANE_SHOT_INTERVAL_MS (default 2000) set how many screenshots and how far apart.
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
SHOTS_DIR="${1:-$PWD/screenshots}"
mkdir -p "$SHOTS_DIR"
SHOTS_DIR="$(cd "$SHOTS_DIR" && pwd)"

bash "$ROOT/scripts/install-deps.sh" </dev/null

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

rm -f "$SHOTS_DIR"/shot-*.png
echo "run.sh: running Lumivane.scr /s on $DISPLAY"
# The end-to-end driver starts the saver, takes the screenshots with GDI, and ends the run with
# a key press, as a user would.
(cd "$ROOT/build/win/tests" &&
  "$LUMIVANE_WINE64" ./lumivane_e2e.exe \
    --scr "$(windows_path "$ROOT/build/win/Lumivane.scr")" \
    --capture "$(windows_path "$SHOTS_DIR")" \
    --shots "${LUMIVANE_SHOTS:-4}" --interval "${LUMIVANE_SHOT_INTERVAL_MS:-2000}" </dev/null)

echo "run.sh: screenshots in $SHOTS_DIR:"
ls -1 "$SHOTS_DIR"/shot-*.png | sed 's/^/  /'
