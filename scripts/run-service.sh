#!/usr/bin/env bash
# run-service.sh BIN [--once]: starts the service in BIN on the simulated board, calls it from other processes and
# says what happened. Then it leaves the service running until Ctrl-C; with --once it ends it.
#
# Its names and the board's state are under build/run, apart from those of any other service on the machine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bin=$(realpath "$1")
once=${2:-}
service=$bin/vendor.zentrovi.tv.zvttvfactory@1.0-service
fapictl=$bin/fapictl
here=$PWD/build/run
children=()

# Shown when anything goes wrong: what the running service has said last.
log=
finish() {
    local code=$?
    trap - EXIT INT TERM HUP
    local child
    for child in "${children[@]}"; do
        end "$child"
    done
    if ((code != 0 && code < 128)) && [[ -s $log ]]; then
        echo "-- the service's log, $log:"
        tail -n 40 "$log"
    fi
    exit "$code"
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# end PID: asks it to end, and after 5 s makes it.
end() {
    kill -TERM "$1" 2>/dev/null || return 0
    local tries
    for ((tries = 0; tries < 100; ++tries)); do
        kill -0 "$1" 2>/dev/null || break
        sleep 0.05
    done
    kill -KILL "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

# start NAME: starts a service whose names, state and log are in build/run/NAME, and waits until all of its
# interfaces are registered. Its process is the last of children. It dies with this script, however that ends.
start() {
    local folder=$here/$1 pid waiter first begin=${EPOCHREALTIME/./}
    mkdir -p "$folder"
    mkdir -m 700 "$folder/registry" 2>/dev/null || true
    export HIDL_RUNTIME_DIR=$folder/registry ZVTTV_STATE_DIR=$folder/state
    log=$folder/service.log
    setpriv --pdeathsig TERM "$service" </dev/null >"$log" 2>&1 9>&- &
    pid=$!
    children+=("$pid")
    "$fapictl" wait --timeout 30 >/dev/null 9>&- &
    waiter=$!
    children+=("$waiter")
    if ! wait -n -p first "$pid" "$waiter" || [[ $first == "$pid" ]]; then
        [[ $first == "$pid" ]] && echo "The service ended at once." || echo "The service did not register in 30 s."
        exit 1
    fi
    unset 'children[-1]'
    echo "   process $pid, ten interfaces registered after $(((${EPOCHREALTIME/./} - begin) / 1000)) ms"
    echo "   state in ${ZVTTV_STATE_DIR#"$PWD/"}, log in ${log#"$PWD/"}"
}

# call CODE TEXT ARG...: runs fapictl, which is to end with that code and a line with that text.
call() {
    local code=$1 text=$2 got=0 output
    shift 2
    printf '\n$ fapictl'
    printf ' %q' "$@"
    echo
    output=$("$fapictl" "$@" 2>&1 9>&-) || got=$?
    echo "$output"
    if ((got != code)) || ! grep -qE -- "$text" <<<"$output"; then
        echo "!! exit code $got, expected $code and a line with $text"
        exit 1
    fi
}

mkdir -p "$here"
exec 9>>"$here/lock"
if ! flock -n 9; then
    echo "Another ./dev run of this tree is running; end it first (its board's state is in build/run)." >&2
    exit 1
fi

echo "== The service on the simulated board"
start board
service_pid=${children[-1]}
call 0 "IZvtTvFApiTv +default +$service_pid" list
call 0 's32Status .* 0\b' call information get_fapi_sw_version
level=$((RANDOM % 101))
call 0 's32Status .* 0\b' call information set_ini_para panel backlight:level "$level"
call 0 "strIniValue .*\b$level\b" call information get_ini_para panel backlight:level
call 0 'bEnable .* true' call information get_ip_enable_status 3
call 1 's32Status' call information get_ip_enable_status 9999

echo
echo "== A second service whose chip-layer library is not ready: it refuses the call"
ZVTTV_BOARD_READY=no start not-ready
call 1 's32Status .*-5\b' call information get_fapi_sw_version
end "${children[-1]}"
unset 'children[-1]'

log=$here/board/service.log
if ! kill -0 "$service_pid" 2>/dev/null; then
    echo "!! the first service has ended"
    exit 1
fi
echo
if [[ $once == --once ]]; then
    end "$service_pid"
    children=()
    echo "== All calls came back as expected; the service has been ended"
    exit 0
fi
cat <<END
== All calls came back as expected; the service goes on until Ctrl-C. To call it from another terminal:

    export HIDL_RUNTIME_DIR=$here/board/registry PATH=$bin:\$PATH
    fapictl list
END
stopped=
trap 'stopped=yes' INT TERM HUP
wait "$service_pid" || true
if [[ -z $stopped ]]; then
    echo "!! the service has ended"
    exit 1
fi
end "$service_pid"
children=()
echo "== The service has been ended"
