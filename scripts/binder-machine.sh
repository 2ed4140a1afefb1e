#!/usr/bin/env bash
# binder-machine.sh WORK SCRIPT [ARG...]: boots Debian's kernel with its binder driver in a virtual machine and runs
# SCRIPT there as root, under its path. The machine sees this one's files, read-only, and has a /tmp of its own. Its
# output is this script's, its exit code too. The kernel is fetched as a package into WORK, not installed.
set -euo pipefail
tree=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")
mkdir -p "$1"
work=$(realpath "$1")
shift
modules=(virtio_ring virtio virtio_pci_modern_dev virtio_pci_legacy_dev virtio_pci netfs fscache 9pnet 9pnet_virtio 9p
    binder_linux)

# fetch_kernel: the kernel that Debian's amd64 machines run now, taken out of its package.
fetch_kernel() {
    local package
    package=$(apt-cache depends linux-image-amd64 | sed -n 's/^ *Depends: \(linux-image-[^ ]*\)$/\1/p' | head -n 1)
    if [[ -z $package ]]; then
        echo "apt knows no linux-image-amd64; run: apt-get update" >&2
        return 1
    fi
    if [[ ! -f $work/kernel/$package ]]; then
        rm -rf "$work/kernel"
        mkdir -p "$work/kernel"
        (
            cd "$work/kernel"
            apt-get download -qq "$package"
            dpkg-deb --extract "$package"_*.deb .
            rm "$package"_*.deb
            touch "$package"
        )
    fi
}

# make_initramfs COMMAND: busybox, the driver and what leads to this machine's files.
make_initramfs() {
    local root=$work/root module file
    rm -rf "$root"
    mkdir -p "$root"/{bin,host,modules}
    cp "$(command -v busybox)" "$root/bin/"
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
mount -t sysfs sysfs /host/sys
mount -t debugfs debugfs /host/sys/kernel/debug
mount -t devtmpfs devtmpfs /host/dev
mkdir -p /host/dev/pts /host/dev/shm
mount -t devpts devpts /host/dev/pts
mount -t tmpfs tmpfs /host/dev/shm
ln -s /proc/self/fd /host/dev/fd
ip link set lo up
dmesg -n 1
code=0
chroot /host /usr/bin/env -i HOME=/tmp TERM=dumb PATH=/usr/sbin:/usr/bin:/sbin:/bin $1 </dev/null 2>&1 || code=\$?
echo "== machine: exit code \$code"
poweroff -f
END
    chmod +x "$root/init"
    (cd "$root" && find . | cpio --quiet -o -H newc | gzip -1) >"$work/root.gz"
}

command=$(printf '%q ' "$(realpath "$1")" "${@:2}")
fetch_kernel
make_initramfs "$command"
# Emulated on every machine: it takes a few seconds longer than KVM, which does not work wherever it is offered. A
# processor without the wide vectors is emulated faster.
kernels=("$work"/kernel/boot/vmlinuz-*)
qemu-system-x86_64 -machine q35,accel=tcg -cpu "${BINDER_CPU:-max,la57=off,avx=off,avx2=off}" -m 1536 -smp 1 -nodefaults \
    -no-reboot -display none -serial stdio -kernel "${kernels[0]}" -initrd "$work/root.gz" \
    -append "console=ttyS0 quiet panic=-1 mitigations=off" \
    -fsdev local,id=host,path=/,security_model=none,readonly=on,multidevs=remap \
    -device virtio-9p-pci,fsdev=host,mount_tag=host \
    -fsdev "local,id=tree,path=$tree,security_model=none,readonly=on,multidevs=remap" \
    -device virtio-9p-pci,fsdev=tree,mount_tag=tree \
    </dev/null 2>&1 | tr -d '\r' | tee "$work/output"
code=$(sed -n 's/^== machine: exit code \([0-9]*\)$/\1/p' "$work/output" | tail -n 1)
exit "${code:-125}"
