#!/usr/bin/env bash
# make-gallery.sh [BIN]: draws what the simulated board's panel can show, through fapictl, on a service of its own
# and a board fresh from the factory, and writes the pictures and their page: docs/gallery.md, docs/gallery/.
#
# BIN is where the service and fapictl are built (default: build/release/bin). Run it again when the panel's
# drawing changes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bin=$(realpath "${1:-build/release/bin}")
fapictl=$bin/fapictl
pictures=docs/gallery
page=docs/gallery.md
scripts/install-packages.sh check

scratch=$(mktemp -d)
service=
finish() {
    if [[ -n $service ]]; then
        kill -TERM "$service" 2>/dev/null || true
        wait "$service" 2>/dev/null || true
    fi
    rm -rf "$scratch"
}
trap finish EXIT
trap 'exit 130' INT TERM HUP

mkdir -m 700 "$scratch/registry"
export HIDL_RUNTIME_DIR=$scratch/registry ZVTTV_STATE_DIR=$scratch/state ZVTTV_DEBUG_LEVEL=0
"$bin/vendor.zentrovi.tv.zvttvfactory@1.0-service" </dev/null >"$scratch/log" 2>&1 &
service=$!
"$fapictl" wait --timeout 30 >/dev/null

# What the commands below print is of interest only when one fails.
run() {
    if ! "$fapictl" "$@" >"$scratch/out" 2>&1; then
        echo "fapictl $*" >&2
        cat "$scratch/out" >&2
        exit 1
    fi
}

# The commands of the picture at hand, as the page shows them.
commands=()
# call INTERFACE METHOD ARG...
call() {
    local word line="fapictl call"
    for word in "$@"; do
        [[ $word =~ ^[A-Za-z0-9_./,=-]+$ ]] || word="'$word'"
        line+=" $word"
    done
    commands+=("$line")
    run call "$@"
}

# order EVENTS TEXT: tells the board what the world does, and waits until as many locks are lost and found.
order() {
    commands+=("fapictl call system send_cmd_to_factory_svc 0 '$2'")
    run watch --quiet --type 0x200001,0x200002 --count "$1" --timeout 10 -- "$fapictl" call system send_cmd_to_factory_svc 0 "$2"
}

# picture NAME TITLE [LAYERS]: captures, shrinks and describes what is shown.
picture() {
    local name=$1 title=$2
    shift 2
    run capture "$scratch/shot.png" "$@"
    # 128 colours are more than these pictures need, and a third of the bytes.
    pngtopnm "$scratch/shot.png" | pamscale -filter=sinc -window=blackman -xsize 480 -ysize 270 >"$scratch/small.ppm"
    pnmquant 128 "$scratch/small.ppm" 2>/dev/null | pnmtopng -compression 9 2>/dev/null >"$pictures/$name.png"
    {
        printf '## %s\n\n![%s](gallery/%s.png)\n\n' "$title" "$title" "$name"
        printf '    %s\n' "${commands[@]}" "fapictl capture panel.png${1:+ $1}"
        echo
    } >>"$page"
    commands=()
}

white=stForeground.u32Red=1023,stForeground.u32Green=1023,stForeground.u32Blue=1023,stForeground.u8Alpha=255
black=stBackground.u8Alpha=255
lines=stLine.u32Red=1023,stLine.u32Green=1023,stLine.u32Blue=1023,stLine.u8Alpha=255

