#!/usr/bin/env python3
"""Tests of the page that "tarnctl log --html" writes, in a browser without a window: pagetest.py TARNCTL [RUNNER...].

RUNNER is what runs a program of Windows here."""
import html
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

TARNCTL, RUNNER = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2:]
BROWSER = "chromium-headless-shell"

LINES = """\
2026-11-22 10:00:00.000 [0010.0001]  I: ***  LOGGING STARTED  *** (UTC+1:00, session: 0x0)
2026-11-22 10:00:01.000 [0010.0001]  D: { vx::f
2026-11-22 10:00:02.000 [0010.0002] *E: Failed </script><img src=x onerror=console.log(1)> & "Grüße" &lt; 5
<b>another program's</b> line\r with a return
2026-11-22 10:00:03.000 [0010.0001]  D: } vx::f
2026-11-22 10:00:03.500 [0010.0002] *E: Failed </script><img src=x onerror=console.log(1)> & "Grüße" &lt; 6
2026-11-22 10:00:04.000 [0010.0004]  I: Deployment task was put to the queue. '<ALL>'.
2026-11-22 10:00:04.000 [0010.0004]  I: Scan start time: 1
2026-11-22 10:00:04.000 [0010.0003]  I: tarnag.exe start event signaled.
2026-11-22 10:00:05.000 [0010.0003] .W: Process finished with return code: 5
""".split("\n")[:-1]


SHOWN = [line.replace("\r", " ") for line in LINES]
ALL = tuple(range(len(LINES)))

