#!/usr/bin/env bash
# record-hashes.sh: records the hashes of the interface files, from when on the interface compiler takes no others. Released
# interfaces never change: a client built against one keeps working.
set -euo pipefail
cd "$(dirname "$0")/.."

# record PACKAGE FOLDER ROOT...: the compiler looks for the file in the package root's folder.
record() {
    local package=$1 folder=$2 hashes
    shift 2
    hashes=$(hidl-gen -L hash -R "$@" "$package")
    {
        echo "# Hashes of the interface files, comments included, as the interface compiler computes them."
        echo "# Written by scripts/record-hashes.sh"
        echo "$hashes"
    } >"$folder/current.txt"
}

base=(-r android.hidl.base:platform/hal/base)
# What a frozen package uses must be frozen, too.
record android.hidl.base@1.0 platform/hal/base "${base[@]}"
record vendor.zentrovi.tv.zvttvfactory@1.0 interface "${base[@]}" -r vendor.zentrovi.tv.zvttvfactory:interface
