#!/usr/bin/env bash
# Takes the README's pictures of the presentations from the real program: scripts/run.sh on the
# virtual display, one screenshot per presentation at a moment that shows its character, cut to
# the first monitor and shrunk into docs/show-<presentation>.png.
#
#   scripts/docs-pictures.sh [presentation:milliseconds ...] Needs ImageMagick, which it
# installs when missing.
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
bash "$ROOT/scripts/install-deps.sh" imagemagick </dev/null
shots="$(mktemp -d)"
trap 'rm -rf "$shots"' EXIT

# Milliseconds from start to the screenshot, with the default rest of 10 s: the Fader at full
# strength, the Slider sliding out to the right, the Panner well into its move, Reflections at
# rest, Faller with its veil lifted, FourUp with three of its four photos on. Arguments such as
# "faller:12000" take only those.
entries="${*:-fader:6000 slider:15500 kber:11000 reflections:9000 faller:14000 fourup:17000}"
for entry in $entries; do
  show="${entry%%:*}"
  LUMIVANE_VIRTUAL_DISPLAY=1 LUMIVANE_PAUSE= LUMIVANE_SHOTS=1 LUMIVANE_SHOT_INTERVAL_MS="${entry#*:}" \
    bash "$ROOT/scripts/run.sh" --show "$show" "$shots/$show"
  /usr/bin/convert "$shots/$show/shot-1.png" -crop 1024x768+0+0 +repage -resize 512x \
    -colors 256 -strip "$ROOT/docs/show-$show.png"
  echo "docs-pictures: docs/show-$show.png"
done
