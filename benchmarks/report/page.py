"""The report: a page of tables, and charts."""

import datetime
import statistics
import textwrap
from dataclasses import dataclass

import charts
import machine
from goals import FORMULAS, PLAIN, SECTIONS, Goal


@dataclass
class Row:
    goal: Goal
    ours: float  # nanoseconds, the median of the rounds
    peer: str
    peer_time: float
    ratio: float  # the median of the rounds' ratios
    least: float
    most: float
    wanted: float | None

    @property
    def is_reached(self):
        if self.wanted is None:
            return None
        return self.ratio <= self.wanted if self.goal.is_cost else self.ratio >= self.wanted


def row_of(goal, taken, has_avx512):
    """None where a round lacks ours, or every peer."""
    peers = [name for name in goal.peers if all(name in times for times in taken)]
    if not peers or not all(goal.ours in times for times in taken):
        return None
    over = {name: statistics.median(times[name] for times in taken) for name in peers}
    best = min(over, key=over.get)
    ratios = [times[goal.ours] / times[best] if goal.is_cost else times[best] / times[goal.ours]
              for times in taken]
    wanted = goal.wanted
    if not has_avx512 and goal.without_avx512 is not None:
        wanted = goal.without_avx512
    return Row(goal, statistics.median(times[goal.ours] for times in taken), goal.peers[best],
               over[best], statistics.median(ratios), min(ratios), max(ratios), wanted)


def rows_of(taken, has_avx512):
    """Pairs of a section and a row, in order; what could not be measured is left out."""
    found = []
    for section in SECTIONS:
        for goal in section.goals:
            row = row_of(goal, taken, has_avx512)
            if row:
                found.append((section, row))
    return found


def wanted_text(row):
    if row.wanted is None:
        return ""
    return f"{'≤' if row.goal.is_cost else '≥'} {row.wanted:g}"


def table(rows):
    yield "| what | ours | beside | peer | times as fast | wanted | reached |"
    yield "| --- | ---: | --- | ---: | ---: | ---: | :---: |"
    for row in rows:
        reached = {None: "", True: "yes", False: "**no**"}[row.is_reached]
        ratio = f"{row.ratio:.2f}" if row.ratio < 10 else f"{row.ratio:.1f}"
        spread = f" ({row.least:.3g} to {row.most:.3g})" if row.least != row.most else ""
        words = f"takes {ratio} of it" if row.goal.is_cost else ratio
        yield (f"| {row.goal.what} | {charts.time_text(row.ours)} | {row.peer} | "
               f"{charts.time_text(row.peer_time)} | {words}{spread} | {wanted_text(row)} | {reached} |")


def missed(rows):
    """What limits the rows that miss their goals."""
    for row in rows:
        if row.is_reached is False and row.goal.limit:
            yield from textwrap.wrap(f"*{row.goal.what}*: {row.ratio:.2f} is reached. {row.goal.limit}", 100)
            yield ""


def measured_on(build, rounds):
    name, flags = machine.read_cpu()
    yield f"- {name}; {', '.join(flags)}"
    yield f"- {machine.system()}"
    yield f"- {machine.compiler(build)}"
    found = machine.versions()
    yield "- " + ", ".join(f"{name} {version}" for name, version in found.items() if version)
    missing = [name for name, version in found.items() if not version]
    if missing:
        yield "- not installed, so not measured: " + ", ".join(missing)
    yield f"- {datetime.date.today().isoformat()}, {rounds} {'rounds' if rounds > 1 else 'round'}"


HOW = """Times are processor times of one thread. In each round every benchmark runs three times for at
least 30 ms, in random order, ours and the peers' among each other, and the median counts; peers in
Python follow in the same round. A ratio is taken within a round. The tables have the median of the
rounds, and in brackets the least and the greatest: other programs on the machine change times, and
ratios much less. Of several peers the quickest is shown."""

COUNTED = """Counted by valgrind's callgrind, which has no AVX-512: batches run their code for AVX2."""

CHARTS = {"Curves": "curves", "Expressions": "expressions", "Drawing": "drawing",
          "Archives": "archives"}


