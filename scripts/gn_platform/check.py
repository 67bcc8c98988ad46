# SPDX-License-Identifier: Apache-2.0
"""Compares BUILD.gn with CMakeLists.txt and bundle.json, and checks its flags. Run it with scripts/gn-check."""
import json
import os
import re
import subprocess
import sys
from pathlib import Path

TOP = Path(__file__).resolve().parent.parent.parent
# The radar test expects events immediately, but a device delivers them later; others load a plugin or fuzz a host tool.
HOST_ONLY_TESTS = {"constants_plugin", "fuzz_replay_inspect", "ostra_constants_test", "ostra_radar_test"}
NOT_COMPILED = {"tests/host/rejected_types.cpp", "tests/library/log_format_mismatch.cpp"}  # must fail to compile
SANITIZERS = {"boundary_sanitize", "cfi", "cfi_cross_dso", "integer_overflow", "ubsan"}
COMPONENTS = json.loads((TOP / "scripts/gn_platform/components.json").read_text())  # and the headers that they provide
PUBLIC_HEADERS = {header.name for header in (TOP / "include").glob("*.h")}
failures = []


def expect(condition, message):
    if not condition:
        failures.append(message)


def expect_equal(name1, values1, name2, values2):
    for name, only in ((name1, set(values1) - set(values2)), (name2, set(values2) - set(values1))):
        failures.extend(f"only in {name}: {value}" for value in sorted(only))


def run(*command):
    result = subprocess.run(command, cwd=TOP, stdout=subprocess.PIPE, text=True)
    if result.returncode:
        sys.exit(f"gn-check: failed: {' '.join(command)}\n{result.stdout}")
    return result.stdout


def read(path):
    return (TOP / path).read_text(encoding="utf-8")


def name_of(label):
    return label.split(":")[1]


def generate(component):
    """Returns the targets of BUILD.gn by name, and the names of those that bundle.json reaches."""
    root, model = TOP / "build/gn", TOP / "scripts/gn_platform"
    for link, target in (("BUILD.gn", model / "BUILD.gn"), ("build", model / "build"), (component, TOP)):
        (root / link).parent.mkdir(parents=True, exist_ok=True)
        (root / link).unlink(missing_ok=True)
        (root / link).symlink_to(target)
    where = [f"--root={root}", f"--dotfile={model}/dotfile.gn"]
    run("gn", "gen", "-q", *where, f'--args=component_dir="//{component}"', f"{root}/out")
    targets = json.loads(run("gn", "desc", *where, f"{root}/out", f"//{component}/*", "--format=json"))
    reached = run("gn", "desc", *where, f"{root}/out", "//:bundle", "deps", "--all").split()
    return {name_of(label): target for label, target in targets.items()}, set(map(name_of, reached))


def cmake_targets():
    api = TOP / "build/host/.cmake/api/v1"
    (api / "query").mkdir(parents=True, exist_ok=True)
    (api / "query/codemodel-v2").touch()
    run("cmake", "--preset", "host")
    index = json.loads(max((api / "reply").glob("index-*.json")).read_text())
    codemodel = json.loads((api / "reply" / index["reply"]["codemodel-v2"]["jsonFile"]).read_text())
    files = (target["jsonFile"] for target in codemodel["configurations"][0]["targets"])
    targets = (json.loads((api / "reply" / file).read_text()) for file in files)
    return {target["name"]: target for target in targets if "compileGroups" in target}


def compiled_sources(target):
    return {source["path"] for source in target["sources"] if "compileGroupIndex" in source}


def properties_of(name, **values_by_kind):
    return {f"{name}: {kind} {value}" for kind, values in values_by_kind.items() for value in values}


def gn_properties(name, target, top):
    return properties_of(re.sub(r"(\w+)FuzzTest$", lambda match: match[1].lower() + "_fuzzer", name),
                         source=(source.removeprefix(top) for source in target["sources"]),
                         include_dir=(d.removeprefix(top).rstrip("/") for d in target.get("include_dirs", [])),
                         define=target.get("defines", []), link_option=target.get("ldflags", []))


