#!/usr/bin/env bash
# simulated.sh [--order ORDER]... [--no-plug] COMMAND...: runs a station's COMMAND on a fresh simulated board: one that
# is well, but for the orders that it is given (docs/board.md), or for the loop plug that is not there.
#
# fapictl and the service are those on the PATH, or of the tree's release build.
set -euo pipefail
PATH=$PATH:$(realpath "$(dirname "${BASH_SOURCE[0]}")/../../build/release/bin")
orders=()
plug=yes
while [[ ${1:-} == --* ]]; do
    case $1 in
        --order)
            orders+=("$2")
            shift
            ;;
        --no-plug) plug= ;;
        *)
            echo "simulated.sh: no option $1" >&2
            exit 2
            ;;
    esac
    shift
done

board=$(mktemp -d)
children=()
finish() {
    trap - EXIT
    kill "${children[@]}" 2>/dev/null || true
    wait
    rm -rf "$board"
}
trap finish EXIT
trap 'exit 130' INT TERM HUP
mkdir -m 700 "$board/registry"
export HIDL_TRANSPORT=socket HIDL_RUNTIME_DIR=$board/registry ZVTTV_STATE_DIR=$board/state

vendor.zentrovi.tv.zvttvfactory@1.0-service </dev/null >"$board/service.log" 2>&1 &
children+=($!)
if ! fapictl wait --timeout 30 >/dev/null; then
    cat "$board/service.log" >&2
    exit 2
fi
for order in "${orders[@]}"; do
    if ! fapictl call system send_cmd_to_factory_svc 0 "$order" >>"$board/service.log" 2>&1; then
        tail -n 5 "$board/service.log" >&2
        exit 2
    fi
done
if [[ $plug ]]; then
    port=$board/state/uart/ttyS1
    stty -F "$port" raw -echo
    cat 0<>"$port" >&0 2>>"$board/service.log" &
    children+=($!)
fi
export STATION_JIG="fapictl call system send_cmd_to_factory_svc 0"
PATH=$PATH "$@"
