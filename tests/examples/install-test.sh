#!/usr/bin/env bash
# install-test.sh BUILD COMPILER: installs what BUILD holds and moves it, builds the example client against it as
# somebody else would, and uses the service through it and through the tools.
set -euo pipefail
build=$1 compiler=$2
example=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../../examples/client")
root=${example%/examples/client}

here=$(mktemp -d)
children=()
trap 'kill "${children[@]}" 2>/dev/null || true; wait; rm -rf "$here"' EXIT
unset HIDL_TRANSPORT HIDL_BINDER_DEVICE LD_LIBRARY_PATH
export HIDL_RUNTIME_DIR=$here/registry ZVTTV_STATE_DIR=$here/state
mkdir -m 700 "$HIDL_RUNTIME_DIR"

fail() {
    echo "!! $*"
    tail -n 40 "$here"/*.log
    exit 1
}

# eventually TEXT FILE: waits until the file has a line with it.
eventually() {
    local tries
    for ((tries = 0; tries < 600; ++tries)); do
        grep -qF -- "$1" "$2" && return
        sleep 0.05
    done
    fail "no '$1' in $2"
}

start_service() {
    "$moved"/bin/vendor.zentrovi.tv.zvttvfactory@1.0-service >>"$here/service.log" 2>&1 &
    service=$!
    children+=("$service")
}

cmake --install "$build" --prefix "$here/prefix" --strip >"$here/install.log"
moved=$here/moved
mv "$here/prefix" "$moved"
if grep -rlF -e "$here/prefix" -e "$root" "$moved"; then
    fail "the files above name the folder that they were installed in or built from"
fi
[[ $(du -sm "$moved" | cut -f 1) -le 20 ]] || fail "$(du -sh "$moved"): not stripped"
bash -c 'source "$1"; complete -p fapictl' - "$moved/share/bash-completion/completions/fapictl" ||
    fail "no completion"

mkdir "$here/client"
cp "$example"/{client.cpp,CMakeLists.txt} "$here/client"
cmake -G Ninja -S "$here/client" -B "$here/client/build" -D CMAKE_CXX_COMPILER="$compiler" \
    -D CMAKE_PREFIX_PATH="$moved" >"$here/configure.log" 2>&1 || fail "the package is not found"
cmake --build "$here/client/build" >"$here/build.log" 2>&1 || fail "the client does not build"

"$here/client/build/factory-client" 60 >>"$here/client.log" 2>&1 &
children+=($!)
ZVTTV_BOARD_READY=500 start_service # the client asks again
eventually 'connected: version sim-1.0.0, status 0' "$here/client.log"
"$moved/bin/fapictl" post 0x10001 'value=7 text=first'
eventually 'event of sys: 65537, 7, first' "$here/client.log"
kill -KILL "$service"
eventually 'the service died' "$here/client.log"
: >"$here/client.log" # what comes next is of the second service
start_service
eventually 'connected: version sim-1.0.0, status 0' "$here/client.log"
"$moved/bin/fapictl" post 0x20001 'value=8 text=second'
eventually 'event of net: 131073, 8, second' "$here/client.log"
echo "The installed package works where it was moved to"
