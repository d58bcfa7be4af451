"""What is linked into the programs and is not ours, with the licences that the installed packages bring."""
import pathlib
import re
import subprocess
from dataclasses import dataclass

DOCUMENTATION = pathlib.Path("/usr/share/doc")
GPL = pathlib.Path("/usr/share/common-licenses/GPL-3")


@dataclass(frozen=True)
class Component:
    name: str
    package: str            # whose version and copyright file are given
    licence: str            # an SPDX expression; LicenseRef-NAME stands for the whole copyright file
    others: tuple = ()      # packages of the same source and licence
    texts: tuple = ()       # what the copyright file refers to
    headers: str = ""       # whose code a program has by including them: the folder


LINKED = (
    Component("json-for-modern-cpp", "nlohmann-json3-dev", "MIT", headers="header-libraries/nlohmann"),
    Component("gcc-runtime", "gcc-mingw-w64-i686-posix-runtime", "GPL-3.0-or-later WITH GCC-exception-3.1",
              ("gcc-mingw-w64-i686-posix", "g++-mingw-w64-i686-posix"), (GPL,)),
    Component("cli11", "libcli11-dev", "BSD-3-Clause", headers="header-libraries/CLI"),
    # The C run-time and its thread library.
    Component("mingw-w64-runtime", "mingw-w64-i686-dev", "LicenseRef-mingw-w64-runtime"),
)
# Tests and development host have these besides.
LINKED_FOR_CHECKS = LINKED + (
    Component("googletest", "googletest", "BSD-3-Clause"),
)


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def version_of(component):
    return output_of("dpkg-query", "-W", "-f=${Version}", component.package)


def copyright_of(component):
    return (DOCUMENTATION / component.package / "copyright").read_bytes()


def write_licences(components, folder):
    folder.mkdir(parents=True)
    for component in components:
        (folder / f"{component.name}.txt").write_bytes(copyright_of(component))
        for text in component.texts:
            (folder / f"{text.name}.txt").write_bytes(text.read_bytes())


def packages_linked(link_map):
    """The packages from whose libraries and objects the linker took something."""
    taken = re.findall(r"^(?=LOAD /\S+\.o$|/)(?:LOAD )?(/[^\s(]+\.[ao])", link_map, re.MULTILINE)
    places = sorted({str(pathlib.Path(path).resolve()) for path in taken})
    return {line.split(":")[0] for line in output_of("dpkg-query", "-S", *places).splitlines()}


def headers_included(build, program, link_map):
    """The folders of the header libraries that the objects which the linker took include."""
    taken = set(re.findall(r"^(?:LOAD |\S+\()(?:\S*/)?([^/\s]+\.obj)\b", link_map, re.MULTILINE))
    inputs = output_of("ninja", "-C", str(build), "-t", "inputs", f"bin/{program}").splitlines()
    objects = [path for path in inputs if path.rpartition("/")[2] in taken]
    return set(re.findall(r"header-libraries/\w+", output_of("ninja", "-C", str(build), "-t", "deps", *objects)))


def linked_into(build, program, known=LINKED):
    """What the program has of others. Ends the packaging when some of that is not known, and so without a licence."""
    link_map = (build / "bin" / f"{program}.map").read_text(errors="replace")
    packages, headers = packages_linked(link_map), headers_included(build, program, link_map)
    found = [component for component in known
             if component.headers in headers or packages & {component.package, *component.others}]
    for component in found:
        packages -= {component.package, *component.others}
        headers.discard(component.headers)
    if packages or headers:
        raise SystemExit(f"package: in {program}, but without a licence in components.py: "
                         + ", ".join(sorted(packages | headers)))
    return found
