#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the Debian packages that a command needs and builds a preset. Sourced by the scripts in the root.

set -euo pipefail

# Commands run in the folder of the project, whatever folder they were called from.
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$project"

build_packages=(g++ cmake ninja-build qtbase5-dev qttools5-dev-tools libpng-dev)
armhf_packages=(g++-arm-linux-gnueabihf qemu-user)
screen_packages=(xvfb xauth x11-utils openbox fonts-dejavu-core)

fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

is_installed() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        fail "cannot install packages: not root and no sudo. Please have these installed: ${missing[*]}"
    fi
}

# need package...: installs what is missing of them.
need() {
    command -v dpkg-query >/dev/null || fail "this set-up works on Debian and its relatives only (no dpkg here)."
    local package
    missing=()
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "Installing ${missing[*]} ..."
    as_root apt-get update -qq || fail "apt-get update failed: is there a network and a package source?"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
        >/dev/null || fail "could not install: ${missing[*]}"
}

# package_source release: prints where apt gets that release of Debian from.
package_source() {
    local release=$1 source
    source=$(known_package_source "$release")
    if [ -z "$source" ]; then # nothing is known before the first update
        as_root apt-get update -qq
        source=$(known_package_source "$release")
    fi
    [ -n "$source" ] || fail "apt knows no package source of Debian '$release'."
    echo "$source"
}

known_package_source() {
    apt-get indextargets --format '$(ORIGIN) $(CODENAME) $(REPO_URI)' 'Created-By: Packages' |
        awk -v release="$1" '$1 == "Debian" && $2 == release { print $3; exit }'
}

# build preset folder [target...]: configures, in case packages have come since, and builds.
build() {
    local preset=$1 folder=$2
    shift 2
    cmake --preset "$preset" >/dev/null || fail "configuring '$preset' failed."
    cmake --build "$folder" ${1:+--target "$@"} || fail "building '$preset' failed."
}
