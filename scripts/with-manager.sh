#!/usr/bin/env bash
# with-manager.sh BIN COMMAND...: runs the command while the binder driver's device has its context manager.
set -euo pipefail
bin=$1
shift
log=$(mktemp)
"$bin/hwservicemanager" 2>"$log" &
manager=$!
trap 'kill "$manager" 2>/dev/null || true; rm "$log"' EXIT
until grep -q ready "$log"; do
    if ! kill -0 "$manager" 2>/dev/null; then
        grep -q 'has a context manager' "$log" && break # that one serves us, too
        cat "$log" >&2
        exit 1
    fi
    sleep 0.1
done
"$@"
