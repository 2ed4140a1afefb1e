#!/usr/bin/env python3
"""Whether the policy compiles and keeps to what the platform allows to HALs.

check-policy.py [ROOT]     checks sepolicy/, alone and with its examples, and first itself on planted violations

The platform's macros and types are stood in for by scripts/policy/.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

STAND_INS = pathlib.Path(__file__).parent / "policy"
SERVICE = "hal_zvttvfactory_default"


def policy_of(root, with_examples, planted=""):
    """The whole policy as the compiler reads it. Every label is given to a path, which makes the compiler check it."""
    folders = [root / "sepolicy"] + ([root / "sepolicy/examples"] if with_examples else [])
    texts = lambda pattern: "".join(path.read_text() for folder in folders for path in sorted(folder.glob(pattern)))
    rules = [(STAND_INS / "platform.m4").read_text(), texts("attributes"), texts("*.te"), planted,
             (STAND_INS / "rules.m4").read_text(), texts("genfs_contexts")]
    text = subprocess.run(["m4", "--fatal-warnings"], input="\n".join(rules), text=True, check=True,
                          capture_output=True).stdout
    for number, line in enumerate((texts("file_contexts") + texts("hwservice_contexts")).splitlines()):
        text += f"genfscon labels /{number} {line.split()[-1]}\n"
    return text


def refusal(policy):
    """What the compiler has against a policy; empty when it takes it."""
    with tempfile.TemporaryDirectory() as folder:
        source = pathlib.Path(folder, "policy.conf")
        source.write_text(policy)
        answer = subprocess.run(["checkpolicy", "-M", "-o", f"{folder}/policy", source], capture_output=True, text=True)
    return answer.stderr.strip() or f"exit code {answer.returncode}" if answer.returncode != 0 else ""


def needed_rules(root):
    """The rules without which the service or a client would fail, among those that nothing grants."""
    needed = (
        f"init {SERVICE}:process transition",
        f"{SERVICE} hal_zvttvfactory_hwservice:hwservice_manager add",
        "factory_app hal_zvttvfactory_hwservice:hwservice_manager find",
        f"factory_app {SERVICE}:binder call",
        f"factory_app {SERVICE}:binder transfer",  # the callback object
        f"{SERVICE} factory_app:binder call",  # an event
        f"{SERVICE} factory_app:fd use",  # the page of state
        f"{SERVICE} zvttvfactory_serial_device:chr_file ioctl",
        f"{SERVICE} zvttvfactory_i2c_device:chr_file ioctl",
        f"{SERVICE} zvttvfactory_gpio_device:chr_file ioctl",
        f"{SERVICE} sysfs_zvttvfactory_pwm:file write",
        f"{SERVICE} zvttvfactory_persist_file:file {{ create rename unlink }}",
    )
    # Forbidding a rule that is there is a contradiction.
    return [rule for rule in needed if "neverallow" not in refusal(policy_of(root, True, f"neverallow {rule};"))]


def check_itself(root):
    plants = (
        (f"allow {SERVICE} self:udp_socket {{ create ioctl }};", "neverallow"),
        (f"allow {SERVICE} self:capability net_admin;", "neverallow"),
        ("allow hal_zvttvfactory_server self:packet_socket create;", "neverallow"),
        (f"allow {SERVICE} self:netlink_route_socket nlmsg_write;", "neverallow"),
        (f"allow {SERVICE} vendor_file:file {{ execute execute_no_trans }};", "neverallow"),
        (f"allow {SERVICE} binder_device:chr_file rw_file_perms;", "neverallow"),
        (f"allow {SERVICE} system_data_file:file r_file_perms;", "neverallow"),
        (f"allow {SERVICE} device:chr_file rw_file_perms;", "neverallow"),
        (f"allow {SERVICE} sysfs:file rw_file_perms;", "neverallow"),
        ("typeattribute factory_app hal_zvttvfactory_server;", "neverallow"),
        ("allow init hal_zvttvfactory_hwservice:hwservice_manager add;", "neverallow"),
        ("allow init hal_zvttvfactory_hwservice:hwservice_manager find;", "neverallow"),
        (f"allow {SERVICE} factory_socket_device:chr_file read;", "unknown type"),
        (f"allow {SERVICE} device:chr_file reed;", "not defined"),
        (f"binder_cal({SERVICE}, factory_app)", "syntax error"),
        ("genfscon labels /x u:object_r:hal_zvttvfactory_service:s0", "not defined"),
    )
    for rule, complaint in plants:
        answer = refusal(policy_of(root, True) + rule if rule.startswith("genfscon") else policy_of(root, True, rule))
        if not re.search(complaint, answer):
            sys.exit(f"check-policy.py: '{rule}' is answered with '{answer}'")


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent).resolve()
    failed = False
    for with_examples in (False, True):
        answer = refusal(policy_of(root, with_examples))
        if answer:
            print(f"{'with its examples' if with_examples else 'alone'}: {answer}", file=sys.stderr)
            failed = True
    for path in (root / "sepolicy").rglob("*.te"):
        if re.search(r"^\s*permissive\b", path.read_text(), re.M):
            print(f"{path.relative_to(root)}: a permissive domain is forbidden nothing", file=sys.stderr)
            failed = True
    if not failed:
        check_itself(root)
        for rule in needed_rules(root):
            print(f"nothing allows {rule}", file=sys.stderr)
            failed = True
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
