#!/usr/bin/env python3
"""Checks that the mistakes in tests/must-not-compile/ do not compile, each for its own reason.

A line that ends in `// refused: REGEX` must meet an error of that text, with both compilers; no other line may meet
any, and the file without its marked lines must compile."""

import pathlib
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

COMPILERS = ["g++", "clang++-19"]
FLAGS = "-std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Iinclude -Iemulator/include -x c++".split()
MARK = re.compile(r"// refused: (.*)$")


def compiled(compiler, name, text):
    """What the compiler says of the text, as if it were the file `name`, and whether it took it."""
    unlimited = "-fmax-errors=0" if compiler == "g++" else "-ferror-limit=0"
    source = f'#line 1 "{name}"\n{text}'
    run = subprocess.run([compiler, *FLAGS, unlimited, "-"], input=source, capture_output=True, text=True, check=False)
    return run.stderr, run.returncode == 0


def complaints(compiler, path):
    lines = path.read_text().splitlines()
    marks = {number: MARK.search(line)[1] for number, line in enumerate(lines, 1) if MARK.search(line)}
    said, accepted = compiled(compiler, path, "\n".join("" if MARK.search(line) else line for line in lines) + "\n")
    if not accepted:
        yield f"{compiler} {path}: does not compile without its mistakes\n{said}"
        return
    said, _ = compiled(compiler, path, "\n".join(lines) + "\n")
    here = re.compile(rf"^{re.escape(str(path))}:(\d+):", re.MULTILINE)
    mentioned = {int(number) for number in here.findall(said)}
    errors = [line for line in said.splitlines() if "error: " in line]
    for number, reason in marks.items():
        # An error inside a template of the kit's is about the line that it is instantiated from.
        places = rf"({re.escape(str(path))}:{number}|include/\S+:\d+):"
        met = any(re.match(rf"{places}.*error: .*({reason})", line) for line in errors)
        if not met or number not in mentioned:
            yield f"{compiler} {path}:{number}: not refused for: {reason}"
    for line in errors:
        place = here.match(line)
        if place and int(place[1]) not in marks:
            yield f"{compiler}: unexpected: {line}"


def main():
    jobs = [(compiler, path) for path in sorted(pathlib.Path("tests/must-not-compile").glob("*.cpp"))
            for compiler in COMPILERS]
    with ThreadPoolExecutor(2) as pool:
        found = [text for result in pool.map(lambda job: list(complaints(*job)), jobs) for text in result]
    print("\n".join(found), end="\n" if found else "")
    return 1 if found or not jobs else 0


if __name__ == "__main__":
    sys.exit(main())
