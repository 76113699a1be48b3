#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets up, builds and runs all tests without a display.
#   ./test.sh          the release build
#   ./test.sh PRESET   one of release, dev, asan, tsan

source "$(dirname "${BASH_SOURCE[0]}")/cmake/setup.sh"

preset=${1:-release}
case "$preset" in
    release) folder=build ;;
    dev | asan | tsan) folder=build-$preset ;;
    *) fail "unknown preset '$preset'. Use release, dev, asan or tsan" ;;
esac

need "${build_packages[@]}" "${screen_packages[@]}"
build "$preset" "$folder"
ctest --preset "$preset" -j "$(nproc)"
