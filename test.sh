#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets up, builds and runs all tests without a display.
#   ./test.sh              the release build
#   ./test.sh PRESET       one of release, dev, asan, tsan
#   ./test.sh clang        the build by clang, in which clazy's complaints are errors
#   ./test.sh armhf        the build for 32-bit ARM, under an emulator
#   ./test.sh armhf-core   of that only the rooms where the width of a word, the layout of a record and the
#                          arithmetic matter

source "$(dirname "${BASH_SOURCE[0]}")/cmake/setup.sh"

core=(camera hotpixels detection fuzz)

preset=${1:-release}
targets=()
tests=()
case "$preset" in
    release) folder=build ;;
    dev | asan | tsan | clang | armhf) folder=build-$preset ;;
    armhf-core)
        preset=armhf
        folder=build-armhf
        targets=("${core[@]/#/tests/}")
        targets=("${targets[@]/%//all}")
        tests=(-L "^($(IFS='|' && echo "${core[*]}"))$")
        ;;
    *) fail "unknown preset '$preset'. Use release, dev, asan, tsan, clang, armhf or armhf-core" ;;
esac

need "${build_packages[@]}" "${screen_packages[@]}"
if [ "$preset" = clang ]; then
    need clang clazy
fi
if [ "$preset" = armhf ]; then
    need "${armhf_packages[@]}"
    cmake/armhf-sysroot.sh
fi
build "$preset" "$folder" "${targets[@]}"
ctest --preset "$preset" -j "$(nproc)" "${tests[@]}"
