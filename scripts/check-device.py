#!/usr/bin/env python3
"""Whether the files of the device image agree: names, paths, interfaces, sources.

check-device.py [ROOT]     checks the tree, and first itself on planted disagreements
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

PACKAGE = "vendor.zentrovi.tv.zvttvfactory"
EXECUTABLE = f"{PACKAGE}@1.0-service"
FOLDERS = ("Android.bp", "interface", "adapters", "manager", "service", "sepolicy", "scripts")


def strings_of(blueprint, key):
    """The strings of a list, or of one value, of a module."""
    found = re.search(rf"\b{key}:\s*(\[[^\]]*\]|\"[^\"]*\")", blueprint)
    text = re.sub(r"//.*", "", found.group(1)) if found else ""
    return re.findall(r'"([^"]*)"', text)


def compiler_module(root):
    """What the interface compiler itself says of the package's module."""
    with tempfile.TemporaryDirectory() as output:
        subprocess.run(["hidl-gen", "-L", "androidbp", "-R", "-r", f"{PACKAGE}:interface", "-r",
                        "android.hidl.base:platform/hal/base", "-o", output, f"{PACKAGE}@1.0"],
                       cwd=root, check=True, capture_output=True)
        written = next(pathlib.Path(output).rglob("Android.bp")).read_text()
    return re.search(r"hidl_interface \{.*?\n\}\n", written, re.S).group(0)


def disagreements(root, with_compiler=True):
    read = lambda name: (root / name).read_text()
    found = []

    def same(what, expected, actual):
        if expected != actual:
            found.append(f"{what}: {actual} instead of {expected}")

    main = read("service/main.cpp")
    registered = re.findall(r'registered<ZvtTvFApi\w+>\("z(vtTvFApi\w+)"\)', main)
    registered = [f"IZ{name}" for name in registered]
    declared = sorted(path.stem for path in (root / "interface/1.0").glob("I*.hal")
                      if path.stem != "IZvtTvFApiCallbackManager")
    same("service/main.cpp registers", declared, sorted(registered))

    init = read(f"service/{EXECUTABLE}.rc")
    same("the init file's interfaces", [f"{PACKAGE}@1.0::{name} default" for name in registered],
         re.findall(r"^    interface (.*)$", init, re.M))
    services = re.findall(r"^service \S+ (\S+)$", init, re.M)

    hal = xml.etree.ElementTree.fromstring(read(f"service/{EXECUTABLE}.xml")).find("hal")
    same("the manifest's package", (PACKAGE, "1.0", "hwbinder"),
         tuple(hal.findtext(tag) for tag in ("name", "version", "transport")))
    same("the manifest's interfaces", [(name, ["default"]) for name in registered],
         [(entry.findtext("name"), [instance.text for instance in entry.findall("instance")])
          for entry in hal.findall("interface")])

    module = read("service/Android.bp")
    same("the executable's name", [EXECUTABLE], strings_of(module, "name"))
    path = f"/vendor/bin/{strings_of(module, 'relative_install_path')[0]}/{EXECUTABLE}"
    same("the init file's path", [path], services)
    same("the module's init file", [f"{EXECUTABLE}.rc"], strings_of(module, "init_rc"))
    same("the module's manifest fragment", [f"{EXECUTABLE}.xml"], strings_of(module, "vintf_fragments"))

    contexts = [line.split() for line in read("sepolicy/hwservice_contexts").splitlines()]
    same("the policy's interfaces", [f"{PACKAGE}::{name}" for name in registered], [line[0] for line in contexts])
    types = set(re.findall(r"^type (\w+)", "".join(p.read_text() for p in (root / "sepolicy").glob("*.te")), re.M))
    labels = contexts + [line.split() for line in read("sepolicy/file_contexts").splitlines()]
    for name, label in labels:
        if label.split(":")[2] not in types:
            found.append(f"the policy labels {name} with {label}, a type that it does not declare")
    if [line for line, _ in labels[len(contexts):] if re.fullmatch(line, path)] == []:
        found.append(f"no line of the policy's file_contexts is for {path}")

    for folder in ("adapters", "manager", "service/frame"):
        same(f"{folder}/Android.bp's sources",
             sorted(str(source.relative_to(root / folder)) for source in (root / folder).rglob("*.cpp")),
             strings_of(read(f"{folder}/Android.bp"), "srcs"))
    if with_compiler:
        same("interface/1.0/Android.bp", compiler_module(root), read("interface/1.0/Android.bp"))
    return found


def check_itself(root):
    plants = (
        (f"service/{EXECUTABLE}.rc", "IZvtTvFApiTv default", "IZvtTvFApiTv other"),
        (f"service/{EXECUTABLE}.rc", "bin/hw/", "bin/"),
        (f"service/{EXECUTABLE}.xml", "<name>IZvtTvFApiTv</name>", "<name>IZvtTvFApiTV</name>"),
        (f"service/{EXECUTABLE}.xml", "<version>1.0<", "<version>1.1<"),
        ("service/Android.bp", ".xml", ".vintf.xml"),
        ("sepolicy/hwservice_contexts", "IZvtTvFApiTv ", "IZvtTvFApiTvs "),
        ("sepolicy/file_contexts", "_default_exec", "_exec"),
        ("sepolicy/file_contexts", "bin/hw/", "bin/"),
        ("manager/Android.bp", '        "ClientRegistry.cpp",\n', ""),
        ("service/main.cpp", '"zvtTvFApiTv"', '"zvtTvFApiTelevision"'),
    )
    for name, text, other in plants:
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder)
            for part in FOLDERS:
                source = root / part
                if source.is_dir():
                    shutil.copytree(source, copy / part)
                else:
                    shutil.copy(source, copy / part)
            planted = (copy / name).read_text()
            assert text in planted, (name, text)
            (copy / name).write_text(planted.replace(text, other))
            if not disagreements(copy, with_compiler=False):
                sys.exit(f"check-device.py: '{other}' in {name} goes unnoticed")


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent).resolve()
    check_itself(root)
    found = disagreements(root)
    for line in found:
        print(line, file=sys.stderr)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
