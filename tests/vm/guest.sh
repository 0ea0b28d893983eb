# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Sourced by tests/vm/run, which sets root, build and cache. Puts together what the virtual machine boots: Debian's own
# kernel and udevd, unpacked and not installed, and the shipping libraries with everything they load.
# shellcheck shell=bash disable=SC2154

# What the guest's kernel needs besides what is built into it: the bus, HID, and controllers without hardware behind
# them through which a program can be a USB device.
kernel_modules=(usbhid hid_generic dummy_hcd usb_f_fs)
# One controller, and so one place on the bus, for each of the device's ports.
controllers="num=2"

# kernel_package: the package behind the one that always depends on the newest kernel.
kernel_package() {
    apt-cache depends --important linux-image-amd64 | sed -n 's/^ *Depends: //p;T;q'
}

# download PACKAGE...: into the current folder. The user that apt-get likes to download as may not write there.
download() {
    apt-get download --quiet -o APT::Sandbox::User=root "$@" >&2
}

# unpack FOLDER PACKAGE...: downloads packages and unpacks what the guest may need of them.
unpack() {
    local folder=$1 package
    shift
    mkdir -p "$folder/.packages"
    (cd "$folder/.packages" && download "$@")
    for package in "$folder"/.packages/*.deb; do
        # Nine in ten of a kernel's files are drivers for hardware that is not there.
        dpkg-deb --fsys-tarfile "$package" | tar -x -C "$folder" --wildcards --no-wildcards-match-slash \
            --exclude './usr/share/*' --exclude './lib/modules/*/kernel/net' --exclude './lib/modules/*/kernel/sound' \
            --exclude './lib/modules/*/kernel/drivers/[!uh]*' --exclude './lib/modules/*/kernel/fs/[!c]*'
    done
    rm -r "$folder/.packages"
}

# unpack_kernel COMPRESSED PLAIN: an emulated processor would take longer to unpack it than to boot.
unpack_kernel() {
    python3 - "$1" "$2" <<'PYTHON'
import lzma
import sys

compressed, plain = sys.argv[1:]
with open(compressed, "rb") as file:
    content = file.read()
content = content[content.index(b"\xfd7zXZ\x00"):]
with open(plain, "wb") as file:
    file.write(lzma.LZMADecompressor().decompress(content))
PYTHON
}

# Downloads and unpacks once; later calls find it done.
provide_system() {
    [ ! -e "$cache/complete" ] || return 0
    rm -rf "$cache"
    mkdir -p "$cache"
    # Lists that the mirrors have left behind name packages that are no longer there.
    as_root apt-get update --quiet
    unpack "$cache/system" "$(kernel_package)" busybox-static udev
    unpack_kernel "$cache"/system/boot/vmlinuz-* "$cache/vmlinux"
    touch "$cache/complete"
}

# copy_program FILE PLACE: lays a program or a library into the guest with everything it is linked to.
copy_program() {
    install -D "$1" "$guest$2"
    local libraries
    libraries=$(ldd "$1" | sed -n 's/.*=> \(\/[^ ]*\) .*/\1/p; s/^\t\(\/[^ ]*\) .*/\1/p; s/.*=> not found/&/p')
    if [[ $libraries == *"not found"* ]]; then
        echo "$1 lacks a library: $libraries" >&2
        return 1
    fi
    local library
    for library in $libraries; do
        case $library in
        # The loader is looked for in the one place that programs name.
        */ld-linux*) [ -e "$guest$library" ] || install -D "$library" "$guest$library" ;;
        *) [ -e "$guest/lib/${library##*/}" ] || install -D "$library" "$guest/lib/${library##*/}" ;;
        esac
    done
}

copy_modules() {
    local version module file
    version=$(basename "$cache"/system/lib/modules/*)
    depmod -b "$cache/system" "$version"
    mkdir -p "$guest/modules"
    for module in "${kernel_modules[@]}"; do
        modprobe -C /dev/null -d "$cache/system" -S "$version" --show-depends "$module"
    done | awk '$1 == "insmod" && !seen[$2]++ { print $2 }' >"$cache/order"
    while read -r file; do
        cp "$file" "$guest/modules/"
        module=$(basename "$file" .ko)
        echo "$module.ko $([ "$module" != dummy_hcd ] || echo "$controllers")"
    done <"$cache/order" >"$guest/modules/order"
}

copy_host() {
    local plugins plugin
    copy_program "$build/bin/quillon-host" /bin/quillon-host
    copy_program "$build/bin/OrvikFirmwareUpdata.exe" /bin/OrvikFirmwareUpdata.exe
    plugins=$(qtpaths6 --query QT_INSTALL_PLUGINS)
    for plugin in platforms/libqoffscreen.so imageformats/libqgif.so; do
        copy_program "$plugins/$plugin" "/plugins/$plugin"
    done
    copy_fonts
}

# The one family that stands in for the panel's English font; a glyph more would be time spent on looking for it.
copy_fonts() {
    local family
    family=$(sed -n 's/.*{"Segoe UI", "\(.*\)"}.*/\1/p' "$root/host/Fonts.cpp")
    mkdir -p "$guest/usr/share/fonts" "$guest/etc/fonts" "$guest/var/cache/fontconfig"
    find /usr/share/fonts -name "${family// /}-*.ttf" ! -name '*Italic*' -exec cp -t "$guest/usr/share/fonts" {} +
    if [ -z "$(ls "$guest/usr/share/fonts")" ]; then
        echo "There is no font \"$family\" here." >&2
        return 1
    fi
    cp -L /etc/fonts/fonts.conf "$guest/etc/fonts/"
}

# build_guest SCENARIO...: makes cache/guest.cpio, the guest's whole file system.
build_guest() {
    guest=$cache/guest
    rm -rf "$guest"
    mkdir -p "$guest/bin" "$guest/scenarios" "$guest/lib" "$guest/lib64" "$guest/etc/udev/rules.d"
    install "$cache/system/bin/busybox" "$guest/bin/busybox"
    local applet
    for applet in $("$guest/bin/busybox" --list); do
        ln -s busybox "$guest/bin/$applet" 2>/dev/null || true
    done
    copy_program "$cache/system/bin/udevadm" /bin/udevd
    cp "$root"/hid/udev/*.rules "$guest/etc/udev/rules.d/"
    cp "$root/tests/vm/note-node.rules" "$guest/etc/udev/rules.d/99-note-node.rules"
    install "$root/tests/vm/note-node" "$guest/bin/note-node"
    # Debian's number of the group that the rules name.
    printf '%s\n' root:x:0: plugdev:x:46: >"$guest/etc/group"
    copy_modules
    copy_host
    install "$root/tests/vm/init" "$guest/init"
    cp "$@" "$guest/scenarios/"
    (cd "$guest" && find . | cpio --quiet --create --format=newc --owner=0:0) >"$cache/guest.cpio"
}
