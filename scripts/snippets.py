#!/usr/bin/env python3
"""Checks the Markdown files: their code is code that is compiled or run, and what they point at exists.

Each ```cpp and ```cmake block must stand, up to its indentation, in one file of SOURCES; a line `// ...` or `# ...`
stands for whatever is between. Relative links, their #anchors, and paths of files in `code` must resolve."""

import itertools
import pathlib
import re
import subprocess
import sys
import textwrap

SOURCES = ["examples/*.cpp", "docs/snippets/*.cpp", "tests/package"]
FENCE = re.compile(r"^```(\w*)$")
LINK = re.compile(r"\]\(([^)\s]+)\)")
FILE = re.compile(r"`((?!boost/)[\w./-]+/[\w.-]+\.(?:hpp|cpp|sh|py|md|txt|cmake))`")


def tracked(*patterns):
    # New files count before they are committed.
    run = ["git", "ls-files", "--cached", "--others", "--exclude-standard", "--deduplicate", "--", *patterns]
    names = subprocess.run(run, capture_output=True, text=True, check=True).stdout.split("\n")
    return [pathlib.Path(name) for name in names if name and pathlib.Path(name).is_file()]


def parted(text):
    """The blocks of code as (line number, language, lines), and all other lines as (line number, line)."""
    blocks, prose, block = [], [], None
    for number, line in enumerate(text.splitlines(), 1):
        fence = FENCE.match(line)
        if block is not None and fence:
            blocks.append(block)
            block = None
        elif block is not None:
            block[2].append(line)
        elif fence:
            block = (number, fence[1], [])
        else:
            prose.append((number, line))
    return blocks, prose


def without_margin(lines):
    return textwrap.dedent("\n".join(lines)).split("\n")


def stands_in(lines, source):
    """Whether the lines, in pieces around elisions, stand in the source in their order."""
    at = 0
    for elided, piece in itertools.groupby(lines, lambda line: line.strip() in ("// ...", "# ...")):
        if elided:
            continue
        wanted = without_margin(list(piece))
        while wanted and not wanted[-1]:
            wanted.pop()
        while wanted and not wanted[0]:
            wanted.pop(0)
        while at + len(wanted) <= len(source) and without_margin(source[at:at + len(wanted)]) != wanted:
            at += 1
        if at + len(wanted) > len(source):
            return False
        at += len(wanted)
    return True


def anchors(path):
    """The names GitHub gives to the headings."""
    _, prose = parted(path.read_text())
    headings = [line.lstrip("#").strip().lower() for _, line in prose if line.startswith("#")]
    return {re.sub(r"[^\w -]", "", heading).replace(" ", "-") for heading in headings}


def resolves(page, target):
    name, _, anchor = target.partition("#")
    file = page.parent / name if name else page
    return file.exists() and (not anchor or file.suffix == ".md" and anchor in anchors(file))


def main():
    sources = [path.read_text().splitlines() for path in tracked(*SOURCES)]
    files = [f"/{path}" for path in tracked(".")]
    failed = 0

    def complain(page, number, text):
        nonlocal failed
        failed += 1
        print(f"{page}:{number}: {text}")

    for page in tracked("*.md"):
        blocks, prose = parted(page.read_text())
        for number, language, lines in blocks:
            if language in ("cpp", "cmake") and not any(stands_in(lines, source) for source in sources):
                complain(page, number, f"this {language} code stands in no source that is built")
        for number, line in prose:
            for target in LINK.findall(line):
                if not re.match(r"[a-z]+:", target) and not resolves(page, target):
                    complain(page, number, f"leads nowhere: {target}")
            for name in FILE.findall(line):
                if not any(file.endswith(f"/{name}") for file in files):
                    complain(page, number, f"no such file: {name}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
