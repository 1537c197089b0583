#!/usr/bin/env bash
# Takes the README's pictures from the real programs on the virtual display: with scripts/run.sh,
# one screenshot per presentation at a moment that shows its character, cut to the first monitor
# and shrunk into docs/show-<presentation>.png; and the settings dialog of Lumivane.exe, cut to
# its window, into docs/settings-dialog.png.
#
#   scripts/docs-pictures.sh [presentation:milliseconds ... | settings] Needs ImageMagick and
# xdotool, which it installs when missing.
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
bash "$ROOT/scripts/install-deps.sh" imagemagick xdotool mate-backgrounds </dev/null
shots="$(mktemp -d)"
trap 'rm -rf "$shots"' EXIT

# Milliseconds from start to the screenshot, with the default rest of 10 s: the Fader at full
# strength, the Slider sliding out to the right, the Panner well into its move, Reflections at
# rest, Faller with its veil lifted, FourUp with three of its four photos on. Arguments such as
# "faller:12000" take only those.
entries="${*:-fader:6000 slider:15500 kber:11000 reflections:9000 faller:14000 fourup:17000 settings}"

# The settings dialog as a new user sees it once the first import is done, in English, with a few
# real photos in the Pictures folder of the prefix's user.
settings_picture() {
  cmake -S "$ROOT" -B "$ROOT/build/win" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake" -DCMAKE_BUILD_TYPE=Release >/dev/null
  cmake --build "$ROOT/build/win" --target Lumivane LumivaneApp >/dev/null
  (
    export LUMIVANE_BUILD_DIR="$ROOT/build"
    # shellcheck source=scripts/wine-env.sh
    source "$ROOT/scripts/wine-env.sh"
    lumivane_wine_start >/dev/null
    lumivane_wine reg delete 'HKCU\Software\LumivaneW' /f >/dev/null 2>&1 || true
    local pictures="$WINEPREFIX/drive_c/users/$(id -un)/Pictures"
    mkdir -p "$pictures/Nature"
    cp /usr/share/backgrounds/mate/nature/{Aqua,Dune,Garden,Storm}.jpg "$pictures/Nature/"
    # Alone in a folder: Wine doesn't draw the saver's preview, a window of another process, and
    # leaves its place unpainted; without the saver beside it the frame stays black.
    local alone="$WINEPREFIX/drive_c/lumivane-picture"
    mkdir -p "$alone" && cp "$ROOT/build/win/Lumivane.exe" "$alone/"
    lumivane_wine "$alone/Lumivane.exe" --settings &
    local window="" i
    for i in $(seq 100); do
      window="$(xdotool search --onlyvisible --name '^Lumivane settings$' 2>/dev/null | head -1 || true)"
      [ -n "$window" ] && break
      sleep 0.2
    done
    [ -n "$window" ] || { echo "docs-pictures: no settings dialog" >&2; exit 1; }
    # The tray's first import starts 3 s after it and takes a few seconds under Wine.
    sleep 10
    import -window "$window" -strip "$ROOT/docs/settings-dialog.png"
  )
  echo "docs-pictures: docs/settings-dialog.png"
}

for entry in $entries; do
  if [ "$entry" = settings ]; then
    settings_picture
    continue
  fi
  show="${entry%%:*}"
  LUMIVANE_VIRTUAL_DISPLAY=1 LUMIVANE_PAUSE= LUMIVANE_SHOTS=1 LUMIVANE_SHOT_INTERVAL_MS="${entry#*:}" \
    bash "$ROOT/scripts/run.sh" --show "$show" "$shots/$show"
  /usr/bin/convert "$shots/$show/shot-1.png" -crop 1024x768+0+0 +repage -resize 512x \
    -colors 256 -strip "$ROOT/docs/show-$show.png"
  echo "docs-pictures: docs/show-$show.png"
done
