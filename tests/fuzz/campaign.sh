#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs built fuzzers, one at a time and in turns, until each has had its processor time.
#   campaign.sh PROGRAMS INPUTS RESULTS SECONDS
# PROGRAMS is the folder of the programs fuzz_*, INPUTS that of the folders corpus and dictionary. RESULTS gets
#   table.txt         the figures so far
#   corpus/NAME       new inputs, which a later campaign goes on with
#   minimised/NAME    the fewest inputs that reach as much; worth a look for the project's own corpus
#   findings/NAME     inputs that ended the program
#   log/NAME-ROUND.log
# Asked to end (SIGTERM, SIGINT), it finishes the running turn, minimises and prints the table.

set -euo pipefail

programs=$1 inputs=$2 results=$3 seconds=$4
turn=300          # seconds
most_failures=10  # of one fuzzer, before it is left alone
interrupted=72    # exit status of a fuzzer that was asked to end

declare -A longest=([parameterfile]=16384) # bytes of an input; the others:
usual_length=4096
declare -A rounds runs micros edges failures
names=()
for program in "$programs"/fuzz_*; do
    name=${program##*/fuzz_}
    names+=("$name")
    rounds[$name]=0 runs[$name]=0 micros[$name]=0 edges[$name]=0 failures[$name]=0
    mkdir -p "$results"/{log,"corpus/$name","minimised/$name","findings/$name"}
done

# last_number PATTERN FILE: the number behind the last match of the pattern, or 0.
last_number() {
    local found
    found=$(grep -aoE "$1[0-9]+" "$2" | tail -n 1 | grep -oE '[0-9]+$') || found=0
    echo "$found"
}

# fuzz NAME ARGUMENT...: sets `used` to the microseconds of processor time, user and system, and `status`.
fuzz() {
    local name=$1 log=$results/log/$1-${rounds[$1]}.log times
    shift
    status=0
    local TIMEFORMAT='%3U %3S'
    # The fuzzer heeds the signals even so; the shell that measures it must not go first.
    times=$(trap '' INT TERM; { time "$programs/fuzz_$name" "$@" >"$log" 2>&1; } 2>&1) || status=$?
    times=${times//[!0-9 ]/}
    used=$(((10#${times% *} + 10#${times#* }) * 1000))
}

take_turn() {
    local name=$1 left=$((seconds - micros[$1] / 1000000)) log
    rounds[$name]=$((rounds[$name] + 1))
    log=$results/log/$name-${rounds[$name]}.log
    echo "$(date +%T) $name: round ${rounds[$name]}, seed ${rounds[$name]}, $((micros[$name] / 1000000)) s so far"
    fuzz "$name" -seed="${rounds[$name]}" -max_total_time="$((left < turn ? left : turn))" \
        -max_len="${longest[$name]:-$usual_length}" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
        -dict="$inputs/dictionary/$name.dict" -artifact_prefix="$results/findings/$name/" \
        "$results/corpus/$name" "$inputs/corpus/$name"
    runs[$name]=$((runs[$name] + $(last_number 'number_of_executed_units: *' "$log")))
    micros[$name]=$((micros[$name] + used))
    local reached
    reached=$(last_number ' cov: ' "$log")
    edges[$name]=$((reached > edges[$name] ? reached : edges[$name]))
    if [ "$status" -ne 0 ] && [ "$status" -ne "$interrupted" ]; then
        failures[$name]=$((failures[$name] + 1))
        echo "$name ended with status $status, see $log"
    fi
}

wants_more() {
    [ -z "$ending" ] && [ $((micros[$1])) -lt $((seconds * 1000000)) ] && [ "${failures[$1]}" -lt $most_failures ]
}

minimise() {
    rm -rf "$results/minimised/$1"
    mkdir "$results/minimised/$1"
    rounds[$1]=minimise
    fuzz "$1" -merge=1 -timeout=10 -rss_limit_mb=2048 "$results/minimised/$1" "$results/corpus/$1" "$inputs/corpus/$1"
    [ "$status" -eq 0 ] || echo "$1 could not be minimised, see $results/log/$1-minimise.log"
}

table() {
    printf '%-14s %12s %12s %8s %9s\n' target runs 'CPU seconds' edges findings
    local name
    for name in "${names[@]}"; do
        printf '%-14s %12d %12d %8d %9d\n' "$name" "${runs[$name]}" $((micros[$name] / 1000000)) "${edges[$name]}" \
            "$(find "$results/findings/$name" -type f | wc -l)"
    done
}

# Files of the programs are gone with the memory: a disk would take most of the time.
export TMPDIR
TMPDIR=$(mktemp -d -p "$([ -w /dev/shm ] && echo /dev/shm || echo /tmp)")
trap 'rm -rf "$TMPDIR"' EXIT
ending=
trap 'ending=yes' INT TERM
export UBSAN_OPTIONS=print_stacktrace=1
going=yes
while [ -n "$going" ]; do
    going=
    for name in "${names[@]}"; do
        wants_more "$name" || continue
        take_turn "$name"
        table >"$results/table.txt"
        going=yes
    done
done
trap - INT TERM
for name in "${names[@]}"; do
    minimise "$name"
done
cat "$results/table.txt"
for name in "${names[@]}"; do
    [ "${failures[$name]}" -eq 0 ] || exit 1
done
