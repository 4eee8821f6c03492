"""Turns what scripts/bench.sh measured into medians, goals and, with --write DIRECTORY, results.md and results.svg."""
import collections
import pathlib
import platform
import statistics
import sys

# what bodies are decoded and encoded, and the goals against each peer
BODIES = [("page", "a page of 100 posts"), ("post", "one post"), ("feed", "the friends feed of 100 posts"),
          ("fof", "a page of 50 posts of friends of friends"), ("friends", "a page of 500 friends"),
          ("profile", "one profile")]
DECODING = [("nlohmann", 0.13), ("rapidjson", None), ("boost-json", 0.7), ("simdjson", 1.2)]
ENCODING = [("nlohmann", 0.1), ("rapidjson", None), ("boost-json", None)]

# comparison, the kit's side, the peer (None: the value itself, in that unit), the goal (None: told only), what it is
ROWS = [
    ("cpu.http2", "perform", "curl", 1.15, "transport, HTTP/2, CPU a call"),
    ("cpu.http2", "fetch", "curl", None, "HTTP client, HTTP/2, CPU a call"),
    ("cpu.http1", "perform", "curl", 1.25, "transport, HTTP/1.1, CPU a call"),
    ("cpu.http1", "fetch", "curl", None, "HTTP client, HTTP/1.1, CPU a call"),
    ("cpu.call", "fire", "curl+simdjson", 1.25, "one whole call of the kit, HTTP/2, CPU"),
    ("instructions.http2", "perform", "curl", 1.10, "transport, HTTP/2, user instructions a call"),
    ("instructions.http2", "fetch", "curl", None, "HTTP client, HTTP/2, user instructions a call"),
    ("instructions.call", "fire", "curl+simdjson", None, "one whole call of the kit, user instructions"),
    ("memory.http2", "perform", "KiB", 20, "transport, resident a call, 1,000 in flight on HTTP/2"),
    ("memory.http2", "fetch", "KiB", None, "HTTP client, the same"),
    ("memory.http2", "curl", "KiB", None, "bare libcurl, the same"),
    ("connections.64", "perform", "connections", 1, "connections for 64 cold calls on HTTP/2"),
    ("connections.1000", "perform", "connections", 6, "connections for 1,000 calls, 128 streams each"),
    *((f"decode.{body}", "kit", peer, goal, f"decode {what}") for body, what in BODIES for peer, goal in DECODING),
    *((f"decode.{body}-sorted", "kit", "simdjson", None, f"decode {dict(BODIES)[body]}, the keys of each object sorted")
      for body in ("page", "feed")),
    *((f"encode.{body}", "kit", peer, goal, f"encode {what}") for body, what in BODIES for peer, goal in ENCODING),
    ("encode.analytics", "kit", "nlohmann", None, "write a batch of 100 analytics events"),
    ("token-exchanges", "kit", "exchanges", 1, "token exchanges of 10,000 callers on an expired token"),
    ("tokens", "expired", "valid", None, "time a caller, against a caller on a valid token"),
    ("tokens", "expired", "us", None, "time a caller, CPU"),
    ("size", "library", "KiB", None, "the shared library, optimised and stripped"),
    ("compile.O0", "host", "s", None, "compiling a small host, g++ -O0, CPU"),
    ("compile.O2", "host", "s", None, "compiling a small host, g++ -O2, CPU"),
]
UNITS = {"KiB": 1 / 1024, "connections": 1, "exchanges": 1, "us": 1e6, "s": 1}

Result = collections.namedtuple("Result", "name what low median high goal unit pairs")


def read(path):
    samples = collections.defaultdict(dict)
    notes = []
    for line in pathlib.Path(path).read_text().splitlines():
        word, _, rest = line.partition(" ")
        if word == "note":
            notes.append(rest)
        elif word == "sample":
            name, pair, side, value = rest.split()
            samples[name, side][int(pair)] = float(value)
    return samples, notes


