#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the Debian packages of the commit that is checked out, and has them checked. Sets up what that needs.
#   packaging/build.sh [amd64|armhf]   by default for amd64
# They go into build-packages/<architecture>. Two builds of a commit give the same packages, bit for bit.

source "$(dirname "${BASH_SOURCE[0]}")/../cmake/setup.sh"

native=$(dpkg --print-architecture)
architecture=${1:-amd64}
case "$architecture" in
    "$native" | armhf) ;;
    amd64) fail "packages for amd64 are made on amd64." ;;
    *) fail "unknown architecture '$architecture'. Use amd64 or armhf" ;;
esac

package_tools=(git debhelper lintian desktop-file-utils appstream)
result=$project/build-packages/$architecture
# Whoever builds leaves no trace. A compiler cache would: it names folders in its own way.
umask 022
export LC_ALL=C.UTF-8 TZ=UTC CCACHE_DISABLE=1

# What is not in the commit is not in the packages.
unpack_commit() {
    [ -z "$(git status --porcelain)" ] || echo "The packages are made of the last commit, without the changes since."
    rm -rf "$result"
    mkdir -p "$result/source"
    git archive HEAD | tar -x -C "$result/source"
    cp -r "$result/source/packaging/debian" "$result/source/debian"
}

write_changelog() {
    local version
    version=$(sed -nE 's/^project\(Speckmend VERSION ([0-9.]+) .*/\1/p' "$result/source/CMakeLists.txt")
    [ -n "$version" ] || fail "CMakeLists.txt names no version."
    cat >"$result/source/debian/changelog" <<END
speckmend ($version) unstable; urgency=medium

  * What changes for those who use it is told in CHANGELOG.md.

 -- $(sed -n 's/^Maintainer: //p' packaging/debian/control)  $(git log -1 --date=rfc --format=%cd)
END
}

# Headers and libraries of another architecture are in a folder, with dpkg's records of them: for the folder's files,
# the records have to name them where they are here.
prepare_cross_build() {
    need "${armhf_packages[@]}"
    cmake/armhf-sysroot.sh
    export ARMHF_SYSROOT=$project/build-armhf/sysroot ARMHF_RECORDS=$result/records
    cp -r "$ARMHF_SYSROOT/var/lib/dpkg" "$ARMHF_RECORDS"
    sed -i "s|^/|$ARMHF_SYSROOT/|" "$ARMHF_RECORDS"/info/*.list
}

make_packages() (
    cd "$result/source"
    DEB_BUILD_OPTIONS="parallel=$(nproc)" dpkg-buildpackage --build=binary --unsigned-changes --no-check-builddeps \
        --host-arch="$architecture"
)

check_packages() {
    local built=$result/source/debian/speckmend/usr/share
    desktop-file-validate "$built"/applications/*.desktop
    desktop-file-validate "$result"/source/debian/speckmend-simulator/usr/share/applications/*.desktop
    appstreamcli validate --no-net --strict "$built"/metainfo/*.xml
    lintian --allow-root --display-info --pedantic --fail-on error,warning,info,pedantic "$result"/*.changes
}

need "${build_packages[@]}" "${package_tools[@]}"
unpack_commit
write_changelog
[ "$architecture" = "$native" ] || prepare_cross_build
make_packages
check_packages
rm -rf "$result/source" "$result/records"
echo "Packages for $architecture:"
ls "$result"/*.deb
