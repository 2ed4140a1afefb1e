#!/usr/bin/env python3
"""Whether the files of the device image agree: names, paths, interfaces and their hashes, sources, libraries.

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
FOLDERS = ("Android.bp", "docs/device.md", "interface", "adapters", "manager", "platform/hal", "service", "sepolicy",
           "tools/fapictl")
ROOTS = ("-r", f"{PACKAGE}:interface", "-r", "android.hidl.base:platform/hal/base")
# What a module names when, and only when, its sources include a header of that beginning.
LIBRARIES = {"libcutils": "<cutils/", "cli11-headers": "<CLI/", "nlohmann-json-headers": "<nlohmann/",
             "libmicrohttpd": "<microhttpd.h>"}
# Whose clients may link the interface's library; see docs/device.md. The compiler writes the first.
IMAGES = ("    product_specific: true,\n", "    system_ext_specific: true,\n", "")
# Modules of the platform, and the one of the chip layer's two that the guide leaves to its reader. What else a module
# names is declared here, or shown in the guide.
OF_OTHERS = {"libc++", "libcutils", "libcutils_headers", "libhidlbase", "liblog", "libutils",
             "vendor.zentrovi.tv.zvttvfapicustom@1.0-impl"}
NEEDED = {"zvttvfactory-defaults": ["-fexceptions", "libhidlbase", "liblog", "libutils", f"{PACKAGE}@1.0"],
          EXECUTABLE: ["zvttvfactory-adapters", "zvttvfactory-frame", "zvttvfactory-manager", "zvttvfactory-trace",
                       "zvttvfactory-traced-interfaces", "-Wl,--export-dynamic-symbol=u8TvFactoryDebug"],
          "zvttvfactory-traced-interfaces": ["zvttvfactory-trace-generator"],
          "zvttvfactory-trace-generator": ["fapictl-hal"], "fapictl-generator": ["fapictl-hal"],
          "fapictl": ["fapictl-table"], "fapictl-table": ["fapictl-generator"]}


def strings_of(blueprint, key):
    """The strings of a list, or of one value, of a module."""
    found = re.search(rf"\b{key}:\s*(\[[^\]]*\]|\"[^\"]*\")", blueprint)
    text = re.sub(r"//.*", "", found.group(1)) if found else ""
    return re.findall(r'"([^"]*)"', text)


def modules(blueprint):
    """The modules of a build file, or of a text that shows some, with the type of each."""
    return re.findall(r"^( *)(\w+) \{\n(.*?)^\1\}", blueprint, re.M | re.S)


def compiler(root, language, *words):
    return subprocess.run(["hidl-gen", "-L", language, "-R", *ROOTS, *words, f"{PACKAGE}@1.0"], cwd=root,
                          capture_output=True, text=True)


def compiler_module(root):
    """What the interface compiler itself says of the package's module."""
    with tempfile.TemporaryDirectory() as output:
        compiler(root, "androidbp", "-o", output).check_returncode()
        written = next(pathlib.Path(output).rglob("Android.bp")).read_text()
    return re.search(r"hidl_interface \{.*?\n\}\n", written, re.S).group(0)


def build_disagreements(root):
    """What is wrong with the modules of the build files and of the guide."""
    found = []
    files = sorted(path for path in root.rglob("Android.bp") if "build" not in path.relative_to(root).parts)
    files.append(root / "docs/device.md")
    declared = {name: body for file in files for _, _, body in modules(file.read_text()) for name in strings_of(body, "name")}
    for name, needed in NEEDED.items():
        texts = re.findall(r'"([^"]*)"', declared.get(name, ""))
        found += [f"{name} is without {each}" for each in needed if each not in texts]
    for file in files:
        for _, kind, body in modules(file.read_text()):
            where = f"{file.relative_to(root)}, {kind} {' '.join(strings_of(body, 'name'))}"
            for key in ("defaults", "header_libs", "static_libs", "shared_libs", "generated_sources", "generated_headers", "libs", "tools"):
                found += [f"{where}: nobody declares {name}" for name in strings_of(body, key)
                          if name not in declared and name not in OF_OTHERS]
            if file.name == "Android.bp":
                found += [f"{where}: there is no {name}" for name in strings_of(body, "srcs")
                          if not name.startswith(":") and not list(file.parent.glob(name))]
            if kind.startswith("cc_") and "zvttvfactory-defaults" not in strings_of(body, "defaults"):
                if strings_of(body, "compile_multilib") != ["64"]:
                    found.append(f"{where}: it is built for 32 bits, too, where records have other layouts")
                if not re.search(r"\bvendor: true\b", body):
                    found.append(f"{where}: it is not for the vendor image")
            if not kind.startswith("cc_") or kind == "cc_prebuilt_library_shared":
                continue
            # With the headers beside the sources.
            sources = [file.parent / name for name in strings_of(body, "srcs")]
            sources += [header for source in sources for header in source.parent.glob("*.h")]
            text = "".join(source.read_text() for source in sources if source.exists())
            libraries = strings_of(body, "shared_libs") + strings_of(body, "header_libs")
            for library, header in LIBRARIES.items():
                named = library in libraries or f"{library}_headers" in libraries
                if named != (header in text):
                    found.append(f"{where}: {library} is {'named and not used' if named else 'used and not named'}")
    return found


