#!/usr/bin/env bash
# station.sh [-o FOLDER] [SET.conf]: checks one set, a line for each of ten checks. Exit code 0 when all have passed, 1
# when one has not, 2 when it was called wrongly. Pictures and what was said are kept in FOLDER (station).
#
# The set is the one that fapictl finds here, or behind $STATION_SHELL, which is given a line for the set's shell: 'adb
# shell'. $STATION_JIG is who presses keys and looks at the panel: a command that is given one word, 'key 139' or 'look
# eight bars' (operator.sh).
set -uo pipefail
here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
out=station
[[ ${1:-} != -o ]] || { out=${2:?}; shift 2; }
if (($# > 1)) || [[ ! -r ${1:-$here/set.conf} ]]; then
    echo "Usage: station.sh [-o FOLDER] [SET.conf]" >&2
    exit 2
fi
# shellcheck disable=SC1090 # whichever it is
source "${1:-$here/set.conf}"
: "${library:?}" "${panel:?}" "${hdmi_ports:?}" "${signal:?}" "${key:?}" "${uart_port:?}"
read -ra shell <<<"${STATION_SHELL:-}"
read -ra jig <<<"${STATION_JIG:-$here/operator.sh}"
mkdir -p "$out" || exit 2

fail() {
    echo "$*"
    exit 1
}

# tool ARG...: runs fapictl where the set is.
tool() {
    if ((${#shell[@]})); then
        "${shell[@]}" "$(printf '%q ' fapictl "$@")" </dev/null
    else
        fapictl "$@"
    fi
}

# call INTERFACE METHOD ARG...: fails unless it is done. What it said is in $said.
call() {
    said=$(tool call --timeout 10 --no-legend "$@" 2>&1) ||
        fail "$2: $(tail -n 1 <<<"$said" | sed -E 's/^(s32Status +int32_t|bDone +bool) +//')"
}

# get RESULT INTERFACE METHOD ARG...: one result of a call, in $got.
get() {
    call "${@:2}"
    got=$(sed -nE "s/^ *$1 +[^ ]+ +(.*)/\1/p" <<<"$said")
    got=${got#\"} got=${got%\"}
}

# same WHAT FOUND EXPECTED
same() {
    [[ $2 == "$3" ]] || fail "$1 is '$2', not '$3'"
}

# event SECONDS PATTERN COMMAND...: an event of the peripherals that the command brings.
event() {
    local seconds=$1 pattern=$2 seen=$out/events watch
    shift 2
    : >"$seen"
    tool watch --module prphrl --count 1 --timeout "$seconds" >>"$seen" 2>&1 &
    watch=$!
    until grep -q '^watching' "$seen" || ! kill -0 "$watch" 2>/dev/null; do sleep 0.02; done
    "$@" || fail "$* ended with $?"
    wait "$watch" || fail "$(tail -n 1 "$seen")"
    grep -qE "$pattern" "$seen" || fail "another event: $(tail -n 1 "$seen")"
}

# picture NAME WHAT X,Y=RRGGBB...: what the panel shows, and colours that it has in places.
picture() {
    local file=$out/$1.png what=$2 place x y found said
    shift 2
    if ! tool capture - >"$file" 2>"$file.log"; then
        said=$(cat "$file.log")
        rm "$file"
        # Not every library brings pictures to us.
        [[ $said == *capture_screen_to_usb* ]] || fail "$said"
        "${jig[@]}" "look $what" || fail "the panel does not show $what"
        return
    fi
    for place; do
        IFS=,= read -r x y _ <<<"$place"
        found=$(pngtopam "$file" | pamcut -left "$x" -top "$y" -width 1 -height 1 | tail -c 3 | od -An -tx1 | tr -d ' \n')
        same "the colour at $x,$y" "$found" "${place#*=}"
    done
}

# pattern NUMBER RECORD NAME WHAT X,Y=RRGGBB...
pattern() {
    call displaytest gen_test_pattern "$1" "$2"
    trap 'call displaytest gen_test_pattern 0 "{}"' EXIT
    picture "${@:3}"
}

white=stForeground.u32Red=1023,stForeground.u32Green=1023,stForeground.u32Blue=1023,stForeground.u8Alpha=255
black=stBackground.u8Alpha=255
lines=stLine.u32Red=1023,stLine.u32Green=1023,stLine.u32Blue=1023,stLine.u8Alpha=255,u16LineWidth=4

check_service() {
    said=$(tool wait --timeout 10 2>&1) || fail "$said"
    call information get_fapi_sw_version
}

check_versions() {
    get strVersion information get_fapi_sw_version
    same "the library's version" "$got" "$library"
    get strIniValue information get_ini_para panel name
    same "the panel" "$got" "$panel"
}

check_keypad() {
    call peripheral get_keypad_code on
    trap 'call peripheral get_keypad_code off' EXIT
    event 30 "0x00100004 +value=$key " "${jig[@]}" "key $key"
}

check_edid() {
    local port
    for port in $hdmi_ports; do
        tool edid "$port" - >"$out/edid-$port.bin" || fail "port $port has no EDID"
        edid-decode --check "$out/edid-$port.bin" >"$out/edid-$port.txt" || fail "port $port: see edid-$port.txt"
    done
}

check_signal() {
    local width
    get u16HActive inputsource get_input_timing
    width=${got% pixel}
    get u16VActive inputsource get_input_timing
    same "the signal" "${width}x${got% line}" "$signal"
}

check_uart() {
    local text="loop $RANDOM"
    call peripheral set_factory_uart_onoff on 1 "$uart_port" 0
    trap 'call peripheral set_factory_uart_onoff off 1 "$uart_port" 0' EXIT
    event 5 "0x00100001 .*bytes=$(printf %s "$text" | od -An -tx1 | tr -d ' \n') " \
        call peripheral write_factory_uart "$text"$'\n' $((${#text} + 1))
}

check_bars() {
    pattern 3 '{}' bars "eight bars, white to black" 100,540=ffffff 580,540=00ffff 1300,540=ff0000 1800,540=000000
}

check_ramp() {
    pattern 2 "$white,$black" ramp "a ramp from white to black" 0,540=ffffff 1919,540=000000
}

check_grid() {
    pattern 5 "$black,$lines" grid "a white grid of 16 by 9" 1,1=ffffff 60,60=000000 121,60=ffffff
}

check_settings() {
    local value
    parameter=(panel backlight:pwm_max)
    get strIniValue information get_ini_para "${parameter[@]}"
    before=$got # of this subshell, as its end puts it back
    trap 'call information set_ini_para "${parameter[@]}" "$before"' EXIT
    for value in 100 90; do
        call information set_ini_para "${parameter[@]}" "$value"
        get strIniValue information get_ini_para "${parameter[@]}"
        same "${parameter[*]}" "$got" "$value"
    done
    value=checked-$RANDOM
    call system set_emmc_env_var station "$value"
    get strVarValue system get_emmc_env_var station
    same "the variable station" "$got" "$value"
}

# Each in a shell of its own, whose end puts back what the check has changed.
checks=(service versions keypad edid signal uart bars ramp grid settings)
number=0
failed=0
for name in "${checks[@]}"; do
    begin=${EPOCHREALTIME/[.,]/}
    number=$((number + 1))
    if ("check_$name") >"$out/$name.log" 2>&1; then
        verdict="ok  " reason=
    else
        verdict=FAIL reason=$(tail -n 1 "$out/$name.log") failed=$((failed + 1))
    fi
    took=$(((${EPOCHREALTIME/[.,]/} - begin) / 1000))
    printf '%s %2d %-9s %2d.%03d s  %s\n' "$verdict" "$number" "$name" $((took / 1000)) $((took % 1000)) "$reason"
    # Without a service the others would only take their time.
    [[ $name != service || -z $reason ]] || break
done
if ((failed)); then
    echo "FAILED: $failed of ${#checks[@]}"
    exit 1
fi
echo "PASSED: all $number"
