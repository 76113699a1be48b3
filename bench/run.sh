#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the benchmarks in build-bench, runs them and prints a table: each one's own time and its ratios.
# Arguments go to every benchmark program; run one by itself for all of its figures. SPECKMEND_BENCH_FOLDER names
# another build folder of the release preset, in which most may be built already.

source "$(dirname "${BASH_SOURCE[0]}")/../cmake/setup.sh"

folder=${SPECKMEND_BENCH_FOLDER:-build-bench}
need "${build_packages[@]}" libbenchmark-dev
cmake --preset release -B "$folder" -DSPECKMEND_BENCH=ON >/dev/null || fail "configuring the benchmarks failed."
cmake --build "$folder" --target benchmarks || fail "building the benchmarks failed."

# A line for each benchmark of a program's CSV: counters with a stroke in their name are ratios.
table() {
    awk -F, -v program="$1" '
        { gsub(/"/, "") }
        $1 == "name" { for (i = 1; i <= NF; ++i) title[i] = $i; next }
        {
            sub(/\/iterations:.*/, "", $1)
            printf "%-48s", program " " $1
            if ($9 == "true") { print "  failed: " $10; failed = 1; next }
            printf "%12.3f %s", $3, $5
            for (i = 11; i <= NF; ++i) if (title[i] ~ /\//) printf "   %s %.1f", title[i], $i
            print ""
        }
        END { exit failed }'
}

printf '%-48s%15s   %s\n' benchmark time ratios
for source in bench/bench_*.cpp; do
    name=$(basename "$source" .cpp)
    "$folder/bench/$name" --benchmark_format=csv "$@" 2>/dev/null | table "${name#bench_}" ||
        fail "$folder/bench/$name failed; it says why when it is run by itself."
done
# Not needed: it says itself what of its packages is missing.
[ ! -x /usr/bin/python3 ] || bench/detection_numpy_opencv.py || fail "the comparison with numpy and OpenCV failed."
