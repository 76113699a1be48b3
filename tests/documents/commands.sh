#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The commands of the documents: what stands in ```bash blocks, and the project's own scripts and programs where they
# are named in the text. commands.txt says how each is run.
#   commands.sh check       documents and table name the same commands, and what the table refers to is there
#   commands.sh run BUILD   runs each of them; BUILD is the folder of the release build, build in the project's own

set -euo pipefail

own=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$own/../.."
documents=(README.md CONTRIBUTING.md docs/*.md)
table=$own/commands.txt
window_seconds=60

# The lines of ```bash blocks without comments; those that end in a backslash go on.
block_commands() {
    awk '/^ *```/ { inside = !inside && $1 == "```bash"; next } inside' "${documents[@]}" |
        sed -E ':more; /\\$/ { N; s/ *\\\n */ /; b more }; s/^ +//; s/(^| +)#.*//' | grep .
}

# What stands in `...` and is a script or a built program of the project, or cmake; variables may stand before it.
inline_commands() {
    awk '/^ *```/ { inside = !inside; next } !inside' "${documents[@]}" | grep -oE '`[^`]+`' | tr -d '`' |
        grep -E '^([A-Z_]+=[^ ]+ )*(\./[^ ]+|\.ci/run|build/(bin|tests)/[^ ]+|[^ ]+/[^ ]+\.(sh|py)|cmake [^ ]+)( |$)'
}

table_commands() {
    grep -E '^[^ #]' "$table"
}

# The table's ways to run a command, one a line.
ways() {
    awk -v wanted="$1" '/^#/ || !NF { next } /^ / { if (found) { sub(/^ +/, ""); print } next } { found = $0 == wanted }' \
        "$table"
}

# complaints [CAUSE]: one for each line of the input; its status is 1 where there are any.
complaints() {
    awk -v cause="$1" '{ print cause ": " $0 } END { exit NR > 0 }'
}

without_way() {
    local command
    table_commands | while IFS= read -r command; do
        ways "$command" | grep -qv '^needs ' || echo "$command"
    done
}

check() (
    set +o pipefail # a grep that finds nothing finds nothing to complain of
    wrong=0
    named=$({ block_commands; inline_commands; } | sort -u)
    listed=$(table_commands | sort -u)
    comm -23 <(echo "$named") <(echo "$listed") | complaints "in a document, not in commands.txt" || wrong=1
    comm -13 <(echo "$named") <(echo "$listed") | complaints "in commands.txt, in no document" || wrong=1
    without_way | complaints "commands.txt does not say how to run" || wrong=1
    sed -n 's/^ *ci //p' "$table" | grep -vxFf .ci/run | complaints "no line of .ci/run" || wrong=1
    sed -n 's/^ *within //p' "$table" | grep -vxF "$listed" | complaints "not in commands.txt itself" || wrong=1
    exit $wrong
)

in_copy() {
    (cd "$copy" && bash -euo pipefail -c "$1")
}

# A copy that keeps its build folders, and with them what they have built.
make_copy() {
    mkdir -p "$copy"
    find "$copy" -mindepth 1 -maxdepth 1 ! -name 'build*' -exec rm -rf {} +
    tar --exclude=./.git --exclude='./build*' -cf - . | tar -C "$copy" -xf -
}

# On a display: runs a command in a process group of its own until its window is there. No tool waits for one, so it
# is looked for again and again.
until_window() {
    local title=$1 status=1 tries
    set -m
    bash -euo pipefail -c "$2" &
    set +m
    for ((tries = window_seconds * 5; tries > 0; --tries)); do
        if xwininfo -root -tree | grep -qF "\"$title\""; then
            status=0
            break
        fi
        kill -0 $! 2>/dev/null || break # it ended without
        sleep 0.2
    done
    [ $status -eq 0 ] || echo "there was no window \"$title\""
    kill -- -$! 2>/dev/null || true
    wait $! 2>/dev/null || true
    return $status
}

in_window() {
    env -u QT_QPA_PLATFORM xvfb-run -a -s '-screen 0 1600x1000x24 -noreset' "$own/commands.sh" until-window "${1%%: *}" "${1#*: }"
}

can_install() {
    local package
    [ "$(id -u)" -ne 0 ] || return 0
    for package in "$@"; do
        dpkg-query -W "$package" >/dev/null 2>&1 || return 1
    done
}

# run_way COMMAND WAY: prints what the command says only when it fails.
run_way() {
    local command=$1 kind=${2%% *} argument=
    [ "$kind" = "$2" ] || argument=${2#* }
    case "$kind" in
        here) bash -euo pipefail -c "${argument:-$command}" ;;
        copy) in_copy "${argument:-$command}" ;;
        window) in_window "$argument" ;;
        ci | within) ;;
        *)
            echo "unknown: $2"
            return 1
            ;;
    esac
}

run() {
    local command way packages wrong=0 log began
    local -A done=()
    copy=$1/documents/project
    log=$1/documents/log.txt
    export PATH="$1/tests:$PATH"
    unset DISPLAY
    make_copy
    while IFS= read -r command; do
        packages=$(ways "$command" | sed -n 's/^needs //p')
        # shellcheck disable=SC2086 # several packages
        if ! can_install $packages; then
            echo "LEFT OUT, $packages missing and not root: $command"
            continue
        fi
        while IFS= read -r way; do
            began=$SECONDS
            if [ -n "${done[$way]:-}" ]; then
                echo "done before: $command   [$way]"
            elif run_way "$command" "$way" >"$log" 2>&1 </dev/null; then
                echo "ok, $((SECONDS - began)) s: $command   [$way]"
                [[ $way != *\ * ]] || done[$way]=yes
            else
                echo "FAILED: $command   [$way]"
                cat "$log"
                wrong=1
            fi
        done < <(ways "$command" | grep -v '^needs ')
    done < <(table_commands)
    return $wrong
}

case "${1:-}" in
    check) check ;;
    run) run "${2:?the build folder}" ;;
    until-window) until_window "$2" "$3" ;;
    *)
        echo "commands.sh: say check or run" >&2
        exit 2
        ;;
esac
