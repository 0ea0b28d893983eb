# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Sourced by ./demo and ./check, which set root (the tree). What they share: the packages, and how to build.
# shellcheck shell=bash disable=SC2154

packages=(build-essential cmake ninja-build pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools
    libgl1-mesa-dev libudev-dev
    # The panel's texts have fixed places: these fonts fit them.
    fonts-noto-cjk fonts-roboto-unhinted
    # CPack asks it which files of a Debian package are programs.
    file
    # Tests plug in devices of their own making.
    umockdev libumockdev-dev
    # Tests run on a faster clock, and draw the pictures again from their sources.
    faketime librsvg2-bin imagemagick gifsicle python3)

# What the fuzz targets are built with, and what counts the branches that they take.
# shellcheck disable=SC2034
fuzz_packages=(clang libclang-rt-dev llvm)

# What looks at the sources. Only version 14 of clang's tools counts, and of the Debians only 12 has it.
# shellcheck disable=SC2034
lint_packages=(shellcheck git)
# shellcheck disable=SC2034
tidy_packages=()
if grep -qx 'VERSION_ID="12"' /etc/os-release 2>/dev/null; then
    lint_packages+=(clang-format-14)
    tidy_packages+=(clang-tidy-14)
fi

# What ./check --vm needs besides: an emulated machine, and what its file system is made with.
# shellcheck disable=SC2034
vm_packages=(qemu-system-x86 cpio kmod)

# What builds for Windows and runs the result, for ./check --windows and ./demo --windows.
# shellcheck disable=SC2034
windows_packages=(g++-mingw-w64-x86-64-posix dpkg-dev wine wine64 xvfb xauth)

# The web server that tests and ./demo --server nginx put quillon-publish's files behind. Where Debian runs services it also
# starts one of its own, which has nothing to do with them.
# shellcheck disable=SC2034
server_packages=(nginx-light)

# What looks at the Debian packages, and what makes the reference of the public headers.
# shellcheck disable=SC2034
package_packages=(lintian doxygen)

# What ./check --fresh needs, and nothing else: the rest is installed in the system that it makes.
# shellcheck disable=SC2034
fresh_packages=(mmdebstrap git util-linux mount)

is_installed() {
    [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "Installing packages needs root: run this as root, or install sudo." >&2
        return 1
    fi
}

# Where cmake/mingw/build-dependencies leaves the libraries for Windows.
windows_libraries() {
    echo "${XDG_CACHE_HOME:-$HOME/.cache}/quillon-mingw/prefix"
}

# Caches and Wine want a home, and a bare container may know none.
export HOME=${HOME:-$(getent passwd "$(id -u)" | cut -d: -f6)}

# Says which packages are missing and installs them.
install_missing() {
    local missing=() package
    for package in "${packages[@]}"; do
        is_installed "$package" || missing+=("$package")
    done
    [ "${#missing[@]}" -gt 0 ] || return 0
    if ! command -v apt-get >/dev/null; then
        echo "This is no Debian: please install what corresponds to ${missing[*]}." >&2
        return 1
    fi
    echo "About to install with apt-get: ${missing[*]}"
    # A fresh machine has no package lists, an old one has lists that the mirrors have left behind.
    as_root apt-get update --quiet
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install --quiet --yes --no-install-recommends "${missing[@]}"
}

# build_preset PRESET [TARGET...]: configures and builds with all cores.
build_preset() {
    local preset=$1
    shift
    cmake --preset "$preset" -S "$root" -B "$root/build/$preset" --log-level=WARNING
    cmake --build "$root/build/$preset" --parallel "$(nproc)" ${1+--target "$@"}
}

# Qt wants a UTF-8 locale, and a bare system has none set.
case "${LC_ALL:-${LC_CTYPE:-${LANG:-}}}" in
*UTF-8 | *utf8 | *UTF8 | *utf-8) ;;
*) export LC_ALL=C.UTF-8 ;;
esac
