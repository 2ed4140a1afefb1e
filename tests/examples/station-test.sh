#!/usr/bin/env bash
# station-test.sh BIN PYTEST: the station's checks, of both kinds, on simulated boards: one that is well, and ones on each
# of which one thing is not, which one check has to notice.
set -euo pipefail
export PATH=$1:$PATH PYTHONDONTWRITEBYTECODE=1
pytest=$2
station=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../../examples/station")
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
cd "$out"
failed=0

# same WHAT SEEN WANTED
same() {
    [[ $2 == "$3" ]] && return
    echo "!! $1: '$2', not '$3'"
    cat "$out/said"
    failed=1
}

# board FAILS ARG...: the checks that fail on the board of `simulated.sh ARG...`; all others pass.
board() {
    local fails=$1 count code=0
    count=$(wc -w <<<"$fails")
    shift
    "$station/simulated.sh" "$@" "$station/station.sh" -o pictures >said 2>&1 || code=$?
    same "station.sh, $*" "$(sed -nE 's/^FAIL +[0-9]+ ([a-z]+) .*[0-9] s  .+/\1/p' said | xargs)" "$fails"
    same "its exit code" "$code" $((count > 0))
    same "its checks that pass" "$(grep -c '^ok' said)" $((10 - count))

    code=0
    "$station/simulated.sh" "$@" "$pytest" "$station" -rf --page=page.html --junitxml=report.xml >said 2>&1 || code=$?
    same "test_station.py, $*" "$(sed -nE 's/^FAILED .*::test_([a-z]+) .*/\1/p' said | xargs)" "$fails"
    same "its exit code" "$code" $((count > 0))
    same "what its page opens" "$(grep -c '<details class="failed" open>' page.html || true)" "$count"
    same "its file's failures" "$(grep -o ' failures="[0-9]*"' report.xml)" " failures=\"$count\""
}

board ""
same "pictures" "$(grep -l PNG pictures/*.png | wc -l)" 3
same "the page's pictures" "$(grep -o 'src="data:image/png;base64,[A-Za-z0-9+/=]\{10000,\}"' page.html | wc -l)" 3
board "versions" --order "force info_get_ini_para -101"
board "keypad" --order "force prphrl_start_keypad -103"
board "edid" --order "force prphrl_get_hdmi_edid_data -101"
board "signal" --order "signal hdmi1 lost"
board "uart" --no-plug
board "bars" --order "force disptst_gen_test_pattern -103"
board "settings" --order "force sys_set_emmc_env_var -113"
# What is read is not what was written.
board "settings" --order "force sys_set_emmc_env_var 0"
board "bars ramp grid" --order "force disp_capture_screen_to_usb -103 always"
exit "$failed"
