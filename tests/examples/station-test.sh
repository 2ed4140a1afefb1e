#!/usr/bin/env bash
# station-test.sh BIN: the station's checks on simulated boards: one that is well, and ones on each of which one thing is
# not, which one check has to notice.
set -euo pipefail
export PATH=$1:$PATH
station=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../../examples/station")
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
failed=0

# board FAILS ARG...: the checks that fail on the board of `simulated.sh ARG...`.
board() {
    local fails=$1 code=0 said seen
    shift
    said=$("$station/simulated.sh" "$@" "$station/station.sh" -o "$out" 2>&1) || code=$?
    seen=$(sed -nE 's/^FAIL +[0-9]+ ([a-z]+) .*[0-9] s  .+/\1/p' <<<"$said" | xargs)
    if [[ $seen != "$fails" || $code != "$([[ -z $fails ]] && echo 0 || echo 1)" || $(grep -c '^ok' <<<"$said") != $((10 - $(wc -w <<<"$fails"))) ]]; then
        echo "!! $* has to fail: $fails; exit code $code:"
        echo "$said"
        failed=1
    fi
}

board ""
[[ -s $out/bars.png && -s $out/edid-4.bin ]] || failed=1
board "versions" --order "force info_get_ini_para -101"
board "edid" --order "force prphrl_get_hdmi_edid_data -101"
board "signal" --order "signal hdmi1 lost"
board "uart" --no-plug
board "bars" --order "force disptst_gen_test_pattern -103"
board "settings" --order "force sys_set_emmc_env_var -113"
# What is read is not what was written.
board "settings" --order "force sys_set_emmc_env_var 0"
board "bars ramp grid" --order "force disp_capture_screen_to_usb -103 always"
exit "$failed"
