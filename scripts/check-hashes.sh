#!/usr/bin/env bash
# check-hashes.sh [--update]: compares the interface files with the hashes in current.txt, or records them there.
# Released interfaces never change: a client built against one keeps working.
set -euo pipefail
cd "$(dirname "$0")/.."

package=vendor.zentrovi.tv.zvttvfactory@1.0
recorded=interface/1.0/current.txt
hashes=$(hidl-gen -L hash -R -r "${package%@*}:interface" -r android.hidl.base:platform/hal/base "$package")

if [[ ${1:-} == --update ]]; then
    {
        echo "# Hashes of the interface files, comments included, as the interface compiler computes them."
        echo "# Written by scripts/check-hashes.sh --update"
        echo "$hashes"
    } >"$recorded"
elif ! diff -u --label "$recorded" --label "the interface files" <(grep -v '^#' "$recorded") - <<<"$hashes"; then
    echo "An interface file is not what $recorded says. If it was meant: scripts/check-hashes.sh --update" >&2
    exit 1
fi