# Takes each step from the page as it was opened first, and leaves what is seen after each in place of the page.
# Time is the browser's own: a pause takes none.
DRIVER = """
const all = (selector, tell) => [...document.querySelectorAll(selector)].map(tell);
const text = element => element.textContent;
const set = (id, value, kind) => {
    const field = document.getElementById(id);
    field.value = value;
    field.checked = true;
    field.dispatchEvent(new Event(kind));
};
const press = selector => document.querySelector(selector).dispatchEvent(new MouseEvent("click", {bubbles: true}));
const pause = () => new Promise(done => setTimeout(done, 500));
addEventListener("load", async () => {
    const states = [];
    for (const step of STEPS) {
        if (states.length) location.hash = "";
        await pause();
        await new Function("set", "press", "pause", `return (async () => { ${step} })()`)(set, press, pause);
        await pause();
        states.push({address: location.hash, rows: all(".row", text), here: all(".here", text),
            count: text(document.getElementById("count")), bad: all("#search.bad", text).length,
            lanes: all(".lane", lane => [lane.title, lane.style.left, lane.style.background]),
            findings: all("#findings li", text), bars: all("rect", text), ticks: all("#chart line + text", text),
            names: all("#chart text[x='0']", text),
            hidden: all("#chart text[x='0']", name => all("rect", bar => bar.getBoundingClientRect().left)
                .filter(left => left < name.getBoundingClientRect().right).length), marks: all("mark", text),
            parts: all("body > *", part => part.id).filter(id => id)});
    }
    document.body.textContent = "states: " + JSON.stringify(states) + ";";
});
"""


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # Not in the folder for temporary files, which the program may not see.
        folder = tempfile.TemporaryDirectory(dir=TARNCTL.parent)
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        (cls.folder / "tarnhd.log").write_bytes("".join(line + "\r\n" for line in LINES).encode("utf-16"))
        subprocess.run([*RUNNER, str(TARNCTL), "log", "--file", "tarnhd.log", "--html", "page.html"],
                       cwd=cls.folder, check=True)

    def drive(self, steps, address=""):
        """What is seen after each step on the page that was opened by the address. An error in it fails the test."""
        page = self.folder / "driven.html"
        text = (self.folder / "page.html").read_text(encoding="utf-8")
        driver = DRIVER.replace("STEPS", json.dumps(steps))
        page.write_text(text.replace("</html>", f"<script>{driver}</script></html>"), encoding="utf-8")
        shown = subprocess.run([BROWSER, "--no-sandbox", "--disable-gpu", f"--user-data-dir={self.folder}/browser",
                                "--window-size=1200,1500", "--virtual-time-budget=100000", "--enable-logging=stderr",
                                "--dump-dom", page.as_uri() + address], capture_output=True, check=True, timeout=100)
        errors = [line for line in shown.stderr.decode().splitlines() if "CONSOLE" in line]
        self.assertEqual(errors, [])
        states = re.search("states: (.*);</body>", shown.stdout.decode(), re.DOTALL)
        return json.loads(html.unescape(states[1]))

    def test_shows_findings_bars_and_a_lane_for_each_thread(self):
        page, = self.drive([""])
        self.assertEqual(page["parts"], ["findings", "time", "controls", "view"])
        for finding, text in zip(page["findings"], ("agent start failed, exit code 5", "2 times: " + LINES[2][40:],
                                                    "Process finished with return code: 5"), strict=True):
            self.assertIn(text, finding)
        for bar in ("plug-in in process 16, 2026-11-22 10:00:00.000 to 2026-11-22 10:00:05.000, without an end in the log",
                    "agent: failed, exit code 5, 2026-11-22 10:00:04.000",
                    "remote installation request: <ALL>'., 2026-11-22 10:00:04.000", "error, 2026-11-22 10:00:03.500"):
            self.assertIn(bar, page["bars"])
        self.assertEqual((page["names"], page["hidden"]), (["plug-in", "agent", "requests", "errors"], [0] * 4))
        self.assertEqual(page["ticks"][1], "2026-11-22 10:00:01.250")
        self.assertEqual(page["rows"], SHOWN)
        threads = [lane[0][-4:] for lane in page["lanes"]]
        self.assertEqual(threads, "0001 0001 0002 0002 0001 0002 0004 0004 0003 0003".split())
        for part in zip(*page["lanes"]):
            self.assertEqual(len(set(part)), 4)

    def test_shows_what_is_chosen_and_keeps_it_in_the_address(self):
        rows = {
            "location.hash = '#level=error'": (None, (2, 3, 5)),
            "location.hash = '#level=warning&thread=0010.0003'": (None, (9,)),
            "location.hash = '#search=GR%C3%9C%C3%9Fe&only='": (None, (2, 5)),
            "location.hash = '#search=code:+5'": (None, ALL),
            "location.hash = '#search=/signaled.%24|code: [1-9]/&only'": (None, (8, 9)),
            "location.hash = '#search=<b>&only'": (None, (3,)),
            "location.hash = '#level=no&thread=such'": (None, ALL),
            "location.hash = '#search=nowhere&only'": (None, ()),
            "set('level', 'error', 'change')": ("#level=error", (2, 3, 5)),
            "set('thread', '0010.0001', 'change')": ("#thread=0010.0001", (0, 1, 4)),
            "set('search', '& \"grü', 'input'); set('only', '', 'change')": ("#search=%26+%22gr%C3%BC&only=", (2, 5)),
            "press('#findings li')": ("#line=7", ALL),
            "press('.row:nth-child(4)')": ("#line=4", ALL),
            "press('rect')": ("#line=1", ALL),
            "set('search', '2026', 'input'); await pause(); press('#next')": ("#search=2026&line=1", ALL),
            "set('search', 'failed', 'input'); await pause(); press('#previous')": ("#search=failed&line=6", ALL),
            "set('level', 'error', 'change'); set('level', 'verbose', 'change')": ("", ALL),
        }
        for (step, (address, wanted)), page in zip(rows.items(), self.drive(list(rows)), strict=True):
            with self.subTest(step):
                self.assertEqual(page["rows"], [SHOWN[place] for place in wanted])
                self.assertTrue(page["count"].startswith(f"{len(wanted)} of {len(LINES)} lines"), page["count"])
                self.assertIn(address, (None, page["address"]))
                self.assertEqual(page["here"], [SHOWN[int(line) - 1] for line in page["address"].split("line=")[1:]])

    def test_opens_as_its_address_says(self):
        page, = self.drive([""], "#search=failed&line=5")
        self.assertEqual((page["here"], page["marks"]), ([SHOWN[4]], ["Failed"] * 2))
        page, = self.drive([""], "#search=/[/")
        self.assertEqual((page["bad"], page["rows"]), (1, SHOWN))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
