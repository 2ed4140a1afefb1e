#!/usr/bin/env bash
# binder-tests.sh BIN: the tests between processes, on the binder driver. Run as root inside the machine of
# binder-machine.sh. Ends with the totals as ctest writes them.
set -euo pipefail
# Copies: programs are started often, and each start asks the other machine for every file anew.
mkdir /tmp/bin /tmp/lib
for program in vendor.zentrovi.tv.zvttvfactory@1.0-service fapictl hwservicemanager {runtime,service,state,events,peripheral,everymethod,nomemory}-process-test libno-memory.so; do
    strip --strip-debug -o "/tmp/bin/$program" "$1/$program"
done
mapfile -t libraries < <(ldd /tmp/bin/* | sed -nE 's/^.* => (\/[^ ]+) \(0x.*/\1/p' | sort -u)
cp -L "${libraries[@]}" /tmp/lib/
export LD_LIBRARY_PATH=/tmp/lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
bin=/tmp/bin
export PATH=$bin:$PATH HIDL_TRANSPORT=binder ZVTTV_STATE_DIR=/tmp/state
export ZVTTV_TEST_NO_MEMORY=$bin/libno-memory.so ZVTTV_TEST_SERVICE=$bin/vendor.zentrovi.tv.zvttvfactory@1.0-service ZVTTV_TEST_FAPICTL=$bin/fapictl
state=/sys/kernel/debug/binder
passed=0
failed=0

uptime_() {
    cut -d' ' -f1 /proc/uptime
}

# check NAME COMMAND...: one test; what it prints is shown when it fails.
check() {
    local name=$1
    shift
    if "$@" >/tmp/check 2>&1; then
        passed=$((passed + 1))
        echo "   ok $name"
    else
        failed=$((failed + 1))
        cat /tmp/check
        echo "!! FAILED: $name"
    fi
}

# suite PROGRAM [ARG...]: the cases of one test program, then what it has left in the driver.
suite() {
    local name=$1 begin=$SECONDS code=0
    shift
    "$bin/$name" "$@" --gtest_brief=1 >"/tmp/$name.log" 2>&1 &
    program=$!
    wait "$program" || code=$?
    local good bad
    good=$(sed -nE 's/^\[  PASSED  \] ([0-9]+) tests?\.$/\1/p' "/tmp/$name.log")
    bad=$(grep -cE '^\[  FAILED  \] .* \([0-9]+ ms\)$' "/tmp/$name.log" || true)
    if [[ -z $good || $bad != 0 || $code != 0 ]]; then
        grep -v '^hidl' "/tmp/$name.log" || true
        ((bad > 0)) || bad=1 # it ended before its last line, or after it
    fi
    passed=$((passed + ${good:-0}))
    failed=$((failed + bad))
    echo "== $name: ${good:-0} passed, $bad failed in $((SECONDS - begin)) s"
    check "the driver holds nothing of it" eventually driver_is_clean
    check "the driver complains of nothing that was not provoked" no_complaints
}

eventually() {
    local tries
    for ((tries = 0; tries < 100; ++tries)); do
        "$@" >/tmp/last && return 0
        sleep 0.05
    done
    cat /tmp/last
    return 1
}

# Nothing but the context manager is left: its process, its one object, no reference, no transaction.
driver_is_clean() {
    cat $state/state
    ! grep -qE '^ *(ref|buffer|outgoing|incoming|pending)|transaction|has (dead|cleared)' $state/state &&
        [[ $(grep -c '^proc' $state/state) == 1 && $(grep -c '^ *node' $state/state) == 1 ]]
}

# What callers of dead objects and of stopped processes bring about is provoked by the tests, and so is a reply to a caller
# that was killed meanwhile; anything else says that we broke one of the driver's rules. A hostile program is to break them: what is said of itself is provoked, too.
no_complaints() {
    ! dmesg -c | grep -E 'binder|BUG:|Oops' | grep -vE 'cannot find target node|reply target not found|transaction (async|call|reply) to .* failed|undelivered|send failed reply|still active|fd fixups failed|failed to map pages in userspace, no vma|spamming oneway|cannot allocate buffer: no (space|async space)|callbacks suppressed|BINDER_SET_CONTEXT_MGR already set|ioctl 40046207 .* returned -16'"${hostile:+|binder_linux: $program:}"
}

# says TEXT COMMAND...: the command fails and says that.
says() {
    local text=$1 output
    shift
    output=$("$@" 2>&1) && return 1
    grep -F "$text" <<<"$output"
}

second_manager() {
    local code=0
    hwservicemanager || code=$?
    [[ $code == 1 ]]
}

a_call_and_an_event() {
    fapictl call information set_ini_para panel backlight:level 42
    fapictl call information get_ini_para panel backlight:level | grep '"42"'
    fapictl watch --count 1 --timeout 30 >/tmp/events &
    local watcher=$!
    until fapictl post 0x10001 'value=7 text=hello' && sleep 0.1 && ! kill -0 "$watcher" 2>/dev/null; do :; done
    grep hello /tmp/events
}

echo "== the machine is up after $(uptime_) s"
dmesg -c >/dev/null
check "without a device, a program says how to get one" \
    says 'modprobe binder_linux devices=hwbinder,vndbinder,binder' env HIDL_BINDER_DEVICE=/dev/none fapictl list
check "a device of another driver is told from binder's" \
    says 'no device of the binder driver' env HIDL_BINDER_DEVICE=/dev/null fapictl list
check "without a context manager, a program says how to get one" says 'start hwservicemanager' fapictl list
check "a transport that is none is refused" says 'it may be "socket"' env HIDL_TRANSPORT=pigeon fapictl list
hwservicemanager 2>/tmp/manager.log &
eventually grep -q ready /tmp/manager.log
check "a second context manager is refused" second_manager
"$ZVTTV_TEST_SERVICE" >/tmp/service.log 2>&1 &
service=$!
check "fapictl finds all interfaces" fapictl wait --timeout 30
echo "== the service is registered after $(uptime_) s"
check "fapictl lists the service's process" bash -c "fapictl list | grep 'IZvtTvFApiTv  *default  *$service'"
check "calls and events reach other processes" a_call_and_an_event
kill "$service"
wait "$service" || true
check "the service's names end with it" eventually bash -c '! fapictl list | grep -q IZvtTvFApi'

suite runtime-process-test --gtest_filter='ProcessTest.*'
hostile=yes suite runtime-process-test --gtest_filter='HostileProcessTest.*'
suite service-process-test
suite state-process-test
suite events-process-test
suite peripheral-process-test
# The service without memory at each moment of each method takes two minutes here.
suite nomemory-process-test --gtest_filter='-*EveryMethod*'
# The other half of it calls the same methods, on a board that is not ready.
suite everymethod-process-test --gtest_filter='*.AnswersOnABoardThatIsReady'

cat /tmp/manager.log
echo "== all of it in $(uptime_) s of the machine's time"
echo "$((100 * passed / (passed + failed)))% tests passed, $failed tests failed out of $((passed + failed))"
((failed == 0))
