#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Documents name nothing that is not there: the files, pictures and headings that they link to, and the files of the
# project that they speak of.

set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/../.."
documents=(README.md CONTRIBUTING.md CHANGELOG.md docs/*.md)
wrong=0

complain() {
    echo "$1: $2"
    wrong=1
}

# What stands outside of code blocks.
text() {
    awk '/^ *```/ { inside = !inside; next } !inside' "$1"
}

# The names by which a document's headings are linked to.
headings() {
    text "$1" | sed -nE 's/^#+ +//p' | tr '[:upper:]' '[:lower:]' | sed -E 's/[^a-z0-9 _-]//g; s/ /-/g'
}

check_link() {
    local document=$1 target=$2 file
    case "$target" in
        http://* | https://* | mailto:*) return ;;
        \#*) file=$document ;;
        *) file=$(dirname "$document")/${target%%#*} ;;
    esac
    if [ ! -e "$file" ]; then
        complain "$document" "links to $target, which is not there"
    elif [[ $target == *#* ]] && ! headings "$file" | grep -qxF -- "${target#*#}"; then
        complain "$document" "links to the heading $target, which is not there"
    fi
}

# Programs are spoken of without ".cpp", and tests without "tst_".
check_path() {
    local document=$1 path=$2
    [ -d "${path%%/*}" ] && [[ $path != build* ]] || return 0 # no folder of the project
    [ -e "$path" ] || [ -e "$path.cpp" ] || [ -e "${path%/*}/tst_${path##*/}.cpp" ] ||
        complain "$document" "speaks of $path, which is not there"
}

for document in "${documents[@]}"; do
    while IFS= read -r target; do
        check_link "$document" "$target"
    done < <(text "$document" | grep -oE '\]\([^) ]+\)' | sed -E 's/^\]\(|\)$//g')
    while IFS= read -r path; do
        check_path "$document" "$path"
    done < <(text "$document" | grep -oE '`[A-Za-z0-9_.-]+/[A-Za-z0-9_./-]*`' | tr -d '`')
    while IFS= read -r fence; do
        # Commands are looked for in blocks of "bash" alone.
        [[ " bash cpp xml " == *" $fence "* ]] || complain "$document" "has a block of \"$fence\""
    done < <(sed -nE 's/^ *```([^ ]+)$/\1/p' "$document")
done
exit $wrong
