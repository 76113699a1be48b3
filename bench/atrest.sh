#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What the program takes to start and while nobody touches it, beside plain Qt windows in the same run; without a
# display and on a virtual one.
#   bench/atrest.sh                  start, size and live camera: about four minutes
#   bench/atrest.sh start [ROUNDS]   time and memory of a start, and the size of the program
#   bench/atrest.sh live [SECONDS]   with the smallest camera at 30 frames a second, and with a large one
#   bench/atrest.sh idle [SECONDS]   without a camera, for ten minutes or as long as said
#   bench/atrest.sh profile          what the live view spends its time on, by callgrind
# SPECKMEND_BENCH_FOLDER names another build folder of the release preset, in which most may be built already.

source "$(dirname "${BASH_SOURCE[0]}")/../cmake/setup.sh"

folder=$(realpath -m "${SPECKMEND_BENCH_FOLDER:-build-bench}")
smallest=KV00000752
largest=KV00005472
home=$(mktemp -d)
server=
trap 'cd /; [ -z "$server" ] || kill "$server"; rm -rf "$home"' EXIT

build_programs() {
    cmake --preset release -B "$folder" -DSPECKMEND_BENCH=ON "$@" >/dev/null || fail "configuring failed."
    cmake --build "$folder" --target speckmend speckmend-atrest speckmend-atrest-plain >"$home/log" ||
        { cat "$home/log"; fail "building failed."; }
}

# Settings and files of its own; the smallest camera at 30 frames a second, without the box that says that it stores
# no lists, and one of 20 megapixels beside the usual ones.
make_bench() {
    sed 's/^storage = no/storage = yes/' simulator/default.bench >"$home/cameras.bench"
    printf '\n[camera %s]\nmodel = KV-5472M\nkind = mono\nsize = 5472 x 3648\nlens cap = on\nseed = 43\n' "$largest" \
        >>"$home/cameras.bench"
    cp docs/cameraparameter.xml "$home/"
    chmod 700 "$home"
    cd "$home"
    export LC_ALL=C HOME=$home XDG_CONFIG_HOME=$home XDG_RUNTIME_DIR=$home KELVOSIM_BENCH=$home/cameras.bench
}

# on PLATFORM: where the programs after it run.
on() {
    export QT_QPA_PLATFORM=$1
    [ "$1" = xcb ] && [ -z "$server" ] || return 0
    mkfifo display
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>display 2>/dev/null &
    server=$!
    read -r number <display
    export DISPLAY=:$number
}

on_both() {
    local platform
    for platform in offscreen xcb; do
        on $platform
        "$@"
    done
}

# run NAME PROGRAM ARGUMENT...: the figures that the program prints, after the name that the table gives them.
run() {
    local name=$1 program=$folder/bench/$2 figures
    shift 2
    figures=$(SPECKMEND_STARTED=$EPOCHREALTIME "$program" "$@" 2>/dev/null) ||
        fail "$program $* failed; it says why when it is run by itself."
    echo "$name $figures"
}

# The lowest of each figure by name, and what the first name's are to the second's. First argument: the title.
table() {
    awk -v title="$1" '
        !($1 in seen) { seen[$1] = 1; name[++names] = $1 }
        {
            for (i = 2; i < NF; i += 2) {
                if (!($i in column)) { column[$i] = 1; key[++keys] = $i }
                at = $1 SUBSEP $i
                if (!(at in lowest) || $(i + 1) + 0 < lowest[at]) lowest[at] = $(i + 1) + 0
            }
        }
        END {
            printf "%-28s", title
            for (k = 1; k <= keys; ++k) printf "%14s", key[k]
            for (n = 1; n <= names; ++n) {
                printf "\n  %-26s", name[n]
                for (k = 1; k <= keys; ++k) printf "%14.4g", lowest[name[n], key[k]]
            }
            printf "\n"
            if (names < 2) exit
            printf "  %-26s", name[1] " / " name[2]
            for (k = 1; k <= keys; ++k) {
                other = lowest[name[2], key[k]]
                printf "%14s", (other > 0) ? sprintf("%.2f", lowest[name[1], key[k]] / other) : "-"
            }
            printf "\n"
        }'
}

# Of ROUNDS rounds.
start() {
    local i
    for ((i = 0; i < $1; ++i)); do
        run program speckmend-atrest start
        run plain speckmend-atrest-plain start
        run empty speckmend-atrest-plain start 0 0 empty
    done | table "start, $QT_QPA_PLATFORM"
}

# Over SECONDS seconds.
live() {
    {
        run program speckmend-atrest live "$1" "$smallest"
        run plain speckmend-atrest-plain live "$1"
    } | table "752 x 480, $QT_QPA_PLATFORM"
    run program speckmend-atrest live "$1" "$largest" | table "5472 x 3648, $QT_QPA_PLATFORM"
}

size() {
    cp "$folder/bin/speckmend" stripped
    strip stripped
    echo "stripped program: $(stat -c %s stripped) bytes, of which its icons take" \
        "$(du -cb "$project"/res/*.png "$project"/res/*.ico | tail -1 | cut -f1)"
}

# Over SECONDS seconds, all at the same time: what is measured is processor time, and there is next to none.
idle() {
    local platform running=()
    for platform in offscreen xcb; do
        on $platform
        run program speckmend-atrest rest "$1" >"program-$platform" &
        running+=($!)
        run plain speckmend-atrest-plain rest "$1" >"plain-$platform" &
        running+=($!)
    done
    wait "${running[@]}"
    for platform in offscreen xcb; do
        cat "program-$platform" "plain-$platform" | table "idle, $platform"
    done
}

profile() {
    on offscreen
    valgrind --tool=callgrind --separate-threads=yes --callgrind-out-file=calls --log-file=log \
        "$folder/bench/speckmend-atrest" live 60 "$smallest" 2>/dev/null &
    local program=$!
    sleep 20 # the start and the opening are over
    callgrind_control -z "$program" >/dev/null
    wait "$program"
    callgrind_annotate --inclusive=yes --auto=no calls-01 | grep -v '???:0x' | head -90 # the GUI thread's
}

need "${build_packages[@]}" "${screen_packages[@]}" libbenchmark-dev
mode=${1:-}
case "$mode" in
    '' | start | live | idle) build_programs ;;
    profile)
        need valgrind
        folder=$folder-profile # with line numbers
        build_programs -DCMAKE_CXX_FLAGS=-g1
        ;;
    *) fail "say 'start', 'live', 'idle', 'profile' or nothing" ;;
esac
make_bench
case "$mode" in
    '')
        size
        on_both start 15
        on_both live 20
        ;;
    start)
        size
        on_both start "${2:-15}"
        ;;
    live) on_both live "${2:-20}" ;;
    idle) idle "${2:-600}" ;;
    profile) profile ;;
esac
