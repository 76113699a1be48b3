#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the benchmarks in build-bench and runs them. Arguments go to every benchmark program.

source "$(dirname "${BASH_SOURCE[0]}")/../cmake/setup.sh"

need "${build_packages[@]}" libbenchmark-dev
cmake --preset release -B build-bench -DSPECKMEND_BENCH=ON -DSPECKMEND_TESTS=OFF >/dev/null ||
    fail "configuring the benchmarks failed."
cmake --build build-bench --target benchmarks || fail "building the benchmarks failed."
for source in bench/bench_*.cpp; do
    name=$(basename "$source" .cpp)
    "build-bench/bench/$name" --benchmark_counters_tabular=true "$@" || fail "$name failed."
done
# Not needed: it says itself what of its packages is missing.
[ ! -x /usr/bin/python3 ] || bench/detection_numpy_opencv.py || fail "the comparison with numpy and OpenCV failed."
