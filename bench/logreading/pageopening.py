#!/usr/bin/env python3
"""How long a browser without a window takes to open the page of a log of 100 MB: pageopening.py TARNCTL [RUNNER...].

RUNNER is what runs a program of Windows here. The exit status is 1 when the page takes longer than it may."""
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

LOG_SIZE, REACH, REPEATS = 100_000_000, 5.0, 3
MESSAGES = ("Waiting for event...", "    { vx::tarn::TarnHandler::startScan", "tarnag.exe start event signaled.",
            "Setting 'windows.tarnpatch.enabled' not found - fallback to default value",
            "Process finished with return code: 5")


def write_log(path):
    """UTF-16, as the plug-in writes it; gives the number of lines."""
    number = 0
    with path.open("wb") as file:
        file.write(b"\xff\xfe")
        while file.tell() < LOG_SIZE:
            lines = (f"2026-11-22 10:{k // 60_000 % 60:02}:{k // 1000 % 60:02}.{k % 1000:03} [0384.{k % 7:04x}]  I: "
                     f"{MESSAGES[k % len(MESSAGES)]}\r\n" for k in range(number, number + 10_000))
            file.write("".join(lines).encode("utf-16-le"))
            number += 10_000
    return number


def seconds_to_open(address, folder, sign):
    begin = time.monotonic()
    shown = subprocess.run(["chromium-headless-shell", "--no-sandbox", "--disable-gpu", f"--user-data-dir={folder}",
                            "--dump-dom", address], capture_output=True, check=True)
    taken = time.monotonic() - begin
    if sign not in shown.stdout:
        sys.exit(f"pageopening: the browser does not show {sign.decode()}")
    return taken


def main():
    tarnctl, runner = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2:]
    with tempfile.TemporaryDirectory(dir=tarnctl.parent) as name:
        folder = pathlib.Path(name)
        lines = write_log(folder / "tarnhd.log")
        subprocess.run([*runner, str(tarnctl), "log", "--file", "tarnhd.log", "--html", "page.html"], cwd=folder,
                       check=True)
        page = folder / "page.html"
        pages = {"an empty page": ("about:blank", b"<html"), "the page": (page.as_uri(), f"of {lines} lines".encode())}
        median = {what: statistics.median(seconds_to_open(address, folder / "browser", sign) for _ in range(REPEATS))
                  for what, (address, sign) in pages.items()}
        reached = median["the page"] < REACH
        print(f"The page of a log of {LOG_SIZE / 1e6:.0f} MB, {page.stat().st_size / 1e6:.0f} MB itself, opens in "
              f"{median['the page']:.1f} s, < {REACH:.0f} s {'ok' if reached else 'NO'}; "
              f"an empty one in {median['an empty page']:.1f} s")
    return 0 if reached else 1


if __name__ == "__main__":
    sys.exit(main())
