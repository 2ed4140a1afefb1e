#!/usr/bin/env bash
# arm64-sysroot.sh FOLDER: unpacks there what emulated programs need and can not be installed beside this machine's own.
set -euo pipefail
folder=$1
if [[ -e $folder/usr/lib/p7zip/7z.so ]]; then
    exit 0
fi
mkdir -p "$folder"
folder=$(realpath "$folder")
download=$(mktemp -d)
trap 'rm -rf "$download"' EXIT
(cd "$download" && apt-get download -qq -o APT::Sandbox::User=root p7zip-full:arm64 && dpkg -x p7zip-full_*.deb "$folder")
