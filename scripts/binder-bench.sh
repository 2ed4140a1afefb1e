#!/usr/bin/env bash
# binder-bench.sh BIN [ARG...]: calls through the binder driver beside those over sockets; needs the driver's device.
# Arguments go to the benchmark.
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
"$bin/bench-binder" "$@"
