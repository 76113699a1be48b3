#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the icons of the desktop from the program's drawing, a picture a size. Needs librsvg2-bin.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

for size in 16 22 24 32 48 64 96 128 256 512; do
    rsvg-convert --width "$size" --height "$size" ../../res/main.svg --output "$size.png"
done
