#!/usr/bin/env python3
"""Makes the archives of a finished build: make.py --build FOLDER --out FOLDER --epoch SECONDS [--sign FILE.p12].

Beside the archives it leaves their checksums. The password for --sign comes from PACKAGE_SIGN_PASSWORD or from a
question at the terminal."""
import argparse
import getpass
import os
import pathlib
import re
import shutil
import subprocess

import archive
import components
import spdx

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
CHECK = pathlib.Path(__file__).resolve().parent / "check"
# Without --preserve-dates they write the present time into the program's header.
OBJCOPY, STRIP = (("i686-w64-mingw32-" + name, "--preserve-dates") for name in ("objcopy", "strip"))

# What the archive has in bin; a program that the build has no target for is left out.
PROGRAMS = ("tarnhd.dll", "tarnctl.exe", "qrl-probe.dll")
# What it has besides, at the same places as here: files and whole folders.
PAGES = ("README.md", "ARCHITECTURE.md", "docs", "tools/tarnctl/lnav")
# What a host's engineer includes; what these include comes along.
HOST_HEADERS = ("qrl-plugin/hostrecords.h",)
# What is of no use on another machine: figures are taken beside the build's own, and pages are made for the sources.
STAYS = re.compile(r"bench-|referencepages")


def run(*command, **options):
    if subprocess.run([str(word) for word in command], **options).returncode:
        raise SystemExit(f"package: {command[0]} failed")


def made_by(build):
    """The programs and libraries that the build has targets for, by name; what older builds left is not among them."""
    targets = components.output_of("ninja", "-C", str(build), "-t", "targets", "all")
    return sorted(re.findall(r"^bin/([^/:]+\.(?:exe|dll)): ", targets, re.MULTILINE))


def version_of(build):
    return re.search(r"^CMAKE_PROJECT_VERSION:STATIC=(.+)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE)[1]


class Signer:
    """Signs with the key and certificate of a PKCS #12 file."""

    def __init__(self, file, epoch):
        self.file, self.epoch = file, epoch
        # Taken away, so that no program which is started from here has it.
        self.password = os.environ.pop("PACKAGE_SIGN_PASSWORD", None)
        if file and self.password is None:
            try:
                self.password = getpass.getpass(f"Password of {file.name}: ")
            except EOFError:
                raise SystemExit("package: nobody to ask for the password: set PACKAGE_SIGN_PASSWORD") from None

    def sign(self, path):
        if not self.file:
            return
        # A pipe: others can read a command line, and a file would have to be wiped.
        reading, writing = os.pipe()
        os.write(writing, self.password.encode())
        os.close(writing)
        signed = path.with_suffix(".signed")
        # Its password is asked for again when it is wrong, and nobody could tell why the packaging waits.
        run("osslsigncode", "sign", "-pkcs12", self.file, "-readpass", f"/dev/fd/{reading}", "-h", "sha256",
            "-time", self.epoch, "-in", path, "-out", signed, pass_fds=[reading], stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL)
        os.close(reading)
        signed.replace(path)


def strip(source, target):
    target.parent.mkdir(parents=True, exist_ok=True)
    run(*STRIP, "-o", target, source)


def split(source, target, symbols):
    """The program without its symbols, which go into a file of their own that it names."""
    symbols.parent.mkdir(parents=True, exist_ok=True)
    run(*OBJCOPY, "--only-keep-debug", source, symbols)
    symbols.chmod(0o644)
    strip(source, target)
    run(*OBJCOPY, f"--add-gnu-debuglink={symbols}", target)


def copy_pages(names, folder):
    for name in names:
        for path in [ROOT / name] if (ROOT / name).is_file() else archive.files_of(ROOT / name):
            target = folder / path.relative_to(ROOT)
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(path, target)


def keep_links(folder):
    """Makes text of the pages' links to what only the sources have, so that each one leads somewhere."""
    for page in folder.rglob("*.md"):
        def kept(match):
            place = (match[2] or "").split("#")[0]
            return match[0] if ":" in place or (page.parent / place).exists() else match[1]

        # Code first, where brackets are no links.
        parts = re.compile(r"```.*?```|`[^`]*`|!?\[([^]]*)\]\(([^)\s]+)\)", re.DOTALL)
        page.write_bytes(parts.sub(kept, page.read_bytes().decode()).encode())


def copy_headers(names, folder):
    for name in names:
        source = ROOT / "sdk" / name.split("/")[0] / "include" / name
        target = folder / name
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, target)
        copy_headers(re.findall(r'^#include "([^"]+)"', source.read_text(), re.MULTILINE), folder)