def interface_disagreements(root):
    """What is wrong with the interface's build files, and whether the compiler takes its files as they are."""
    answer = compiler(root, "check")
    if answer.returncode != 0:
        return [f"the compiler refuses the interfaces: {answer.stderr}"]
    found = []
    written, module = compiler_module(root), (root / "interface/1.0/Android.bp").read_text()
    if not any(written.replace(IMAGES[0], line) in module for line in IMAGES):
        found.append(f"interface/1.0/Android.bp is not what the compiler writes:\n{written}")
    package = modules((root / "interface/Android.bp").read_text())
    if [(kind, strings_of(body, "name")) for _, kind, body in package] != [("hidl_package_root", [PACKAGE])]:
        found.append("interface/Android.bp is not the package's root")
    elif not re.search(r"\buse_current: true\b", package[0][2]):
        found.append("interface/Android.bp: the package has no current.txt on the device")
    recorded = root / "interface/current.txt"
    hashes = [line for line in recorded.read_text().splitlines() if not line.startswith("#")] if recorded.exists() else []
    if hashes != compiler(root, "hash").stdout.splitlines():
        found.append("interface/current.txt does not hold the interfaces' hashes")
    return found


def disagreements(root):
    read = lambda name: (root / name).read_text()
    found = build_disagreements(root) + interface_disagreements(root)

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

    for file, what, transport in ((f"service/{EXECUTABLE}.xml", ("manifest", "device"), "hwbinder"),
                                  ("service/compatibility_matrix.xml", ("compatibility-matrix", "framework"), None)):
        whole = xml.etree.ElementTree.fromstring(read(file))
        hals = whole.findall("hal")
        same(f"{file} is a", what, (whole.tag, whole.get("type")))
        same(f"{file}'s packages", [("hidl", PACKAGE, "1.0", transport)],
             [(hal.get("format"), *(hal.findtext(tag) for tag in ("name", "version", "transport"))) for hal in hals])
        same(f"{file}'s interfaces", [(name, ["default"]) for name in registered],
             [(entry.findtext("name"), [instance.text for instance in entry.findall("instance")])
              for hal in hals for entry in hal.findall("interface")])
    if "service/compatibility_matrix.xml" not in read("docs/device.md"):
        found.append("docs/device.md does not say where the compatibility matrix belongs")

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

    of_host = re.search(r"add_library\(fapictl-lib STATIC(.*?)\)", read("tools/fapictl/CMakeLists.txt"), re.S)[1].split()
    tool = read("tools/fapictl/Android.bp")
    binary = next(body for _, kind, body in modules(tool) if kind == "cc_binary")
    same("tools/fapictl/Android.bp's sources", of_host + ["main.cpp"], strings_of(binary, "srcs"))
    same("the table's generator is given", [":zvttvfactory-hal-files"],
         next(strings_of(body, "srcs") for _, kind, body in modules(tool) if kind == "genrule"))
    same("the trace's generator is given", [":zvttvfactory-hal-files"],
         next(strings_of(body, "srcs") for _, kind, body in modules(read("service/trace/Android.bp")) if kind == "genrule"))
    for library in ("cli11-headers", "nlohmann-json-headers"):
        if f'name: "{library}"' not in read("docs/device.md"):
            found.append(f"docs/device.md does not say how {library} is declared")
    for folder in ("adapters", "manager", "service/frame", "service/trace"):
        same(f"{folder}/Android.bp's sources",
             sorted(str(source.relative_to(root / folder)) for source in (root / folder).rglob("*.cpp")),
             strings_of(read(f"{folder}/Android.bp"), "srcs"))
    return found


