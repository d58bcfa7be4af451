#!/usr/bin/env python3
"""Tests of scripts/package on a finished build: packagetest.py BUILD [RUNNER...].

RUNNER is what runs a program of Windows here."""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPTS = ROOT / "scripts" / "package"
sys.path.insert(0, str(SCRIPTS))
import archive  # noqa: E402
import components  # noqa: E402
import make  # noqa: E402

EPOCH = 1_700_000_000
BUILD, RUNNER = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2:]
WINE = BUILD.parent / "wine-prefix"


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
        for program in make.PROGRAMS:
            with self.subTest(program):
                path = self.one(out, f"tarnhd-*-win32/bin/{program}")
                seen = components.output_of("i686-w64-mingw32-objdump", "-x", str(path))
                flags = int(re.search(r"^DllCharacteristics\s+(\w+)", seen, re.MULTILINE)[1], 16)
                moves, never_executes_data = 0x40, 0x100
                self.assertEqual(flags & (moves | never_executes_data), moves | never_executes_data)
                self.assertRegex(seen, r"\sHIGHLOW\n", "it can't be moved all the same")
        headers = self.one(out, "tarnhd-*-win32/include")
        source = "".join(f'#include "{path.relative_to(headers)}"\n' for path in archive.files_of(headers))
        subprocess.run(["i686-w64-mingw32-g++-posix", "-std=c++17", "-Wall", "-Wextra", "-Werror", "-fsyntax-only",
                        f"-I{headers}", "-xc++", "-"], input=source, text=True, check=True)
        self.assert_guide_is_true(folder=headers.parent)
        # As the compiler of Windows sees it, or its hosts would call without a word by another convention.
        conventions = components.output_of("i686-w64-mingw32-g++-posix", "-E", "-dM", "-U__i386__", "-D_M_IX86", "-xc++",
                                           str(headers / "delay-load/callingconvention.h"))
        self.assertIn("#define VX_STDCALL __stdcall\n", conventions)

    def assert_guide_is_true(self, folder):
        """It shows the host as it is, and that one can be built as it says, of nothing but the archive."""
        guide = (folder / "docs/integration.md").read_text()
        host = (folder / "docs/examples/minimalhost/minimalhost.cpp").read_text()
        self.assertIn(f"```cpp\n{host}```\n", guide)
        command = re.search(r"^i686-w64-mingw32-g\+\+.*", guide, re.MULTILINE)[0].split()
        subprocess.run([*command, "-Wall", "-Wextra", "-Werror"], cwd=folder, check=True)

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
            ("--json", "keys"): (3, '"trouble":"the store can\'t be reached"'),
            ("bundle", "b.cab"): (3, "keys.jsonl in it says what could not be read"),
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
        # The programs differ in what their sources include only.
        names = {program: {component.name for component in components.linked_into(BUILD, program)}
                 for program in make.PROGRAMS}
        self.assertEqual(names["tarnhd.dll"], names["tarnctl.exe"] - {"cli11"})
        self.assertEqual(names["qrl-probe.dll"], names["tarnhd.dll"] - {"json-for-modern-cpp"})

    def test_refuses_what_must_not_leave_the_machine(self):
        (self.folder / "planted").write_bytes("in /home/somebody/x".encode("utf-16-le"))
        rows = {
            "planted holds the path /home/somebody/":
                lambda: archive.refuse_paths(self.folder, ["/nowhere/", "/home/somebody/"]),
            "in tarnhd.dll, but without a licence in components.py: header-libraries/nlohmann":
                lambda: components.linked_into(BUILD, "tarnhd.dll", components.LINKED[1:]),
            "without a licence in components.py: .*gcc-mingw-w64-i686-posix":
                lambda: components.linked_into(BUILD, "tarnhd.dll", (components.LINKED[0], components.LINKED[-1])),
            "names what is not built: b-tests":
                lambda: make.with_all_tests("# x\n\nanywhere b-tests\n", ["a-tests.exe"]),
        }
        for message, operation in rows.items():
            with self.subTest(message), self.assertRaisesRegex(SystemExit, message):
                operation()
        self.assertEqual(make.with_all_tests("anywhere b-tests\n", ["a-tests.exe", "b-tests.exe", "host.exe"]),
                         "anywhere b-tests\nnever a-tests nobody has said yet what it changes\n")

    def test_has_no_link_that_leads_out_of_the_archive(self):
        (self.folder / "pages").mkdir()
        page = self.folder / "pages" / "page.md"
        page.write_text("[a](../pages/page.md#x) [b](#x) [c](https://x/y) `[d](none)` [e](none.md) ![f](none.png)\n"
                        "```\n[g](none)\n``` [h](../none.md#x)")
        make.keep_links(self.folder)
        self.assertEqual(page.read_text(), "[a](../pages/page.md#x) [b](#x) [c](https://x/y) `[d](none)` e f\n"
                                           "```\n[g](none)\n``` h")

    def test_checks_a_machine_and_says_what_came_of_it(self):
        place = WINE / "drive_c" / f"check (1) & more {os.getpid()}"
        self.addCleanup(shutil.rmtree, place, ignore_errors=True)
        (place / "bin").mkdir(parents=True)
        source = """
            #include <cstdio>
            #include <cstring>
            int main(int count, char** arguments)
            {
                const char* const filter = arguments[count - 1];
                if (count == 3)
                    return std::puts(std::strstr(filter, "passes")
                        ? "Case.\\n  passes" : "Case.\\n  passes\\n  fails\\n  isSkipped\\n  hangs") < 0;
                if (std::strstr(filter, "hangs"))
                    for (volatile bool isOn = true; isOn;);
                if (std::strstr(filter, "isSkipped"))
                    std::puts("[  SKIPPED ] 1 test.");
                return std::strstr(filter, "fails") ? 7 : 0;
            }"""
        subprocess.run(["i686-w64-mingw32-g++-posix", "-static", "-o", str(place / "bin" / "some-tests.exe"), "-xc++",
                        str(ROOT / "tests/support/src/timelimit.cpp"), "-"], input=source, text=True, check=True)
        # The product's key is that of the tests beside this one, and a check takes away what it made.
        text = (SCRIPTS / "check/check.cmd").read_text().replace("SOFTWARE\\Vantorix", f"SOFTWARE\\Check{os.getpid()}")
        (place / "check.cmd").write_text(text, newline="\r\n")

        def check(rows):
            (place / "tests.txt").write_text(rows, newline="\r\n")
            return subprocess.run([str(ROOT / "run"), "wine", "cmd", "/c", "check.cmd"], cwd=place,
                                  env={**os.environ, "TARNHD_TEST_SECONDS": "10"}, stdout=subprocess.DEVNULL).returncode

        self.assertEqual(check("machine some-tests Case.passes\nnever other-tests it harms\n"), 0)
        self.assertEqual(check("# x\nanywhere some-tests Case.*\nanywhere none-tests\nnever other-tests it harms\n"), 1)
        report = (place / "report.txt").read_text()
        for line in ("passed: Case.passes", "FAILED with 7: Case.fails", "left out by itself: Case.isSkipped",
                     "FAILED with 124: Case.hangs", "the time for this test is over",
                     "== other-tests is left out: it harms", "FAILED: it has no such tests, or does not start",
                     "1 tests passed, 3 failed, 2 tests or programs were left out"):
            self.assertIn(f"{line}\n", report)
        self.assertEqual(check("never other-tests it harms\n"), 1, "none ran")
        self.assertNotIn("Case.", (place / "report.txt").read_text(), "of an earlier run")
        (place / "report.txt").unlink()
        (place / "report.txt").mkdir()
        self.assertEqual(check("anywhere some-tests\n"), 3)

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