def results(samples):
    for name, side, peer, goal, what in ROWS:
        mine, unit = samples.get((name, side)), UNITS.get(peer)
        if not mine:
            continue
        if unit:
            values = [value * unit for value in mine.values()]
        else:
            values = [value / samples[name, peer][pair] for pair, value in mine.items()]
        low, median, high = statistics.quantiles(values, n=4) if len(values) > 1 else values * 3
        against = peer if unit else f"{side}/{peer}"
        label = f"{name}.{side}" if unit else f"{name}.{against}"
        yield Result(label, what, low, median, high, goal, peer if unit else "", len(values))


def text(value):
    return f"{value:.0f}" if value == int(value) else f"{value:.1f}" if value >= 10 else f"{value:.3f}"


def range_of(r):
    return "" if r.pairs == 1 else f"{text(r.low)} to {text(r.high)}"


def verdict(r):
    return "" if r.goal is None else "met" if r.median <= r.goal else "missed"


def markdown(rows, notes, causes):
    lines = ["# Results", "", "Written by `scripts/bench.sh`. Ratios are the kit's cost divided by the peer's: medians of adjacent",
             "pairs of one run, with quartiles. Instruction counts and memory are single measurements.", "",
             f"Machine: {cpu()}, {platform.system()} {platform.release()}.", *notes, "",
             "![Each ratio with its quartiles; the mark is the goal](results.svg)", "",
             "| Measure | What | Median | Quartiles | Goal | |", "|---|---|---|---|---|---|"]
    for r in rows:
        unit = f" {r.unit}" if r.unit in ("KiB", "us", "s") else ""
        goal = "" if r.goal is None else f"<= {text(r.goal)}"
        lines.append(f"| `{r.name}` | {r.what} | {text(r.median)}{unit} | {range_of(r)} | {goal} | {verdict(r)} |")
    return "\n".join(lines + ["", causes.strip(), ""])


def cpu():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.partition(":")[2].strip()
    return platform.machine()


def plot(rows):
    """One bar a ratio from its lower to its upper quartile, on a scale from 0 to 1.5; a line marks the goal."""
    left, width, step = 330, 450, 22
    at = lambda value: left + min(value, 1.5) / 1.5 * width
    height = step * len(rows) + 40
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 70}" height="{height}" '
           'font-family="sans-serif" font-size="12">', '<rect width="100%" height="100%" fill="white"/>']
    for tick in (0, 0.25, 0.5, 0.75, 1, 1.25, 1.5):
        out.append(f'<line x1="{at(tick)}" x2="{at(tick)}" y1="10" y2="{height - 25}" stroke="#ddd"/>'
                   f'<text x="{at(tick)}" y="{height - 8}" text-anchor="middle">{tick}</text>')
    for i, r in enumerate(rows):
        y = 24 + step * i
        colour = {"met": "#2a7", "missed": "#c33", "": "#58a"}[verdict(r)]
        out.append(f'<text x="{left - 8}" y="{y}" text-anchor="end">{r.name}</text>'
                   f'<rect x="{at(0)}" y="{y - 9}" width="{at(r.median) - at(0)}" height="10" fill="{colour}" opacity="0.35"/>'
                   f'<rect x="{at(r.low)}" y="{y - 9}" width="{max(at(r.high) - at(r.low), 2)}" height="10" fill="{colour}"/>'
                   f'<text x="{max(at(r.high), at(r.goal or 0)) + 6}" y="{y}">{text(r.median)}</text>')
        if r.goal is not None:
            out.append(f'<line x1="{at(r.goal)}" x2="{at(r.goal)}" y1="{y - 12}" y2="{y + 4}" stroke="black" stroke-width="2"/>')
    return "\n".join(out + ["</svg>", ""])


def main():
    samples, notes = read(sys.argv[-1])
    rows = list(results(samples))
    for note in notes:
        print(note)
    for r in rows:
        print(f"{r.name:40} {text(r.median):>8} {r.unit:12} {range_of(r)}")
    if sys.argv[1] == "--write":
        directory = pathlib.Path(sys.argv[2])
        causes = (directory / "remarks.md").read_text()
        (directory / "results.md").write_text(markdown(rows, [f"{note[0].upper()}{note[1:]}." for note in notes], causes))
        (directory / "results.svg").write_text(plot([r for r in rows if not r.unit]))
    for r in rows:
        if r.goal is not None:
            print(f"goal {r.name} {text(r.median)} <= {text(r.goal)} {verdict(r)}")


main()
