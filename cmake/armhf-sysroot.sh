#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Fills build-armhf/sysroot with Debian's armhf headers and libraries, for cmake/armhf-toolchain.cmake; does nothing
# when they are there. They come from the package source of this machine, but neither its dpkg nor its apt learns of
# them: with a foreign architecture known to those, every library would have to be in step with its native twin.

source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

architecture=armhf
triplet=arm-linux-gnueabihf
packages=(qtbase5-dev libpng-dev zlib1g-dev libc6-dev libstdc++6 fonts-dejavu-core)
# Named by dependencies alone: programs for a machine to run, and drivers of graphics cards.
unneeded='perl.*|libperl.*|python3.*|libpython3.*|dpkg|tar|debconf|.*-dev-tools|qt5-qmake-bin|qtchooser|libllvm.*|libz3-4|libgl1-mesa-dri'

sysroot=$project/build-armhf/sysroot
work=$project/build-armhf/sysroot-work
stamp=$sysroot/var/lib/dpkg/made-of

# The host's tools and the target's libraries must be of the same Qt.
host_qt=$(dpkg-query -W -f '${Version}' qtbase5-dev-tools)
wanted=$(printf '%s\n' "${packages[@]}" "$unneeded" "$host_qt")
[ "$(cat "$stamp" 2>/dev/null)" != "$wanted" ] || exit 0

# An apt of its own, which knows of one architecture and of no installed package.
write_apt_settings() {
    local release source
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    source=$(package_source "$release")
    mkdir -p "$work/state/lists/partial" "$work/cache/archives/partial" "$work/packages"
    : >"$work/status"
    printf 'deb [arch=%s signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] %s %s main\n' \
        "$architecture" "$source" "$release" "$architecture" "$source" "$release-updates" >"$work/sources.list"
    cat >"$work/apt.conf" <<END
APT::Architecture "$architecture";
APT::Architectures { "$architecture"; };
APT::Install-Recommends "false";
APT::Sandbox::User "";
Acquire::Languages "none";
Dir::State "$work/state";
Dir::State::status "$work/status";
Dir::Cache "$work/cache";
Dir::Etc::sourcelist "$work/sources.list";
Dir::Etc::sourceparts "/dev/null";
Dir::Etc::preferences "/dev/null";
Dir::Etc::preferencesparts "/dev/null";
END
}

# Prints the packages that the wanted ones bring in, themselves included, less the unneeded.
resolve() {
    apt-get install --simulate "${packages[@]}" | awk '$1 == "Inst" { print $2 }' | grep -vxE "$unneeded"
}

download() (
    export APT_CONFIG=$work/apt.conf
    apt-get update -qq || fail "apt-get update failed: is there a network and a package source?"
    local needed
    needed=$(resolve) || fail "could not resolve the packages for $architecture."
    cd "$work/packages"
    # shellcheck disable=SC2086
    apt-get download -qq $needed || fail "could not download the packages for $architecture."
)

# dpkg-deb -x would replace the links of the merged /usr by folders; tar keeps them.
unpack() {
    local root=$1 folder package
    for folder in lib bin sbin; do
        mkdir -p "$root/usr/$folder"
        ln -s "usr/$folder" "$root/$folder"
    done
    for package in "$work"/packages/*.deb; do
        dpkg-deb --fsys-tarfile "$package" |
            tar -x -C "$root" --keep-directory-symlink --no-same-owner --no-same-permissions \
                --exclude=./usr/share/doc --exclude=./usr/share/man --exclude=./usr/share/locale
    done
}

# What dpkg would know of a package, for a tool that asks which package a library is of.
record() {
    local package=$1 records=$2 name control
    name=$(dpkg-deb -f "$package" Package)
    [ "$(dpkg-deb -f "$package" Multi-Arch)" != same ] || name=$name:$architecture
    { dpkg-deb -f "$package" && printf 'Status: install ok installed\n\n'; } >>"$records/status"
    dpkg-deb --fsys-tarfile "$package" | tar -t | sed -E 's|^\./||; s|/$||; s|^$|.|; s|^|/|' >"$records/info/$name.list"
    rm -rf "$work/control"
    dpkg-deb -e "$package" "$work/control"
    for control in shlibs symbols; do
        [ ! -f "$work/control/$control" ] || cp "$work/control/$control" "$records/info/$name.$control"
    done
}

record_all() {
    local records=$1/var/lib/dpkg package
    mkdir -p "$records/info"
    echo 1 >"$records/info/format"
    for package in "$work"/packages/*.deb; do
        record "$package" "$records"
    done
}

# Absolute links would lead to this machine's own files.
make_links_relative() {
    local root=$1 link
    find "$root" -type l -lname '/*' | while read -r link; do
        ln -sfn "$(realpath -ms --relative-to="$(dirname "$link")" "$root$(readlink "$link")")" "$link"
    done
}

# What the packages' own scripts would have done, and this machine's moc, uic and rcc for the target's Qt.
complete() {
    local root=$1
    ln -sf ../../../usr/share/fontconfig/conf.avail/10-hinting-slight.conf "$root/etc/fonts/conf.d/"
    rm -rf "$root/usr/lib/qt5/bin"
    mkdir -p "$root/usr/lib/qt5"
    ln -s /usr/lib/qt5/bin "$root/usr/lib/qt5/bin"
}

check_qt() {
    local root=$1 host target
    host=$(/usr/lib/qt5/bin/moc --version | grep -oE '5\.[0-9]+\.[0-9]+')
    target=$(basename "$(readlink "$root/usr/lib/$triplet/libQt5Core.so")" | grep -oE '5\.[0-9]+\.[0-9]+')
    [ "$host" = "$target" ] || fail "this machine has Qt $host, the packages for $architecture are of $target: they must agree."
}

echo "Fetching headers and libraries for $architecture ..."
rm -rf "$sysroot" "$work"
write_apt_settings
download
unpack "$work/root"
record_all "$work/root"
make_links_relative "$work/root"
complete "$work/root"
check_qt "$work/root"
mv "$work/root" "$sysroot"
rm -rf "$work"
printf '%s\n' "$wanted" >"$stamp"
