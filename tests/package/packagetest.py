#!/usr/bin/env python3
"""Tests of scripts/package on a finished build: packagetest.py BUILD [RUNNER...].

RUNNER is what runs a program of Windows here."""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile

SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "package"
sys.path.insert(0, str(SCRIPTS))
import archive  # noqa: E402
import components  # noqa: E402
import make  # noqa: E402

EPOCH = 1_700_000_000
BUILD, RUNNER = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2:]


class PackageTest(unittest.TestCase):
    def setUp(self):
        # Not in the folder for temporary files, which the programs may not see.
        folder = tempfile.TemporaryDirectory(dir=BUILD)
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def product(self, name, certificate=None):
        """Product and symbols, unpacked; the archives themselves lie above them."""
        out = self.folder / name
        packaging = make.Packaging(BUILD, out, EPOCH, make.Signer(certificate, EPOCH))
        packaging.product()
        for path in packaging.write():
            zipfile.ZipFile(path).extractall(out)
        return out

    def one(self, out, pattern):
        found = list(out.glob(pattern))
        self.assertEqual(len(found), 1, found)
        return found[0]

    def test_is_the_same_wherever_and_by_whomever_it_is_made(self):
        first = self.product("first")
        os.environ["TZ"] = "AHEAD-5:30"
        time.tzset()
        self.addCleanup(os.umask, os.umask(0o077))
        second = self.product("second/deeper")
        for path in first.glob("*.zip"):
            self.assertEqual(path.read_bytes(), (second / path.name).read_bytes(), path.name)
        self.assertEqual(len(list(first.glob("*.zip"))), 2)

    def test_holds_what_it_promises(self):
        out = self.product("out")
        for folder in out.glob("tarnhd-*/"):
            subprocess.run(["sha256sum", "--check", "--strict", "--quiet", archive.CHECKSUMS], cwd=folder, check=True)
        library = self.one(out, "tarnhd-*-win32/bin/tarnhd.dll")
        symbols = self.one(out, "tarnhd-*-symbols/bin/tarnhd.dll.debug")
        sections = components.output_of("i686-w64-mingw32-objdump", "-s", "-j", ".gnu_debuglink", str(library))
        self.assertIn("tarnhd.dll.debu", sections)
        self.assertIn(".debug_info", components.output_of("i686-w64-mingw32-objdump", "-h", str(symbols)))
        headers = self.one(out, "tarnhd-*-win32/include")
        source = "".join(f'#include "{path.relative_to(headers)}"\n' for path in archive.files_of(headers))
        subprocess.run(["i686-w64-mingw32-g++-posix", "-std=c++20", "-Wall", "-Wextra", "-Werror", "-fsyntax-only",
                        f"-I{headers}", "-xc++", "-"], input=source, text=True, check=True)
        # As the compiler of Windows sees it, or its hosts would call without a word by another convention.
        conventions = components.output_of("i686-w64-mingw32-g++-posix", "-E", "-dM", "-U__i386__", "-D_M_IX86", "-xc++",
                                           str(headers / "delay-load/callingconvention.h"))
        self.assertIn("#define VX_STDCALL __stdcall\n", conventions)

    def test_its_tarnctl_serves_in_an_empty_folder(self):
        """Without the host's library anywhere near."""
        tarnctl = self.one(self.product("out"), "tarnhd-*-win32/bin/tarnctl.exe")
        empty = self.folder / "an empty folder"
        empty.mkdir()
        (empty / "t.log").write_bytes("2026-11-22 10:00:00.000 [0010.0001]  I: one\r\n".encode("utf-16"))
        rows = {
            ("--help",): (0, "usage: tarnctl"),
            ("codes",): (0, "8  Internal error; Resource already exists."),
            ("log", "--file", "t.log", "--grep", "one"): (0, "[0010.0001]  I: one"),
            ("log", "--file", "u.log"): (3, "tarnctl: there is no log "),
            ("--json", "keys"): (3, '"trouble":"the store can\'t be reached"'),
            ("proxy", "http://server/"): (3, "tarnctl: the settings can't be read: "),
            ("log", "--since", "then"): (2, "tarnctl: --since takes a time"),
            ("bundle", "b.cab"): (0, "wrote b.cab"),
        }
        for arguments, (code, text) in rows.items():
            with self.subTest(arguments):
                done = subprocess.run([*RUNNER, str(tarnctl), *arguments], cwd=empty, capture_output=True, text=True)
                self.assertEqual(done.returncode, code, done.stderr)
                self.assertIn(text.lower(), (done.stdout + done.stderr).lower())
        self.assertEqual({path.name for path in empty.iterdir()}, {"t.log", "b.cab"})

    def test_lists_every_file_and_component(self):
        folder = self.one(self.product("out"), "tarnhd-*-win32/")
        document = json.loads(self.one(folder, "*.spdx.json").read_text())
        listed = {entry["fileName"]: entry["checksums"][1]["checksumValue"] for entry in document["files"]}
        there = {f"./{path.relative_to(folder)}": archive.digest(path) for path in archive.files_of(folder)}
        self.assertEqual(set(there) - set(listed), {f"./{archive.CHECKSUMS}", f"./{folder.name}.spdx.json"})
        self.assertLessEqual(listed.items(), there.items())
        known = {entry["SPDXID"] for kind in ("files", "packages") for entry in document[kind]} | {document["SPDXID"]}
        linked = set()
        for row in document["relationships"]:
            self.assertLessEqual({row["spdxElementId"], row["relatedSpdxElement"]}, known)
            if row["relationshipType"] == "STATIC_LINK":
                linked.add(row["relatedSpdxElement"])
        self.assertEqual(linked, {f"SPDXRef-Package-{component.name}" for component in components.LINKED})

    def test_refuses_what_must_not_leave_the_machine(self):
        (self.folder / "planted").write_bytes("in /home/somebody/x".encode("utf-16-le"))
        link_map = self.folder / "library.map"
        link_map.write_text(components.output_of("g++", "-print-file-name=libc.a").strip() + "(puts.o)\n")
        rows = {
            "planted holds the path /home/somebody/":
                lambda: archive.refuse_paths(self.folder, ["/nowhere/", "/home/somebody/"]),
            "without a licence in components.py: libc6-dev":
                lambda: components.refuse_unknown(link_map, components.LINKED),
            "names what is not built: b-tests":
                lambda: make.with_all_tests("# x\n\nanywhere b-tests\n", ["a-tests.exe"]),
        }
        for message, operation in rows.items():
            with self.subTest(message), self.assertRaisesRegex(SystemExit, message):
                operation()
        self.assertEqual(make.with_all_tests("anywhere b-tests\n", ["a-tests.exe", "b-tests.exe", "host.exe"]),
                         "anywhere b-tests\nnever a-tests nobody has said yet what it changes\n")

    def test_signs_and_keeps_the_password(self):
        key, certificate, both = (self.folder / name for name in ("key.pem", "certificate.pem", "both.p12"))
        for command in (f"req -x509 -newkey rsa:2048 -nodes -subj /CN=test -addext extendedKeyUsage=codeSigning "
                        f"-keyout {key} -out {certificate}",
                        f"pkcs12 -export -passout pass:se%sam -inkey {key} -in {certificate} -out {both}"):
            components.output_of("openssl", *command.split())
        os.environ["PACKAGE_SIGN_PASSWORD"] = "se%sam"
        library = self.one(self.product("out", both), "tarnhd-*-win32/bin/tarnhd.dll")
        self.assertNotIn("PACKAGE_SIGN_PASSWORD", os.environ)
        self.assertIn("Signature verification: ok",
                      components.output_of("osslsigncode", "verify", "-CAfile", str(certificate), "-in", str(library)))
        os.environ["PACKAGE_SIGN_PASSWORD"] = "wrong"
        with self.assertRaisesRegex(SystemExit, "^package: osslsigncode failed$"):
            make.Signer(both, EPOCH).sign(library)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