def check_itself(root):
    plants = (
        (f"service/{EXECUTABLE}.rc", "IZvtTvFApiTv default", "IZvtTvFApiTv other"),
        (f"service/{EXECUTABLE}.rc", "bin/hw/", "bin/"),
        (f"service/{EXECUTABLE}.xml", "<name>IZvtTvFApiTv</name>", "<name>IZvtTvFApiTV</name>"),
        (f"service/{EXECUTABLE}.xml", "<version>1.0<", "<version>1.1<"),
        ("service/compatibility_matrix.xml", "<name>IZvtTvFApiTv</name>", "<name>IZvtTvFApiTV</name>"),
        ("service/compatibility_matrix.xml", "<version>1.0<", "<version>1.1<"),
        ("service/compatibility_matrix.xml", '"framework"', '"device"'),
        ("service/Android.bp", ".xml", ".vintf.xml"),
        ("sepolicy/hwservice_contexts", "IZvtTvFApiTv ", "IZvtTvFApiTvs "),
        ("sepolicy/file_contexts", "_default_exec", "_exec"),
        ("sepolicy/file_contexts", "bin/hw/", "bin/"),
        ("manager/Android.bp", '        "ClientRegistry.cpp",\n', ""),
        ("service/main.cpp", '"zvtTvFApiTv"', '"zvtTvFApiTelevision"'),
        ("Android.bp", '    compile_multilib: "64",\n    cpp_std', "    cpp_std"),
        ("docs/device.md", 'compile_multilib: "64"', 'compile_multilib: "both"'),
        ("manager/Android.bp", "    srcs: [", '    shared_libs: ["libcutils"],\n    srcs: ['),
        ("service/frame/Android.bp", '    header_libs: ["libcutils_headers"],\n', ""),
        ("tools/fapictl/Android.bp", '        "Wait.cpp",\n', ""),
        ("tools/fapictl/Android.bp", '        "cli11-headers",\n', ""),
        ("tools/fapictl/Android.bp", '        "libcutils",\n', ""),
        ("tools/fapictl/Android.bp", '        "libmicrohttpd",\n', ""),
        ("tools/fapictl/Android.bp", ":zvttvfactory-hal-files", ":zvttvfactory-hal"),
        ("tools/fapictl/Android.bp", '        "fapictl-table",\n    ],\n', "    ],\n"),
        ("tools/fapictl/Android.bp", '    srcs: ["generate.py"],\n    libs: ["fapictl-hal"],\n', '    srcs: ["generate.py"],\n'),
        ("service/trace/Android.bp", ":zvttvfactory-hal-files", ":zvttvfactory-hal"),
        ("service/Android.bp", '    generated_headers: ["zvttvfactory-traced-interfaces"],\n', ""),
        ("tools/fapictl/Android.bp", 'srcs: ["generate.py"]', 'srcs: ["generator.py"]'),
        ("Android.bp", '    cppflags: ["-fexceptions"],\n', ""),
        ("Android.bp", '        "libhidlbase",\n', ""),
        ("service/Android.bp", '        "zvttvfactory-frame",\n', ""),
        ("service/Android.bp", 'srcs: ["main.cpp"]', 'srcs: ["service.cpp"]'),
        ("service/Android.bp", "u8TvFactoryDebug", "u8TvFactoryLog"),
        ("docs/device.md", 'name: "cli11-headers"', 'name: "cli11"'),
        ("interface/Android.bp", "use_current: true", "use_current: false"),
        ("interface/1.0/Android.bp", "product_specific", "soc_specific"),
        ("interface/1.0/Android.bp", '        "IZvtTvFApiTv.hal",\n', ""),
        ("interface/1.0/IZvtTvFApiTv.hal", "as a whole", "as such"),
        ("interface/current.txt", "::IZvtTvFApiTv\n", "::IZvtTvFApiTV\n"),
        ("platform/hal/base/current.txt", "::IBase", "::IBases"),
    )
    for name, text, other in plants:
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder)
            for part in FOLDERS:
                source = root / part
                (copy / part).parent.mkdir(parents=True, exist_ok=True)
                if source.is_dir():
                    shutil.copytree(source, copy / part)
                else:
                    shutil.copy(source, copy / part)
            planted = (copy / name).read_text()
            assert text in planted, (name, text)
            (copy / name).write_text(planted.replace(text, other))
            if not disagreements(copy):
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
