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


LINKED = (
    Component("json-for-modern-cpp", "nlohmann-json3-dev", "MIT"),
    Component("gcc-runtime", "gcc-mingw-w64-i686-posix-runtime", "GPL-3.0-or-later WITH GCC-exception-3.1",
              ("gcc-mingw-w64-i686-posix", "g++-mingw-w64-i686-posix"), (GPL,)),
    Component("cli11", "libcli11-dev", "BSD-3-Clause"),
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


def refuse_unknown(link_map, components):
    """Ends the packaging when the linker took something from a package that the list doesn't know."""
    taken = {str(pathlib.Path(path).resolve())
             for path in re.findall(r"^(/[^\s(]+\.[ao])\(", link_map.read_text(errors="replace"), re.MULTILINE)}
    owners = {line.split(":")[0] for line in output_of("dpkg-query", "-S", *sorted(taken)).splitlines()}
    known = {package for component in components for package in (component.package, *component.others)}
    if owners - known:
        raise SystemExit(f"package: linked in, but without a licence in components.py: {', '.join(owners - known)}")
