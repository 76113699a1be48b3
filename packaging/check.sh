#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks the commit that is checked out where it will be used. Sets up what that needs.
#   packaging/check.sh reproducible [amd64|armhf]   builds them in two folders and compares them, bit for bit
#   packaging/check.sh installation                 installs those for amd64 in a bare Debian, starts the program with
#                                                   and without cameras, removes them and looks for what they leave
#   packaging/check.sh release NAME                 builds and tests in a bare Debian of another release, bullseye,
#                                                   bookworm or trixie, with warnings as errors
# The second takes the packages from build-packages/amd64. It and the third need root.

source "$(dirname "${BASH_SOURCE[0]}")/../cmake/setup.sh"

own_release=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
work=$(mktemp -d)
trap 'rm -rf --one-file-system "$work"' EXIT

build_copy() {
    local copy=$1 architecture=$2
    git clone --quiet --no-local "$project" "$copy"
    git -C "$copy" checkout --quiet "$(git rev-parse HEAD)"
    "$copy/packaging/build.sh" "$architecture" >"$work/build.log" 2>&1 || {
        tail -n 40 "$work/build.log" >&2
        fail "building the packages failed, see above."
    }
}

sums() {
    (cd "$1/build-packages/$2" && sha256sum -- *.deb)
}

check_reproducible() {
    local architecture=${1:-amd64}
    build_copy "$work/one" "$architecture"
    (
        umask 077
        export LANG=C TZ=Pacific/Auckland
        build_copy "$work/elsewhere/in/another/folder" "$architecture"
    )
    sums "$work/one" "$architecture"
    diff <(sums "$work/one" "$architecture") <(sums "$work/elsewhere/in/another/folder" "$architecture") ||
        fail "two builds differ."
    echo "Two builds in two folders gave the same packages."
}

# Prints what both packages depend on, but for themselves, between commas.
dependencies() {
    local package
    for package in "$@"; do
        dpkg-deb -f "$package" Depends | tr ',' '\n' | sed -E 's/ *[(|].*//; s/^ +//'
    done | sort -u | grep -vx speckmend | paste -sd,
}

# make_bare_debian release package,package...
make_bare_debian() {
    local release=$1 packages=$2 source
    source=$(package_source "$own_release")
    mmdebstrap --quiet --variant=essential --include="$packages" "$release" "$work/root" \
        "deb $source $release main" || fail "could not make a bare Debian '$release'."
}

# With the machine's devices, and processes of its own, which end with the first of them.
in_bare_debian() {
    unshare --mount --pid --fork --kill-child sh -euc '
        mount -t proc proc "$0/proc"
        mount --rbind /dev "$0/dev"
        exec chroot "$0" env -i HOME=/tmp/user XDG_RUNTIME_DIR=/tmp/user QT_QPA_PLATFORM=offscreen \
            PATH=/usr/sbin:/usr/bin:/sbin:/bin "$@"
    ' "$work/root" "$@"
}

# All files but the notes that dpkg keeps of its work, and what is the user's own.
files() {
    (cd "$work/root" && find . \( -path ./var/lib/dpkg -o -path ./proc -o -path ./tmp \) -prune -o \
        ! -path './var/log/*' ! -path ./var/cache/ldconfig/aux-cache -printf '%p %y %m %l\n' | sort)
}

check_start_without_library() {
    local text status=0
    text=$(in_bare_debian speckmend 2>&1) || status=$?
    [ "$status" -eq 1 ] || fail "without a camera library, speckmend ended with $status: $text"
    grep -q 'libkelvo_api.so.1 was not found' <<<"$text" || fail "speckmend did not say what is missing: $text"
}

# Ends with 124 when the program was still there after that time, as it shall be.
check_start_on_simulated_cameras() {
    local text status=0
    text=$(in_bare_debian timeout 5 speckmend-simulated 2>&1) || status=$?
    [ "$status" -eq 124 ] || fail "on simulated cameras, speckmend ended with $status: $text"
}

prepare_bare_debian() {
    [ "$(id -u)" -eq 0 ] || fail "this check needs root."
    need mmdebstrap
}

check_installation() {
    local packages=(build-packages/amd64/speckmend_*.deb build-packages/amd64/speckmend-simulator_*.deb)
    [ -f "${packages[0]}" ] || fail "there are no packages yet: packaging/build.sh makes them."
    prepare_bare_debian
    make_bare_debian "$own_release" "$(dependencies "${packages[@]}")"
    files >"$work/before"
    cp "${packages[@]}" "$work/root/tmp/"
    in_bare_debian sh -c 'dpkg --install /tmp/*.deb'
    rm "$work"/root/tmp/*.deb
    check_start_without_library
    check_start_on_simulated_cameras
    in_bare_debian dpkg --purge speckmend-simulator speckmend
    files >"$work/after"
    diff "$work/before" "$work/after" || fail "the packages left something behind, see above."
    echo "Installed, started, removed: nothing was left behind."
}

# The presets are left out: an older CMake does not know them. So are the documents, whose commands install packages.
check_release() {
    local release=${1:-}
    [ -n "$release" ] || fail "of which release? Name it, as in: packaging/check.sh release trixie"
    prepare_bare_debian
    make_bare_debian "$release" "$(IFS=, && echo "${build_packages[*]},${screen_packages[*]}")"
    mkdir "$work/root/project"
    git archive HEAD | tar -x -C "$work/root/project"
    in_bare_debian sh -euc '
        cd /project
        cmake -S . -B build-bare -G Ninja -DCMAKE_BUILD_TYPE=Release -DSPECKMEND_WERROR=ON
        cmake --build build-bare
        cd build-bare
        ctest -j "$(nproc)" --output-on-failure -LE documents
    ' || fail "building and testing on '$release' failed, see above."
    echo "Built and tested on '$release'."
}

need git
case "${1:-}" in
    reproducible) check_reproducible "${2:-amd64}" ;;
    installation) check_installation ;;
    release) check_release "${2:-}" ;;
    *) fail "unknown check '${1:-}'. Use reproducible, installation or release" ;;
esac