def write(docs, build, rows, taken, counts, counters):
    docs.mkdir(exist_ok=True)
    lines = ["# What it costs, beside others", "",
             "Written by `./bench`, which measures again on the machine at hand.", "",
             "![How many times as fast as others](benchmarks.svg)", "",
             *measured_on(build, len(taken)), "", HOW, ""]
    for section in SECTIONS:
        own = [row for of, row in rows if of is section]
        if not own:
            continue
        lines += [f"## {section.title}", ""]
        if section.note:
            lines += [section.note, ""]
        lines += [*table(own), ""]
        lines += missed(own)
        if section.title == "Curves" and "bytes per key" in counters:
            lines += [f"A key takes {counters['bytes per key']:.0f} bytes, with the index that reading "
                      "makes; its time, value and shape alone are 44.", ""]
        if write_chart(docs, section.title, taken):
            lines += [f"![{section.title}](benchmarks-{CHARTS[section.title]}.svg)", ""]
    if counts:
        lines += ["## Instructions", "", COUNTED, "", "| what | instructions |", "| --- | ---: |"]
        lines += [f"| {what} | {count:,.0f} |" if count >= 100 else f"| {what} | {count:.1f} |"
                  for what, count in counts]
        lines.append("")
    (docs / "benchmarks.md").write_text("\n".join(lines))
    ratios = [(row.goal.chart, row.ratio, "beside " + ("a plain loop" if row.peer is PLAIN else row.peer))
              for _, row in rows if row.goal.chart]
    (docs / "benchmarks.svg").write_text(charts.times_as_fast(
        "How many times as fast", "Each beside a peer that was measured in the same run; logarithmic scale",
        ratios))


BARS = {
    "Curves": ("Time of one value of a curve with 1,000 keys", [
        ("at a random time", {"randomChannel/1000": "KWKeyFramedChannel",
                              "randomUpperBound/1000": "plain loop", "gslRandom/1000": "GSL",
                              "boostRandom/1000": "Boost.Math"}),
        ("at the next frame", {"framesCursor/1000": "KWChannelCursor",
                               "gslAcceleratedFrames/1000": "GSL, accelerator",
                               "boostFrames/1000": "Boost.Math",
                               "framesUpperBound/1000": "plain loop"}),
        ("in a batch of random times", {"randomBatch/1000": "KWKeyFramedChannel",
                                        "scipyRandom": "SciPy",
                                        "numpyLinearRandom": "NumPy, linear"}),
        ("in a dense batch", {"denseBatch/1000": "KWKeyFramedChannel", "scipyDense": "SciPy",
                              "numpyLinearDense": "NumPy, linear"}),
    ]),
    "Expressions": ("Time of one value of " + FORMULAS[2].strip("`"), [
        ("one at a time", {"expression/2": "KWAlgebricInterpreter", "fparser/2": "fparser",
                           "muParser/2": "muParser", "luaJit/2": "LuaJIT", "kSeExpr/2": "KSeExpr"}),
        ("in a batch", {"expressionBatch/2": "KWAlgebricInterpreter", "numpyExpression/2": "NumPy float32",
                        "luaJitBatch/2": "LuaJIT", "muParserBatch/2": "muParser"}),
        ("parsing it", {"expressionSetting/2": "KWAlgebricInterpreter", "fparserSetting/2": "fparser",
                        "luaJitSetting/2": "LuaJIT", "kSeExprSetting/2": "KSeExpr",
                        "muParserSetting/2": "muParser"}),
    ]),
    "Drawing": ("Time of one drawing, 1600 x 900, antialiased", [
        ("20 curves and the grid", {"drawCurves/2": "KWChannelView",
                                    "qCustomPlotCurves/same": "QCustomPlot, same widths",
                                    "qCustomPlotCurves/quick": "QCustomPlot, thinnest"}),
        ("one event of a drag", {"drawDrag": "KWChannelView",
                                 "qCustomPlotDrag/same": "QCustomPlot, same widths",
                                 "qCustomPlotDrag/quick": "QCustomPlot, thinnest"}),
        ("one curve of 100,000 points", {"drawLongCurve": "KWChannelView",
                                         "qCustomPlotLongCurve/same": "QCustomPlot, same widths",
                                         "qCustomPlotLongCurve/quick": "QCustomPlot, thinnest"}),
    ]),
    "Archives": ("Documents of 100,000 keys", [
        ("opening", {"openChannels/100000": "keyed, to channels",
                     "openSequential/100000": "sequential, to channels",
                     "libplistParse/100000": "libplist, parsing",
                     "plistlibParse/100000": "plistlib, parsing"}),
        ("writing", {"writeChannels/100000": "keyed", "writeSequential/100000": "sequential",
                     "plistlibWrite/100000": "plistlib"}),
    ]),
}


def write_chart(docs, title, taken):
    """Whether there was anything to draw."""
    if title not in BARS:
        return False
    heading, groups = BARS[title]
    drawn = []
    for label, names in groups:
        bars = [(words, statistics.median(times[name] for times in taken), place == 0)
                for place, (name, words) in enumerate(names.items())
                if all(name in times for times in taken)]
        if title == "Archives":
            bars = [(words, time, "channels" in words or words in ("keyed", "sequential"))
                    for words, time, _ in bars]
        if len(bars) > 1:
            drawn.append((label, bars))
    if not drawn:
        return False
    svg = charts.times_taken(heading, "Processor time; each group has its own scale", drawn)
    (docs / f"benchmarks-{CHARTS[title]}.svg").write_text(svg)
    return True