def cmake_properties(name, target, targets):
    groups = target["compileGroups"]
    defines = {define["define"] for group in groups for define in group.get("defines", [])}
    is_on_device = target["paths"]["source"] in (".", "fuzz", "tests/library") and name not in HOST_ONLY_TESTS
    if not is_on_device or target["type"] not in ("EXECUTABLE", "SHARED_LIBRARY"):
        return set()
    sources = compiled_sources(target) - {"fuzz/replay_main.cpp"}
    for dependency in target.get("dependencies", []):
        library = targets.get(dependency["id"].split("::")[0])
        sources |= compiled_sources(library) if library and library["type"] == "STATIC_LIBRARY" else set()
    paths = {include["path"] for group in groups for include in group.get("includes", [])}
    include_dirs = {os.path.relpath(path, TOP) for path in paths if path.startswith(f"{TOP}/")}
    options = re.sub(rf'"|{TOP}/', "", " ".join(f["fragment"] for f in target["link"]["commandFragments"])).split()
    return properties_of(re.sub(r"^fuzz_replay_(.*)", r"\1_fuzzer", name), source=sources,
                         include_dir=(d for d in include_dirs if not d.startswith(("platform/", "build/"))),
                         define=(define for define in defines if not define.endswith("_EXPORTS")),
                         link_option=(option for option in options if re.search("version-script|nodelete", option)))


def included_components(paths, include_dirs):
    """Returns the components whose headers the files include, directly or through headers of the project."""
    components, visited, waiting = set(), set(), list(paths)
    while waiting:
        path = waiting.pop()
        visited.add(path)
        for header in re.findall(r'^ *# *include *["<]([^">]+)[">]', read(path), re.M):
            supplied = {component for component, headers in COMPONENTS.items() if header in headers}
            components |= supplied
            candidates = {os.path.normpath(os.path.join(d, header)) for d in [os.path.dirname(path), *include_dirs]}
            waiting += [c for c in candidates - visited if (TOP / c).is_file() and not supplied]
    return components


def check_target(name, target, top):
    metadata = target["metadata"]
    # The flags in the order in which the compiler sees them: the last of several conflicting flags wins.
    flags = target.get("cflags", []) + target.get("cflags_cc", [])
    last = lambda *kinds: next((flag for flag in reversed(flags) if flag.startswith(kinds)), None)
    expect(last("-fexceptions", "-fno-exceptions") == "-fexceptions", f"{name}: exceptions are off: set use_exceptions")
    expect(sum(flag.endswith("exceptions") for flag in flags) == 1, f"{name}: -f[no-]exceptions has no effect")
    expect(last("-frtti", "-fno-rtti") == "-fno-rtti", f"{name}: RTTI is on")
    expect(sum(flag.startswith("-std=") for flag in flags) == 1, f"{name}: -std= is the platform's")
    first_off = next(i for i, flag in enumerate(flags) if flag.startswith("-Wno-"))
    expect(not {"-Wall", "-Wextra"} & set(flags[first_off:]), f"{name}: -Wall or -Wextra undoes the platform's -Wno-*")
    if target["type"] == "shared_library":
        expect(last("-fvisibility=") == "-fvisibility=hidden", f"{name}: symbols are visible by default: use cflags_cc")
        expect_equal("sanitize", metadata["sanitize"], "what the library needs", SANITIZERS)
        public = included_components([f"include/{header}" for header in PUBLIC_HEADERS], ["include"])
        expect_equal("public_external_deps", metadata["public_external_deps"], "the public headers", public)
    named = set(metadata["external_deps"] + metadata["public_external_deps"])
    sources = [source.removeprefix(top) for source in target["sources"]]
    include_dirs = [path.removeprefix(top) for path in target.get("include_dirs", [])]
    for component in sorted(included_components(sources, include_dirs) - named):
        failures.append(f"{name}: external_deps lacks {component}, whose headers it includes")
    if name.endswith("_test"):
        expect("googletest:gtest_main" not in named, f"{name}: the template adds googletest:gtest_main")
        code = "\n".join(map(read, sources))
        expect(re.search(r"^TEST", code, re.M) and not re.search(r"^int main\(", code, re.M),
               f"{name}: not a GoogleTest program, so a device's test runner gets no result")


