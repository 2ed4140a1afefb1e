#!/usr/bin/env bash
# unit-tests.sh BIN: all test programs in BIN, one after another, over sockets. Run as root inside the machine of
# binder-machine.sh. Ends with the totals as ctest writes them.
set -euo pipefail
bin=$1
export ZVTTV_TEST_SERVICE=$bin/vendor.zentrovi.tv.zvttvfactory@1.0-service ZVTTV_TEST_FAPICTL=$bin/fapictl
passed=0
failed=0
echo "== the machine is up after $(cut -d' ' -f1 /proc/uptime) s"
for program in "$bin"/*-test; do
    name=${program##*/}
    begin=$SECONDS
    code=0
    "$program" --gtest_brief=1 >"/tmp/$name.log" 2>&1 || code=$?
    good=$(sed -nE 's/^\[  PASSED  \] ([0-9]+) tests?\.$/\1/p' "/tmp/$name.log")
    bad=$(grep -cE '^\[  FAILED  \] .* \([0-9]+ ms\)$' "/tmp/$name.log" || true)
    if ((code != 0)) && [[ -z $good || $bad == 0 ]]; then
        bad=$((bad + 1)) # it did not come to its end
    fi
    if ((bad != 0)); then
        grep -v "^hidl" "/tmp/$name.log" || true
    fi
    passed=$((passed + ${good:-0}))
    failed=$((failed + bad))
    echo "== $name: ${good:-0} passed, $bad failed in $((SECONDS - begin)) s"
done
echo "$((100 * passed / (passed + failed)))% tests passed, $failed tests failed out of $((passed + failed))"
((failed == 0))
