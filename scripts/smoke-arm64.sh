#!/usr/bin/env bash
# smoke-arm64.sh BIN SYSROOT: the service and a client, two emulated processes, through the real transport.
set -euo pipefail
bin=$(realpath "$1")
emulator=(qemu-aarch64 -L "$(realpath "$2")")
work=$(mktemp -d)
export HIDL_RUNTIME_DIR=$work/registry ZVTTV_STATE_DIR=$work/state ZVTTV_DEBUG_LEVEL=0

"${emulator[@]}" "$bin/vendor.zentrovi.tv.zvttvfactory@1.0-service" &
service=$!
trap 'kill "$service" 2>/dev/null; wait "$service" 2>/dev/null || true; rm -rf "$work"' EXIT

fapictl() {
    echo "\$ fapictl $*"
    "${emulator[@]}" "$bin/fapictl" "$@"
}
fapictl wait --timeout 60
fapictl call information set_ini_para panel backlight:level 42
fapictl call information get_ini_para panel backlight:level | tee "$work/answer"
grep -q '"42"' "$work/answer"
fapictl watch --count 1 --timeout 60 >"$work/events" &
watcher=$!
until fapictl post 0x10001 'value=7 text=hello' >/dev/null && sleep 0.2 && ! kill -0 "$watcher" 2>/dev/null; do :; done
cat "$work/events"
grep -q 'hello' "$work/events"
echo "== AArch64: calls, answers and an event between two processes"
