#!/usr/bin/env bash
# binder-machine.sh [--arm64] [--console] WORK SCRIPT [ARG...]: boots Debian's kernel with its binder driver in a virtual
# machine and runs SCRIPT there as root, under its path. The machine sees this one's files, read-only, and has a /tmp of
# its own. Its output is this script's, its exit code too (125: the machine ended before SCRIPT did). The kernel is fetched
# as a package into WORK, not installed. Without --console, the machine is ended after $limit.
#
# --arm64: an AArch64 machine. Its programs are those of build/arm64-sysroot, its libraries this machine's for arm64.
# --console: this terminal is the machine's: SCRIPT reads from it, and Ctrl-C is SCRIPT's.
set -euo pipefail
tree=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")
architecture=amd64
console=
while [[ $1 == --* ]]; do
    case $1 in
        --arm64) architecture=arm64 ;;
        --console) console=yes ;;
        *)
            echo "binder-machine.sh: no option $1" >&2
            exit 2
            ;;
    esac
    shift
done
mkdir -p "$1"
work=$(realpath "$1")
shift
modules=(virtio_ring virtio virtio_pci_modern_dev virtio_pci_legacy_dev virtio_pci netfs fscache 9pnet 9pnet_virtio 9p
    binder_linux)
# Emulated on every machine: it takes a few seconds longer than KVM, which does not work wherever it is offered.
case $architecture in
    amd64)
        # A processor without the wide vectors is emulated faster.
        machine=(qemu-system-x86_64 -machine "q35,accel=tcg" -cpu "${BINDER_CPU:-max,la57=off,avx=off,avx2=off}" -smp 2)
        serial=ttyS0
        limit=15m # the tests take two minutes
        busybox=$(command -v busybox)
        programs=
        ;;
    arm64)
        machine=(qemu-system-aarch64 -machine "virt,accel=tcg" -cpu "${BINDER_CPU:-cortex-a72}" -smp 2)
        serial=ttyAMA0
        limit=60m # all tests take fifteen minutes
        programs=$tree/build/arm64-sysroot
        busybox=$programs/bin/busybox
        ;;
esac

# kernel_package: the kernel that Debian's machines run now; nothing when apt's lists do not have it.
kernel_package() {
    { apt-cache depends "linux-image-$architecture:$architecture" 2>/dev/null || true; } |
        sed -nE 's/^ *Depends: (linux-image-[^ :]*)(:.*)?$/\1/p' | head -n 1
}

# download PACKAGE: into the folder that this is called in.
download() {
    [[ -n $1 ]] && apt-get download -qq -o APT::Sandbox::User=root "$1:$architecture"
}

update_lists() {
    if ((EUID == 0)); then
        apt-get update -qq
    else
        sudo apt-get update -qq
    fi
}

# fetch_kernel: takes the kernel out of its package. Lists of packages may be missing or older than the mirror's files.
fetch_kernel() {
    local package new
    package=$(kernel_package)
    if [[ -n $package && -f $work/kernel/$package ]]; then
        return
    fi
    new=$(mktemp -d -p "$work")
    (
        cd "$new"
        if ! download "$package"; then
            update_lists || true # what follows tells
            package=$(kernel_package)
            download "$package" || {
                echo "Debian's kernel, ${package:-linux-image-$architecture}, can not be fetched: see what apt says above" >&2
                rm -r "$new"
                exit 1
            }
        fi
        dpkg-deb --extract "$package"_*.deb .
        rm "$package"_*.deb
        touch "$package"
    )
    rm -rf "$work/kernel"
    mv "$new" "$work/kernel"
}

# make_initramfs FOLDER COMMAND: busybox, the driver and what leads to this machine's files.
make_initramfs() {
    local root=$1/root module file
    mkdir -p "$root"/{bin,host,modules}
    cp "$busybox" "$root/bin/busybox"
    for module in "${modules[@]}"; do
        file=$(find "$work/kernel/lib/modules" -name "$module.ko")
        [[ -z $file ]] || cp "$file" "$root/modules/" # else it is built in
    done
    cat >"$root/init" <<END
#!/bin/busybox sh
/bin/busybox --install -s /bin
for module in ${modules[*]}; do
    case \$module in
        binder_linux) insmod /modules/\$module.ko devices=hwbinder,vndbinder,binder ;;
        *) [ ! -f /modules/\$module.ko ] || insmod /modules/\$module.ko ;;
    esac
