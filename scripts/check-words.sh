#!/usr/bin/env bash
# check-words.sh: the tree explains itself. Fails on references to documents that a reader of it does not have.
# The brackets keep this file from finding itself.
set -euo pipefail
cd "$(dirname "$0")/.."

words='\b[s]pecs?\b|\b[s]pecification|\b[p]arts? [0-9]+(\.[0-9]+)?\b|\b[s]teps? [0-9]+\b'
if git grep --untracked -InPi -e "$words" || git ls-files -co --exclude-standard | grep -Pi "$words"; then
    echo "The lines above refer to something outside the tree." >&2
    exit 1
fi
