#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What the program does with memory.
#   tests/reliability/memory.sh leaks          valgrind over whole ways through the window
#   tests/reliability/memory.sh day [FRAMES]   resident memory over a day of live view, as fast as it goes;
#                                              2592000 shown frames without a number, 30 a second

source "$(dirname "${BASH_SOURCE[0]}")/../../cmake/setup.sh"

# Settings and files of its own.
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
chmod 700 "$home"
export QT_QPA_PLATFORM=offscreen HOME=$home XDG_CONFIG_HOME=$home XDG_RUNTIME_DIR=$home

# A definite leak is an error like any other, and each of them ends the command with status 1.
under_valgrind() {
    valgrind --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite --num-callers=25 \
        --suppressions=cmake/valgrind.supp --error-exitcode=1 "$@" || fail "valgrind has found something."
}

leaks() {
    need "${build_packages[@]}" valgrind
    build dev build-dev tst_wholeway tst_cables
    export QTEST_FUNCTION_TIMEOUT=3600000
    under_valgrind build-dev/tests/tst_wholeway fromTheCameraListToACorrectedImage
    under_valgrind build-dev/tests/tst_cables aWayWithoutACableTrickIsWhole aCableWobblesAtTimesOfItsOwn
}

day() {
    need "${build_packages[@]}"
    build release build speckmend-liveload
    build/tests/speckmend-liveload --size 16x16 --frames 0 --shown "${1:-2592000}" --rate 10000
}

case "${1:-}" in
    leaks) leaks ;;
    day) day "${2:-}" ;;
    *) fail "say 'leaks' or 'day'" ;;
esac
