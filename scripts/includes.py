#!/usr/bin/env python3
"""Holds the includes of sdk, src, devhost and tools against the build files: a unit includes only what its own
target links, and only units that the picture of directions in ARCHITECTURE.md puts below it.

A unit is a folder with a CMakeLists.txt that makes a target. Prints each fault as one line; exit status 1 when there
is one."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TOPS = ("sdk", "src", "devhost", "tools")
# From the lowest: a unit may include those of earlier rows and its neighbours in the same row.
LAYERS = (
    r"sdk/(logging|system-imports|thread-layer)",
    r"sdk/(logging-backend|vxtl)",
    r"sdk/(vxtl-\w+|delay-load|settings-api)",
    r"sdk/(meridia-settings|qrl-plugin|\w+-api)",
    r"src/common/\w+",
    r"src/tarnhd/\w+",
    r"devhost/.+|tools/.+",
)


class Unit:
    """The targets that one CMakeLists.txt makes, with what they link."""

    def __init__(self, build_file):
        self.folder = build_file.parent.relative_to(ROOT).as_posix()
        text = re.sub(r"#.*", "", build_file.read_text())
        calls = re.findall(r"(\w+)\(([^()]*)\)", text)
        makers = ("tarnhd_library", "add_library", "add_executable")
        self.targets = [words.split()[0] for command, words in calls if command in makers]
        self.links = {word for command, words in calls if command in ("tarnhd_library", "target_link_libraries")
                      for word in words.split()}
        nested = {path.parent for path in build_file.parent.glob("**/CMakeLists.txt")} - {build_file.parent}
        self.sources = [path for suffix in ("h", "cpp") for path in build_file.parent.glob(f"**/*.{suffix}")
                        if not nested & set(path.parents)]

    def layer(self):
        return next((row for row, pattern in enumerate(LAYERS) if re.fullmatch(pattern, self.folder)), None)


def home_of(include, units):
    """The unit that an include names, None for one of the including unit's own or of the system."""
    candidates = [ROOT / top / include for top in ("src", "devhost", "tools")]
    candidates.append(ROOT / "sdk" / include.split("/")[0] / "include" / include)
    for path in candidates:
        if path.is_file():
            folders = [parent.relative_to(ROOT).as_posix() for parent in path.parents if parent != ROOT
                       and ROOT in parent.parents]
            return next((units[folder] for folder in folders if folder in units), None)
    return None


def faults(unit, units):
    layer = unit.layer()
    if layer is None:
        yield f"{unit.folder}: the unit stands nowhere in the picture of directions"
        return
    for source in sorted(unit.sources):
        place = source.relative_to(ROOT).as_posix()
        for include in re.findall(r'#include "([^"]+)"', source.read_text(encoding="utf-8")):
            home = home_of(include, units)
            if home is None:
                if not any(path.is_file() for path in (source.parent / include, ROOT / unit.folder / "src" / include,
                                                       ROOT / unit.folder / "include" / include)):
                    yield f"{place}: no unit has {include}"
            elif home is not unit:
                if not unit.links & set(home.targets):
                    yield f"{place}: includes {include}, but {unit.targets[0]} does not link {home.targets[0]}"
                if home.layer() is not None and home.layer() > layer:
                    yield f"{place}: includes {include}, which stands above it"


def main():
    found = [Unit(path) for top in TOPS for path in sorted((ROOT / top).glob("**/CMakeLists.txt"))]
    units = {unit.folder: unit for unit in found if unit.targets}
    lines = [line for unit in units.values() for line in faults(unit, units)]
    for path in sorted(ROOT.glob("**/CMakeLists.txt")):
        if "build" not in path.relative_to(ROOT).parts and "if(EXISTS" in path.read_text():
            lines.append(f"{path.relative_to(ROOT)}: if(EXISTS) hides a name that is spelt wrong")
    print("\n".join(lines), end="\n" if lines else "")
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main())
