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
chmod 755 "$download"  # apt downloads as a user of its own
(cd "$download" && apt-get download -qq p7zip-full:arm64 2>/dev/null && dpkg -x p7zip-full_*.deb "$folder")
