#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the PNGs and main.ico from the SVG drawings beside this script. Needs librsvg2-bin and imagemagick.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

for drawing in *.svg; do
    name=${drawing%.svg}
    [ "$name" = main ] && continue
    rsvg-convert --width 32 --height 32 "$drawing" --output "$name.png"
    rsvg-convert --width 64 --height 64 "$drawing" --output "$name@2x.png"
done

# The window's icon holds three sizes, each drawn at its own size.
sizes=$(mktemp -d)
trap 'rm -rf "$sizes"' EXIT
for size in 16 32 48; do
    rsvg-convert --width "$size" --height "$size" main.svg --output "$sizes/$size.png"
done
/usr/bin/convert "$sizes"/16.png "$sizes"/32.png "$sizes"/48.png main.ico
