#!/usr/bin/env bash
# run-service.sh [--binder] [--once | --shell] BIN [FOLDER]: starts the service in BIN on the simulated board, calls it
# from other processes and says what happened. Then it leaves the service running until Ctrl-C; with --once it ends it,
# with --shell it does so when the shell ends that it gives the user.
#
# Its names and the board's state are in FOLDER (build/run), apart from those of any other service on the machine. With
# --binder calls go through the binder driver's device, whose names are all processes'.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

binder=
until_=interrupt
while [[ $1 == --* ]]; do
    case $1 in
        --binder) binder=yes ;;
        --once) until_=now ;;
        --shell) until_=shell ;;
        *)
            echo "run-service.sh: no option $1" >&2
            exit 2
            ;;
    esac
    shift
done
bin=$(realpath "$1")
service=$bin/vendor.zentrovi.tv.zvttvfactory@1.0-service
fapictl=$bin/fapictl
here=${2:-$PWD/build/run}
children=()

# Shown when anything goes wrong: what the running service has said last.
log=
finish() {
    local code=$?
    trap - EXIT INT TERM HUP
    local i
    for ((i = ${#children[@]} - 1; i >= 0; --i)); do
        end "${children[i]}"
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
    echo "   the $(grep -m 1 '^board: .* its state in ' "$log"), log in ${log#"$PWD/"}"
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


# start_manager: a device's context manager, unless it has one.
start_manager() {
    local pid tries
    export HIDL_TRANSPORT=binder
    log=$here/hwservicemanager.log
    setpriv --pdeathsig TERM "$bin/hwservicemanager" </dev/null >"$log" 2>&1 9>&- &
    pid=$!
    for ((tries = 0; tries < 100; ++tries)); do
        if grep -q ready "$log"; then
            children+=("$pid")
            echo "== hwservicemanager keeps the names of ${HIDL_BINDER_DEVICE:-/dev/hwbinder}: process $pid"
            return
        fi
        if ! kill -0 "$pid" 2>/dev/null; then
            grep -q 'has a context manager' "$log" || exit 1
            echo "== The context manager of ${HIDL_BINDER_DEVICE:-/dev/hwbinder}, which runs already, keeps the names"
            return
        fi
        sleep 0.1
    done
    echo "hwservicemanager is not ready after 10 s."
    exit 1
}

ready_board() {
    echo "== The service on the simulated board"
    start board
    service_pid=${children[-1]}
    call 0 "IZvtTvFApiTv +default +$service_pid" list
    call 0 's32Status .* 0\b' call information get_fapi_sw_version
    local level=$((RANDOM % 101))
    call 0 's32Status .* 0\b' call information set_ini_para panel backlight:level "$level"
    call 0 "strIniValue .*\b$level\b" call information get_ini_para panel backlight:level
    call 0 'bEnable .* true' call information get_ip_enable_status 3
    call 1 's32Status .*-102 \(out of range\)' call information get_ip_enable_status 9999
    call 1 'the board: no event raised: "bogus" is not' call system send_cmd_to_factory_svc 0 "disp bogus"
    if ! "$service" --help | grep -F "now $ZVTTV_STATE_DIR" >/dev/null; then
        echo "!! --help does not tell the state folder"
        exit 1
    fi
    echo
}

board_that_is_not_ready() {
    echo "== ${1^} service whose chip-layer library is not ready: it refuses the call"
    ZVTTV_BOARD_READY=no start not-ready
    call 1 's32Status .*-5\b' call information get_fapi_sw_version
    end "${children[-1]}"
    unset 'children[-1]'
    echo
}

if [[ -n $binder ]]; then
    # A device has one set of names: one service at a time.
    start_manager
    board_that_is_not_ready "a"
    ready_board
else
    ready_board
    board_that_is_not_ready "a second"
fi

log=$here/board/service.log
export HIDL_RUNTIME_DIR=$here/board/registry ZVTTV_STATE_DIR=$here/board/state

# serve_page: starts the page for browsers, and sees that it comes with its address and not without.
serve_page() {
    local address
    : >"$here/page"
    setpriv --pdeathsig TERM "$fapictl" serve </dev/null >>"$here/page" 9>&- &
    children+=("$!")
    until read -r address <"$here/page"; do
        if ! kill -0 "${children[-1]}" 2>/dev/null; then
            echo "!! the page is not served"
            exit 1
        fi
        sleep 0.05
    done
    python3 - "$address" <<'END'
import sys, urllib.error, urllib.request
address = sys.argv[1]
assert b"<html" in urllib.request.urlopen(address, timeout=10).read()
try:
    urllib.request.urlopen(address[:-3] + "/", timeout=10)
    sys.exit("!! the page is served to whoever asks")
except urllib.error.HTTPError as error:
    assert error.code == 404
END
    echo "== The set in a browser, until this ends: $address"
}
if ! kill -0 "$service_pid" 2>/dev/null; then
    echo "!! the service on the ready board has ended"
    exit 1
fi
[[ -n $binder ]] || serve_page
case $until_ in
    now)
        if [[ -z $binder ]]; then
            end "${children[-1]}"
            unset 'children[-1]'
        fi
        end "$service_pid"
        unset 'children[-1]'
        echo "== All calls came back as expected; the service has been ended"
        exit 0
        ;;
    shell)
        cat >"$here/bashrc" <<'END'
PS1='machine:\w\$ '
source tools/fapictl/fapictl.bash
cd /tmp
END
        echo "== All calls came back as expected; the service goes on. This is a shell beside it: try 'fapictl list'."
        echo "   exit or Ctrl-D ends the machine; Ctrl-] and then x does so at once, whatever it does."
        echo
        PATH=$bin:$PATH bash --rcfile "$here/bashrc" -i 9>&- || true # its code is that of the user's last command
        ;;
    interrupt)
        if [[ -n $binder ]]; then
            place="HIDL_TRANSPORT=binder${HIDL_BINDER_DEVICE:+ HIDL_BINDER_DEVICE=$HIDL_BINDER_DEVICE}"
        else
            place=HIDL_RUNTIME_DIR=$here/board/registry
        fi
        cat <<END
== All calls came back as expected; the service goes on until Ctrl-C. To call it from another terminal:

    export $place PATH=$bin:\$PATH
    fapictl list
END
        stopped=
        trap 'stopped=yes' INT TERM HUP
        wait "$service_pid" || true
        if [[ -z $stopped ]]; then
            echo "!! the service has ended"
            exit 1
        fi
        if [[ -z $binder ]]; then
            end "${children[-1]}"
            unset 'children[-1]'
        fi
        ;;
esac
end "$service_pid"
unset 'children[-1]'
echo "== The service has been ended"
