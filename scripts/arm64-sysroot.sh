#!/usr/bin/env bash
# arm64-sysroot.sh FOLDER: unpacks there what AArch64 programs need and what can not be installed beside this machine's own,
# as Debian's packages have it: a library that the log library brings along, and the programs of a virtual machine.
set -euo pipefail
packages=(p7zip-full busybox-static bash-static libc-bin edid-decode python3.11-minimal binutils-aarch64-linux-gnu
    libbinutils libexpat1 libzstd1)
folder=$1
if [[ $(cat "$folder/packages" 2>/dev/null) == "${packages[*]}" ]]; then
    exit 0
fi
mkdir -p "$folder"
folder=$(realpath "$folder")
download=$(mktemp -d)
trap 'rm -rf "$download"' EXIT
(
    cd "$download"
    apt-get download -qq -o APT::Sandbox::User=root "${packages[@]/%/:arm64}"
    for package in *.deb; do
        dpkg-deb --extract "$package" "$folder"
    done
)
# Under the names that scripts call them by.
ln -sf bash-static "$folder/bin/bash"
ln -sf python3.11 "$folder/usr/bin/python3"
for tool in nm strip; do
    ln -sf "aarch64-linux-gnu-$tool" "$folder/usr/bin/$tool"
done
echo "${packages[*]}" >"$folder/packages"
