#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets up, builds and starts Speckmend on simulated cameras, with the bench panel beside it.
#   ./run.sh               start the program (without a display: play the tour on a virtual one)
#   ./run.sh --build-only  stop after the build

source "$(dirname "${BASH_SOURCE[0]}")/cmake/setup.sh"

case "${1:-}" in
    '' | --build-only) ;;
    *) fail "unknown option '$1'. Use ./run.sh or ./run.sh --build-only" ;;
esac

need "${build_packages[@]}"
build release build speckmend kelvo-bench speckmend-tour
if [ "${1:-}" = --build-only ]; then
    echo "Built: build/bin/speckmend"
    exit 0
fi

if [ -z "${DISPLAY:-}" ]; then
    need "${screen_packages[@]}"
    echo "There is no display here: playing the tour on a virtual one. Its pictures go into build/tour."
    xvfb-run -a -s '-screen 0 1600x1000x24' build/bin/speckmend-tour build/tour ||
        fail "the tour failed, see above; its pictures are in build/tour."
    exit 0
fi

# The bench file says which cameras there are; the panel edits it, and so may you.
export KELVOSIM_BENCH="$project/build/cameras.bench"
[ -f "$KELVOSIM_BENCH" ] || cp simulator/default.bench "$KELVOSIM_BENCH"
# The program reads its camera settings from the folder that it is started in.
mkdir -p build/run
[ -f build/run/cameraparameter.xml ] || cp docs/cameraparameter.xml build/run/
build/bin/kelvo-bench &
panel=$!
trap 'kill "$panel" 2>/dev/null || true' EXIT
echo "The simulated cameras are in build/cameras.bench; the panel \"Simulated cameras\" edits it."
echo "Their settings at the start are in build/run/cameraparameter.xml."
cd build/run
../bin/speckmend
