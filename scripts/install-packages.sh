#!/usr/bin/env bash
# install-packages.sh GROUP...: installs what is missing of those groups of packages.txt, saying what it installs.
# Does not touch apt when nothing is missing.
set -euo pipefail
cd "$(dirname "$0")"

wanted=()
declare -A purpose=()
while read -r package group text; do
    if [[ -n $package && $package != '#'* && " $* " == *" $group "* ]]; then
        wanted+=("$package")
        purpose[$package]=$text
    fi
done <packages.txt

if ! command -v dpkg-query >/dev/null; then
    echo "This is not a Debian system. Make sure that these are installed: ${wanted[*]}" >&2
    exit 0
fi

# dpkg-query fails when it does not know one of the packages; that one is missing, then.
installed=$(dpkg-query --show --showformat \
    '${db:Status-Status} ${Package}\n${db:Status-Status} ${Package}:${Architecture}\n' "${wanted[@]}" 2>/dev/null || true)
missing=()
for package in "${wanted[@]}"; do
    if ! grep -qxF "installed $package" <<<"$installed"; then
        missing+=("$package")
    fi
done
if ((${#missing[@]} == 0)); then
    exit 0
fi

echo "Installing from Debian:"
for package in "${missing[@]}"; do
    printf '    %-22s %s\n' "$package" "${purpose[$package]}"
done
as_root=()
if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
        echo "Neither root nor sudo is at hand. As root, run: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi
if [[ " ${missing[*]}" == *:arm64* ]]; then
    "${as_root[@]}" dpkg --add-architecture arm64
fi
# A list of another source that can not be fetched need not stop us: the installation tells.
"${as_root[@]}" apt-get update -qq || echo "apt-get update failed; going on with the lists that are there" >&2
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null
