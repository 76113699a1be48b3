#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets up, builds the fuzzers in build-fuzz and runs each for a while. What they find is in build-fuzz/fuzz.
#   tests/fuzz/run.sh [SECONDS]   processor time for each fuzzer, 3600 without a number

source "$(dirname "${BASH_SOURCE[0]}")/../../cmake/setup.sh"

seconds=${1:-3600}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || fail "'$seconds' is no number of seconds."

need "${build_packages[@]}" clang libclang-rt-dev
cmake --preset release -B build-fuzz -DCMAKE_CXX_COMPILER=clang++ -DSPECKMEND_FUZZ=ON \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1" >/dev/null ||
    fail "configuring the fuzzers failed."
cmake --build build-fuzz --target fuzzers || fail "building the fuzzers failed."
tests/fuzz/campaign.sh build-fuzz/fuzzers tests/fuzz build-fuzz/fuzz "$seconds"
