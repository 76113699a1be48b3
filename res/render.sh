#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the PNGs and main.ico from the SVG drawings beside this script. Needs librsvg2-bin and imagemagick.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

# render drawing size picture: a square picture of that many pixels.
render() {
    rsvg-convert --width "$2" --height "$2" "$1" --output "$3"
}

for drawing in *.svg; do
    name=${drawing%.svg}
    case "$name" in
        main) continue ;;
        about_logo_kelvo) size=128 ;;
        *) size=32 ;;
    esac
    render "$drawing" "$size" "$name.png"
    render "$drawing" $((2 * size)) "$name@2x.png"
done

# The window's icon holds three sizes, each drawn at its own size.
sizes=$(mktemp -d)
trap 'rm -rf "$sizes"' EXIT
for size in 16 32 48; do
    render main.svg "$size" "$sizes/$size.png"
done
/usr/bin/convert "$sizes"/16.png "$sizes"/32.png "$sizes"/48.png main.ico