mkdir -p "$pictures"
rm -f "$pictures"/*.png
cat >"$page" <<'END'
# What the panel shows

Written by `scripts/make-gallery.sh`: each picture was drawn by the commands below it, on top of those before, on a
simulated board fresh from the factory, and shrunk from 1920x1080. What the numbers mean is in
[board.md](board.md#display-and-display-test).

END

picture hdmi "HDMI, as delivered"
order 2 "source atv"
picture tuner "The analogue tuner"
order 2 "source dtv"
picture digital "The digital tuner"
order 2 "source av"
picture composite "Composite video"
order 2 "source component"
picture component "Component video"
order 2 "source vga"
picture vga "A computer"
order 1 "source media"
order 1 "signal media lock 1920x1080@24"
picture media "The media player"
order 2 "source hdmi1"
order 1 "signal hdmi1 lost"
picture no-input "Without a signal"
call displaytest gen_test_pattern 3 "{}"
picture bars "Colour bars: pattern 3"
call displaytest gen_test_pattern 2 "$white,$black"
picture ramp "A ramp: pattern 2"
call displaytest gen_test_pattern 2 "$white,$black,u32Rows=11,u8Vertical=1"
picture steps "A ramp in 11 steps, from top to bottom"
call displaytest gen_test_pattern 4 "$white,$black"
picture board "A board: pattern 4"
call displaytest gen_test_pattern 5 "$black,$lines,u16LineWidth=4"
picture grid "A grid: pattern 5"
call displaytest gen_test_pattern 7 "$black,$lines,u16LineWidth=4"
picture geometry "Geometry: pattern 7"
call displaytest gen_test_pattern 8 "$white,$black"
picture burst "Stripes: pattern 8"
call displaytest gen_test_pattern 9 "$white,$black"
picture rings "Rings: pattern 9"
call displaytest gen_test_pattern 6 "$white,$black,stLine.u32Red=1023,stLine.u8Alpha=255,u16LineWidth=12"
picture window "A window: pattern 6"
call displaytest gen_test_pattern 1 "${white/Alpha=255/Alpha=128},stBackground.u32Green=300,stBackground.u8Alpha=255,u32X=300,u32Y=200,u32Width=800,u32Height=600"
picture plain "A plain area, half of which the video shines through: pattern 1"

call displaytest gen_test_pattern 3 "{}"
call displaytest gen_gop_test_pattern_on 0 0
call displaytest gen_gop_test_pattern_draw_rect u32X=200,u32Y=150,u32Width=900,u32Height=500,u32FillColor=0xC0104080,u32BorderColor=0xFFFFFFFF,u8Fill=1,u8BorderWidth=12,u8CornerRadius=80
call displaytest gen_gop_test_pattern_draw_rect u32X=700,u32Y=400,u32Width=900,u32Height=500,u32FillColor=0x80FF4000,u32BorderColor=0xFF000000,u8Fill=1,u8BorderWidth=6,u8Blend=1
call displaytest gop_pattern_set_attr u8Alpha=255,u16LineWidth=9
call displaytest gen_gop_test_pattern_draw_line u32StartX=0,u32StartY=1079,u32EndX=1919,u32EndY=0,u32Color=0xFF00FF00
picture graphics "The graphics plane: rectangles and a line"
mkdir -p "$ZVTTV_STATE_DIR/files"
pbmtext -builtin fixed "A BMP FILE" 2>/dev/null | pnmenlarge 6 2>/dev/null | ppmchange white gold black navy |
    ppmtobmp -bpp 24 2>/dev/null >"$ZVTTV_STATE_DIR/files/text.bmp"
call displaytest gen_gop_test_pattern_by_bmp /text.bmp 60 880
picture bmp "A BMP file on it, from the board's files"
call displaytest gop_pattern_set_attr u8Alpha=160,u16X=960,u16Y=540,u32BackColor=0xFF404040
picture attributes "The plane moved into a quarter, half transparent, on grey"
picture graphics-alone "The same, the graphics alone" graphics
call displaytest gen_gop_test_pattern_off
call displaytest set_osd_layer_on_off 0 true
call displaytest set_osd_layer_on_off 1 true
picture osd "The OSD's two layers"
call displaytest set_osd_layer_on_off 0 false
call displaytest set_osd_layer_on_off 1 false

call display set_picture_param 2 0
picture saturation "No saturation"
call display set_picture_param 2 50
call display set_picture_param 3 80
picture hue "The hue turned by 30 degrees"
call displaytest set_pq_on_off false
picture pq-off "The same without picture-quality processing"
call displaytest set_pq_on_off true
call display set_picture_param 3 50
call display set_color_temperature 1024 900 640 1024 1024 1024
picture warm "A warm white point"
call display set_color_temperature 1024 1024 1024 1024 1024 1024
call display set_over_scan -100 -100 50 50
picture overscan "Margins left and right, overscan above and below"
call display set_over_scan 0 0 0 0
call display switch_window 1
picture sub-window "The second window"
call display switch_window 0
call display panel_set_attr 0 4 6 0 350 1
call displaytest gen_test_pattern 2 "$white,stBackground.u32Blue=300,$black"
picture mirrored "A ramp, mirrored, on 6 bits"
call display panel_set_attr 0 4 10 0 350 0
# The inverse, 1023 to 0.
seq -s, 1023 -4 3 >"$scratch/gamma"
call display set_gamma_curve "$(<"$scratch/gamma")" "$(<"$scratch/gamma")" "$(<"$scratch/gamma")"
commands=('fapictl call display set_gamma_curve ... ... ...     # 256 levels each, from 1023 down')
call displaytest gen_test_pattern 3 "{}"
picture gamma "Colour bars through an inverse gamma curve"
seq -s, 3 4 1023 >"$scratch/gamma"
run call display set_gamma_curve "$(<"$scratch/gamma")" "$(<"$scratch/gamma")" "$(<"$scratch/gamma")"
call displaytest set_burning_mode_adv true 60 u16Red=1023,u16Green=300
picture burn-in "Burn-in"

echo "$(find "$pictures" -name '*.png' | wc -l) pictures, $(du -cb "$pictures"/*.png | tail -n 1 | cut -f 1) bytes"