def check_bundle(bundle, targets, reached, top):
    component, build = bundle["component"], bundle["component"]["build"]
    metadata = [target["metadata"] for target in targets.values() if "metadata" in target]
    deps = {d.split(":")[0] for m in metadata for d in m.get("external_deps", []) + m.get("public_external_deps", [])}
    parts = [part for m in metadata for part in m.get("part", [])]
    version = re.search(r'#define OSTRA_VERSION "(.*)"', read("include/ostra_version.h"))[1]
    kits = [kit["header"] for kit in build["inner_kits"]]
    installed = {name for name, target in targets.items() if target["type"] in ("copy", "shared_library")}
    expect_equal("bundle.json", [bundle["version"], f"{component['subsystem']}/{component['name']}",
                                 *component["hisysevent_config"]],
                 "the project", [version, *parts, f"{top}hisysevent.yaml"])
    expect_equal("deps of bundle.json", component["deps"]["components"], "BUILD.gn", deps | {"googletest"})
    expect_equal("sub_component of bundle.json", list(map(name_of, build["sub_component"])), "BUILD.gn", installed)
    expect_equal("inner_kits, bundle.json", [f"{h['header_base']}/{name}" for h in kits for name in h["header_files"]],
                 "include", [f"{top}include/{name}" for name in PUBLIC_HEADERS])
    failures.extend(f"{name}: unreachable from bundle.json" for name in sorted(targets.keys() - reached - {"bundle"}))


def check_files(cmake):
    # Dumps are off by default: the installed value is the one that the library treats as unset.
    key = re.search(r'DUMP_WRITE_ENABLE_KEY = .*"(.*)"', read("include/ostra_dump.h"))[1]
    unset = re.search(r'UNSET_\w+\[\] = "(.*)"', read("dfx/ostra_dump.cpp"))[1]
    values = re.findall(r"^[^#\n].*", read("etc/ostra_adapter_utils.para"), re.M)
    expect(values == [f"{key}={unset}"], "etc/ostra_adapter_utils.para enables dumps, or sets another parameter")
    prefix = re.search(r"^([^# ]+) = ", read("etc/ostra_adapter_utils.para.dac"), re.M)
    expect(prefix and key.startswith(prefix[1]), "etc/ostra_adapter_utils.para.dac names another parameter")
    expect("OstraAdapter::*" not in read("libostra_adapter_utils.map"), "the version script exports a whole namespace")
    failures.extend(f"{d.name}/corpus is empty" for d in (TOP / "fuzz").glob("*_fuzzer") if not any(d.glob("corpus/*")))
    tree = {str(path.relative_to(TOP)) for directory in ("bridge", "common", "dfx", "fuzz", "json", "protocol", "tests")
            for path in (TOP / directory).rglob("*.c*") if path.suffix in (".c", ".cpp")}
    expect_equal("sources", tree - NOT_COMPILED, "CMake", tree & set().union(*map(compiled_sources, cmake.values())))


def main():
    bundle = json.loads(read("bundle.json"))
    top = f"//{bundle['segment']['destPath']}/"
    targets, reached = generate(bundle["segment"]["destPath"])
    programs = {name: target for name, target in targets.items() if target["type"] in ("executable", "shared_library")}
    cmake = cmake_targets()
    properties = set().union(*(gn_properties(name, target, top) for name, target in programs.items()))
    expect_equal("BUILD.gn", properties,
                 "CMake", set().union(*(cmake_properties(name, target, cmake) for name, target in cmake.items())))
    for name, target in sorted(programs.items()):
        check_target(name, target, top)
    check_bundle(bundle, targets, reached, top)
    check_files(cmake)
    for failure in failures:
        print(f"gn-check: {failure}", file=sys.stderr)
    if not failures:
        print(f"gn-check: {len(properties)} properties of the targets match the host build, and all flags are correct")
    return bool(failures)


sys.exit(main())