def with_all_tests(text, programs):
    """The rows of tests.txt with one for each test program that it doesn't know yet."""
    known = {line.split()[1] for line in text.splitlines() if line and not line.startswith("#")}
    built = {name.removesuffix(".exe") for name in programs if name.endswith("-tests.exe")}
    if known - built:
        raise SystemExit(f"package: tests.txt names what is not built: {', '.join(sorted(known - built))}")
    new = "".join(f"never {name} nobody has said yet what it changes\n" for name in sorted(built - known))
    return text + new


class Packaging:
    """One run: each operation fills a folder of the work folder that becomes an archive of its name."""

    def __init__(self, build, out, epoch, signer):
        self.build, self.out, self.epoch, self.signer = build, out, epoch, signer
        self.version = version_of(build)
        self.programs = made_by(build)
        self.work = out / "package"
        shutil.rmtree(self.work, ignore_errors=True)
        # Or a packaging that fails would leave others to be taken for its own.
        for old in (*out.glob("tarnhd-*.zip"), *out.glob(f"tarnhd-*.{archive.CHECKSUMS}")):
            old.unlink()

    def folder(self, kind):
        return self.work / f"tarnhd-{self.version}-{kind}"

    def product(self):
        folder, symbols = self.folder("win32"), self.folder("symbols")
        for name in PROGRAMS:
            if name in self.programs:
                split(self.build / "bin" / name, folder / "bin" / name, symbols / "bin" / f"{name}.debug")
                self.signer.sign(folder / "bin" / name)
        linked = {name: components.linked_into(self.build, name) for name in PROGRAMS if name in self.programs}
        components.write_licences(components.LINKED, folder / "licences")
        copy_headers(HOST_HEADERS, folder / "include")
        copy_pages(PAGES, folder)
        keep_links(folder)
        spdx.write_list(folder, self.version, linked, self.epoch, [archive.CHECKSUMS])

    def check(self):
        """The product as it is shipped, tests and development host without symbols."""
        folder, product = self.folder("check"), self.folder("win32")
        shutil.copytree(product / "bin", folder / "bin")
        for name in self.programs:
            if name not in PROGRAMS and not STAYS.match(name):
                strip(self.build / "bin" / name, folder / "bin" / name)
        for path in archive.files_of(CHECK):
            # The command processor of Windows loses its labels in a file with other ends of lines.
            text = path.read_text().replace("@version@", self.version)
            if path.name == "tests.txt":
                text = with_all_tests(text, self.programs)
            (folder / path.name).write_text(text, newline="\r\n")
        components.write_licences(components.LINKED_FOR_CHECKS, folder / "licences")

    def write(self):
        archives = []
        for folder in sorted(self.work.iterdir()):
            archive.refuse_paths(folder, [str(ROOT), str(pathlib.Path.home()) + "/"])
            archives.append(self.out / f"{folder.name}.zip")
            archive.write_archive(folder, archives[-1], self.epoch)
        archive.write_checksums(self.out, archives, self.out / f"tarnhd-{self.version}.{archive.CHECKSUMS}")
        shutil.rmtree(self.work)
        return archives


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--out", type=pathlib.Path, required=True)
    parser.add_argument("--epoch", type=int, required=True)
    parser.add_argument("--sign", type=pathlib.Path)
    arguments = parser.parse_args()
    packaging = Packaging(arguments.build, arguments.out, arguments.epoch, Signer(arguments.sign, arguments.epoch))
    packaging.product()
    packaging.check()
    for path in packaging.write():
        print(path)


if __name__ == "__main__":
    main()
