#!/usr/bin/env bash
# Shows Lumivane running: builds Lumivane.scr, starts it full-screen (/s) under Wine, saves a few
# screenshots of the whole display over some seconds, then ends it with a mouse move and stops
# what it started.
#
#   scripts/run.sh [--show <presentation>|message|crossfade] [screenshot-folder]
#                                                            (default folder: ./screenshots)
#
# The presentation is the value of SaverShow: fader (the default), slider, kber, reflections,
# faller, fourup or random; LUMIVANE_SHOW sets it too. LUMIVANE_PAUSE sets SaverPause ("0" to "5":
# rests of 3 to 60 s; default empty, 10 s). When the Wine prefix's user has no photos yet, a few
# real landscape photos of the Debian package mate-backgrounds are copied into its photo folder
# (inside build/wineprefix only).
#
#   --show message     what a new user sees before any photo has arrived: the photo directory
#                      (ImportsDir) is an empty folder, and every monitor shows the message that
#                      there are no photos yet, bottom left
#   --show crossfade   the plain GDI view of a machine without Direct2D: the nature photos of the
#                      mate-backgrounds package with their captions, a photo resting 3 s
#                      (SaverPause "0"), then fading for 3 s; Wine is told not to load d2d1.dll
#                      (WINEDLLOVERRIDES)
# LUMIVANE_LANGUAGE ("de", "fr", ...; empty: the system's language) sets Language.
#
# It runs on your own X display when DISPLAY is set and works, else on a virtual two-monitor
# display. LUMIVANE_VIRTUAL_DISPLAY=1 forces the virtual one. LUMIVANE_SHOTS (default 4) and
# LUMIVANE_SHOT_INTERVAL_MS (default 2000) set how many screenshots and how far apart.
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
SHOW="${LUMIVANE_SHOW:-fader}"
if [ "${1:-}" = --show ]; then
  SHOW="${2:?--show needs a presentation, message or crossfade}"
  shift 2
fi
SHOTS_DIR="${1:-$PWD/screenshots}"
mkdir -p "$SHOTS_DIR"
SHOTS_DIR="$(cd "$SHOTS_DIR" && pwd)"

bash "$ROOT/scripts/install-deps.sh" mate-backgrounds imagemagick </dev/null

echo "run.sh: building Lumivane.scr"
cmake -S "$ROOT" -B "$ROOT/build/win" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake" -DCMAKE_BUILD_TYPE=Release \
  -DLUMIVANE_TESTS=ON >/dev/null
cmake --build "$ROOT/build/win" --target Lumivane

export LUMIVANE_BUILD_DIR="$ROOT/build"
# shellcheck source=scripts/wine-env.sh
source "$ROOT/scripts/wine-env.sh"
if [ "${LUMIVANE_VIRTUAL_DISPLAY:-0}" = 1 ]; then
  lumivane_wine_start
else
  lumivane_wine_start own-display
fi

pause="${LUMIVANE_PAUSE:-}"
case "$SHOW" in
  message | crossfade)
    # A photo directory of the demo's own inside the prefix; the saver makes its tree in it.
    demo="$WINEPREFIX/drive_c/lumivane-demo-$SHOW"
    rm -rf "$demo"
    mkdir -p "$demo/Lumivane/Lumivane ScreenSaver"
    imports="C:\\lumivane-demo-$SHOW"
    saver_show=""
    if [ "$SHOW" = crossfade ]; then
      # Captions are the file names without their last 13 characters, here "_sample01.jpg".
      n=0
      for photo in /usr/share/backgrounds/mate/nature/*.jpg; do
        n=$((n + 1))
        cp "$photo" "$demo/Lumivane/Lumivane ScreenSaver/$(basename "$photo" .jpg)_sample$(printf %02d $n).jpg"
      done
      pause="${LUMIVANE_PAUSE:-0}"
      export WINEDLLOVERRIDES="$WINEDLLOVERRIDES;d2d1="
    fi
    ;;
  *)
    # The photo directory of the run: the prefix user's Documents, a plain folder of the prefix
    # (see wine-env.sh). Photos are only ever added, and only when the folder holds none.
    documents="$WINEPREFIX/drive_c/users/$(id -un)/Documents"
    photos="$documents/Lumivane/Lumivane ScreenSaver"
    if [ -L "$documents" ]; then
      echo "run.sh: $documents links out of the prefix; not adding photos there" >&2
    elif ! compgen -G "$photos/*.[jJ][pP][gG]" >/dev/null; then
      mkdir -p "$photos"
      # The caption is the file name less its last 13 characters.
      for name in Dune Storm Garden Wood TwoWings; do
        file="/usr/share/backgrounds/mate/nature/$name.jpg"
        [ -f "$file" ] && cp -n "$file" "$photos/$name-mate0000.jpg"
      done
      echo "run.sh: no photos yet; copied a few from mate-backgrounds into $photos"
    fi
    imports="C:\\users\\$(id -un)\\Documents"
    saver_show="$SHOW"
    ;;
esac

rm -f "$SHOTS_DIR"/shot-*.png
for option in "SaverShow=$saver_show" "SaverPause=$pause" "ImportsDir=$imports" \
  "Language=${LUMIVANE_LANGUAGE:-}"; do
  lumivane_wine reg add 'HKCU\Software\LumivaneW' /v "${option%%=*}" /d "${option#*=}" /f \
    >/dev/null 2>&1
done
echo "run.sh: running Lumivane.scr /s ($SHOW) on $DISPLAY"
# The run ends with a mouse move, as a user would end it.
lumivane_run_saver "$ROOT/build/win/Lumivane.scr" "$SHOTS_DIR" "${LUMIVANE_SHOTS:-4}" \
  "${LUMIVANE_SHOT_INTERVAL_MS:-2000}"

echo "run.sh: screenshots in $SHOTS_DIR:"
ls -1 "$SHOTS_DIR"/shot-*.png | sed 's/^/  /'
