#!/usr/bin/env python3
"""Holds what the pages and pictures quote against the sources, and their links against what is there.

Held are
- log lines against the log statements of sdk and src, level included: the lines of a ```log block, code spans that
  begin with a level, all code spans in the first column of a table whose head begins with "Log line", and, without a
  level, texts of class log in a picture;
- code spans in the first column under "`tarnctl` says" against the texts that it prints;
- code spans in a line that begins with "Health:" against the names of its checks;
- code spans that are whole keys of the store against docs/keys.md;
- links within the repository, with their headings.
<...> stands for what is not fixed. The fixed parts of a quotation must stand in one statement, in their order.

Prints each fault as one line; exit status 1 when there is one."""
import html
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SIMPLE = {"n": "\n", "r": "\r", "t": "\t"}
LEVELS = {"*E": "Error", ".W": "Warning", "I": "Info", "D": "Debug"}
TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|\'(?:[^\'\\\n]|\\.)\'|((?:(?:L|u8)?"(?:[^"\\\n]|\\.)*"\s*)+)|[;{}]|[^;{}"\'/]+|.',
                   re.DOTALL)


class Statement:
    """The string literals between two of ; { and }, with the log levels that are named among them."""

    def __init__(self, literals, code):
        self.literals = literals
        self.levels = set(re.findall(r"Level::(\w+)", code))
        if not self.levels and re.search(r"\b(guarded|guardedAgainst|succeeded)\b", code):
            self.levels = {"Error"}

    def says(self, parts, level):
        if level and self.levels and level not in self.levels:
            return False
        rest = iter(self.literals)
        literal, place = next(rest, None), 0
        for part in parts:
            while literal is not None and (found := literal.find(part, place)) < 0:
                literal, place = next(rest, None), 0
            if literal is None:
                return False
            place = found + len(part)
        return True


def literal_of(token):
    pieces = re.findall(r'"((?:[^"\\\n]|\\.)*)"', token)
    return re.sub(r"\\(.)", lambda match: SIMPLE.get(match[1], match[1]), "".join(pieces))


def statements_of(path):
    literals, code = [], ""
    for match in TOKEN.finditer(path.read_text(encoding="utf-8")):
        token = match[0]
        if match[1]:
            literals.append(literal_of(token))
        elif token in ";{}":
            if literals:
                yield Statement(literals, code)
            literals, code = [], ""
        elif not token.startswith(("//", "/*")):
            code += token
    if literals:
        yield Statement(literals, code)


def statements_in(*folders):
    return [statement for folder in folders for path in sorted((ROOT / folder).rglob("*"))
            if path.suffix in (".h", ".cpp") for statement in statements_of(path)]


def stands_in(statements, text, level):
    parts = [part for part in re.split(r"<[^<>]*>", text) if part.strip()]
    return any(statement.says(parts, level) for statement in statements)


def quoted_lines(page):
    for block in re.findall(r"^```log\n(.*?)^```", page, re.MULTILINE | re.DOTALL):
        yield from block.splitlines()
    yield from first_column(page, "Log line")
    yield from re.findall(r"`((?:\*E|\.W|I|D): [^`]+)`", page)


def first_column(page, head):
    for table in re.findall(rf"^\| {re.escape(head)}.*\n\|[-|]+\n((?:\|.*\n)+)", page, re.MULTILINE):
        for row in table.splitlines():
            yield from re.findall(r"`([^`]+)`", row.split(" | ")[0])


def headings_of(path):
    titles = re.findall(r"^#+ (.*)$", path.read_text(encoding="utf-8"), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", title).strip().lower().replace(" ", "-") for title in titles}


class Sources:
    def __init__(self):
        self.product = statements_in("sdk", "src")
        self.tool = statements_in("tools/tarnctl", "tools/logreading", "src/common/exitstatus")
        self.keys = set(re.findall(r"`([\w.]+)`", (ROOT / "docs/keys.md").read_text(encoding="utf-8")))
        checks = (ROOT / "tools/tarnctl/health/checks.cpp").read_text(encoding="utf-8")
        self.checks = set(re.findall(r'^    \{"([^"]+)", check\w+\}', checks, re.MULTILINE))

    def faults(self, path):
        page = path.read_text(encoding="utf-8")
        for line in dict.fromkeys(quoted_lines(page)):
            level, _, message = line.strip().partition(": ")
            if level not in LEVELS:
                yield f"begins with no level of the log: {line}"
            elif not stands_in(self.product, message, LEVELS[level]):
                yield f"nothing logs this: {line}"
        for text in re.findall(r'<text class="log"[^>]*>(.*?)</text>', page):
            if not stands_in(self.product, html.unescape(text), None):
                yield f"nothing logs this: {text}"
        for text in first_column(page, "`tarnctl` says"):
            if not stands_in(self.tool, text, None):
                yield f"tarnctl says no such thing: {text}"
        for row in re.findall(r"^Health: (.*)$", page, re.MULTILINE):
            for name in set(re.findall(r"`([^`]+)`", row)) - self.checks:
                yield f"no check has this name: {name}"
        for name in set(re.findall(r"`((?:status\.)?windows\.[\w.]+)`", page)) - self.keys:
            yield f"no such key: {name}"
        for target, _, heading in re.findall(r"\]\(([^():#]*)(#?)([^():#]*)\)", page):
            found = path.parent / target if target else path
            if not found.exists() or heading and heading not in headings_of(found):
                yield f"leads nowhere: {target}#{heading}"


def main():
    sources = Sources()
    pages = [*sorted(ROOT.glob("*.md")), *sorted(path for path in (ROOT / "docs").rglob("*")
                                                 if path.suffix in (".md", ".svg"))]
    lines = [f"{path.relative_to(ROOT)}: {fault}" for path in pages for fault in sources.faults(path)]
    print("\n".join(lines), end="\n" if lines else "")
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main())