done
share='-t 9p -o trans=virtio,version=9p2000.L,msize=262144,cache=loose,ro'
mount \$share host /host
mount -t tmpfs tmpfs /host/tmp
mkdir -p '/host$tree' 2>/dev/null
mount \$share tree '/host$tree'
mount -t proc proc /host/proc
if [ -n '$programs' ]; then
    mount -t tmpfs tmpfs /host/usr/bin
    cp -a '/host$programs/bin/'* '/host$programs/usr/bin/'* /host/usr/bin
    chroot /host /usr/bin/busybox --install -s /usr/bin 2>/dev/null # what is there already stays
fi
mount -t sysfs sysfs /host/sys
mount -t debugfs debugfs /host/sys/kernel/debug
mount -t devtmpfs devtmpfs /host/dev
mkdir -p /host/dev/pts /host/dev/shm
mount -t devpts devpts /host/dev/pts
mount -t tmpfs tmpfs /host/dev/shm
ln -s /proc/self/fd /host/dev/fd
ip link set lo up
hostname machine
dmesg -n 1
code=0
$2 || code=\$?
echo "== machine: exit code \$code"
poweroff -f
END
    chmod +x "$root/init"
    (cd "$root" && find . | cpio --quiet -o -H newc | gzip -1) >"$1/root.gz"
}

environment=(HOME=/tmp PATH=/usr/bin:/bin:/usr/sbin:/sbin)
[[ -z $programs ]] ||
    environment+=("LD_LIBRARY_PATH=$programs/usr/lib/p7zip:$programs/usr/lib/aarch64-linux-gnu:$programs/lib/aarch64-linux-gnu")
if [[ -n $console ]]; then
    environment+=("TERM=${TERM:-dumb}" LANG=C.UTF-8)
    size=$(stty size 2>/dev/null || echo 24 80)
    before="stty -F /host/dev/$serial rows ${size% *} cols ${size#* }; setsid -c"
    ends="</host/dev/$serial >/host/dev/$serial 2>&1"
    # Ctrl-] x ends the emulator, whatever the machine does; Ctrl-C is a key like any other.
    terminal=(-echr 0x1d -chardev "stdio,id=terminal,mux=on,signal=off" -serial chardev:terminal)
else
    environment+=(TERM=dumb)
    before=
    ends="</dev/null 2>&1"
    terminal=(-serial stdio)
fi
command="$before chroot /host /usr/bin/env -i $(printf '%q ' "${environment[@]}" "$(realpath "$1")" "${@:2}") $ends"

fetch_kernel
temporary=$(mktemp -d)
trap 'rm -rf "$temporary"' EXIT
make_initramfs "$temporary" "$command"
kernels=("$work"/kernel/boot/vmlinuz-*)
# Without random addresses, what the emulator has translated of a program serves its next start, too: that takes a third
# of the time.
machine+=(-m 1536 -nodefaults -no-reboot -display none "${terminal[@]}" -kernel "${kernels[0]}"
    -initrd "$temporary/root.gz" -append "console=$serial quiet panic=-1 mitigations=off norandmaps nokaslr"
    -fsdev "local,id=host,path=/,security_model=none,readonly=on,multidevs=remap"
    -device "virtio-9p-pci,fsdev=host,mount_tag=host"
    -fsdev "local,id=tree,path=$tree,security_model=none,readonly=on,multidevs=remap"
    -device "virtio-9p-pci,fsdev=tree,mount_tag=tree")
ran=0
if [[ -n $console ]]; then
    "${machine[@]}" | tee "$temporary/output" || ran=$?
else
    timeout "$limit" "${machine[@]}" </dev/null 2>&1 | sed -u 's/\r$//' | tee "$temporary/output" || ran=$?
fi
code=$(tr -d '\r' <"$temporary/output" | sed -n 's/^== machine: exit code \([0-9]*\)$/\1/p' | tail -n 1)
if [[ -z $code ]]; then
    echo "== machine: it ended before what ran there (emulator's exit code $ran; 124: after $limit)" >&2
    code=125
fi
exit "$code"
