"""What is measured beside what, and what is wanted of it."""

from dataclasses import dataclass, field


@dataclass
class Goal:
    """Ours beside the quickest of its peers.

    The ratio is how many times as fast ours is, or with `is_cost` how many times as long it takes;
    `wanted` is the least, or the most, that it should be. None wants nothing: the row informs. A
    peer's name is that of a benchmark, and the words are what the table calls it.
    """

    what: str
    ours: str
    peers: dict[str, str]
    wanted: float | None = None
    is_cost: bool = False
    without_avx512: float | None = None
    limit: str | None = None  # where the goal is missed: why, and what was tried
    chart: str | None = None  # its label in the chart of charts


@dataclass
class Section:
    title: str
    goals: list[Goal]
    note: str = ""
    charts: list[str] = field(default_factory=list)


PLAIN = "`std::upper_bound` and tangents per call"
SAME_PEN = "QCustomPlot, same widths"
QUICK_PEN = "QCustomPlot, its quickest pen"
OPENING = ("Half of the time goes into reading and checking seven objects for each key, at about 4 ns; "
           "its ratio depends on how scattered the peer's memory is. Writing each node in its place, "
           "short scalars by eight bytes and references in one loop gained a third.")
FORMULAS = {1: "`2*t+1`", 2: "`sin(t)*exp(-t/3)+2*t^2`", 3: "`sqrt(abs(t))*cos(3*t)+ln(t+2)/(t+5)`"}


def expression_goals():
    for number, formula in FORMULAS.items():
        engines = {f"fparser/{number}": "fparser", f"kSeExpr/{number}": "KSeExpr",
                   f"luaJit/{number}": "LuaJIT"}
        mu = {f"muParser/{number}": "muParser"}
        counts = number > 1
        yield Goal(f"one value of {formula}, the best engine", f"expression/{number}", mu | engines,
                   1 if counts else None, chart="one value of an expression" if number == 2 else None)
        yield Goal(f"one value of {formula}, muParser", f"expression/{number}", mu,
                   2.5 if counts else None)
        yield Goal(f"batch of {formula}, muParser", f"expressionBatch/{number}",
                   mu | {f"muParserBatch/{number}": "muParser, bulk"}, 20)
        yield Goal(f"batch of {formula}, the best engine", f"expressionBatch/{number}",
                   {f"luaJitBatch/{number}": "LuaJIT, compiled loop"} | mu | engines, None,
                   chart="batch of an expression" if number == 2 else None)
        yield Goal(f"batch of {formula}, NumPy", f"expressionBatch/{number}",
                   {f"numpyExpression/{number}": "NumPy float32"}, 1)
        yield Goal(f"parsing {formula}, muParser", f"expressionSetting/{number}",
                   {f"muParserSetting/{number}": "muParser"}, 20)
        yield Goal(f"parsing {formula}, the best engine", f"expressionSetting/{number}",
                   {f"muParserSetting/{number}": "muParser", f"fparserSetting/{number}": "fparser",
                    f"kSeExprSetting/{number}": "KSeExpr", f"luaJitSetting/{number}": "LuaJIT"})


SECTIONS = [
    Section("Curves", [
        Goal("value at a random time, 1,000 keys", "randomChannel/1000",
             {"randomUpperBound/1000": PLAIN}, 6, chart="curve, a random time"),
        Goal("the same, the best library", "randomChannel/1000",
             {"gslRandom/1000": "GSL", "gslAcceleratedRandom/1000": "GSL with accelerator",
              "boostRandom/1000": "Boost.Math"}, 6),
        Goal("playback through a cursor, 1,000 keys", "framesCursor/1000",
             {"gslAcceleratedFrames/1000": "GSL with accelerator"}, 1.4, chart="curve, playback",
             limit="A value is a chain of a division and ten operations that wait for each other, and "
                   "the stated order of the sum leaves none out; about four calls are under way at a "
                   "time. The four parts of the sum side by side, plain floats as arguments and the "
                   "length of the stretch kept gained a third; a scalar sum was slower."),
        Goal("the same, Boost.Math", "framesCursor/1000", {"boostFrames/1000": "Boost.Math"}),
        Goal("dense rising batch, 1,000 keys", "denseBatch/1000", {"scipyDense": "SciPy"}, 20,
             without_avx512=15, chart="curve, dense batch"),
        Goal("the same on AVX2 alone", "denseBatchBy/AVX2/1000", {"scipyDense": "SciPy"}, 15,
             limit="The division of eight lanes is what it waits for; reading and writing in place "
                   "gained a third."),
        Goal("the same, NumPy's linear interpolation", "denseBatch/1000",
             {"numpyLinearDense": "NumPy, linear"}),
        Goal("random batch, 1,000 keys", "randomBatch/1000", {"randomUpperBound/1000": PLAIN}, 15,
             without_avx512=6, chart="curve, random batch"),
        Goal("the same on AVX2 alone", "randomBatchBy/AVX2/1000", {"randomUpperBound/1000": PLAIN}, 6),
        Goal("the same, SciPy", "randomBatch/1000", {"scipyRandom": "SciPy"}),
        Goal("random time: 100,000 keys beside 10", "randomChannel/100000",
             {"randomChannel/10": "10 keys"}, 3, is_cost=True),
        Goal("playback: 100,000 keys beside 10", "framesCursor/100000",
             {"framesCursor/10": "10 keys"}, 1.5, is_cost=True),
        Goal("1,000 channels at a frame's time, 2 frames a key: update", "frameByUpdate/2",
             {"frameByPlainLoop/2": PLAIN}, 2,
             limit="Every second frame a channel goes on to its next stretch: a jump that was not "
                   "foreseen, and lines of keys, values and tangents from the second cache. What an "
                   "update reads lies together now, and it steps to the next key without a search; a "
                   "KWChannelArrayCursor, which has the channels' places in a row, is quicker."),
        Goal("the same, through a cursor", "frameByCursor/2", {"frameByPlainLoop/2": PLAIN}, 2),
        Goal("1,000 channels, 14 frames a key: update", "frameByUpdate/14",
             {"frameByPlainLoop/14": PLAIN}, 2),
        Goal("the same, through a cursor", "frameByCursor/14", {"frameByPlainLoop/14": PLAIN}, 2,
             chart="1,000 channels, a frame"),
        Goal("setting the value of a key, 1,000 keys", "editChannel/1000",
             {"editVectors/1000": "plain vectors"}, None, is_cost=True),
        Goal("moving half of the keys: a key of 100,000 beside one of 1,000", "moveHalf/100000",
             {"moveHalf/1000": "1,000 keys"}, 2, is_cost=True),
        Goal("making 100,000 keys in random order, with undo", "insertIntoChannel/100000/iterations:1",
             {"insertIntoVectors/100000/iterations:1": "plain vectors"}, 3, is_cost=True),
    ]),
    Section("Expressions", list(expression_goals())),
    Section("Drawing", [
        Goal("repaint of 20 curves and the grid", "drawCurves/2",
             {"qCustomPlotCurves/same": SAME_PEN}, 1, is_cost=True, chart=None),
        Goal("the same with 200 keys and their handles", "drawCurves/200",
             {"qCustomPlotCurves/same": SAME_PEN}, 1.3, is_cost=True),
        Goal("the same beside the thinnest pen", "drawCurves/2",
             {"qCustomPlotCurves/quick": QUICK_PEN}, None, is_cost=True),
        Goal("one event of a drag", "drawDrag", {"qCustomPlotDrag/same": SAME_PEN}, 4,
             chart="drag in the curve view"),
        Goal("the same beside the thinnest pen", "drawDrag", {"qCustomPlotDrag/quick": QUICK_PEN}, None),
        Goal("one curve of 100,000 points", "drawLongCurve", {"qCustomPlotLongCurve/same": SAME_PEN}, 4,
             chart="curve of 100,000 points, drawn"),
        Goal("the same beside the thinnest pen", "drawLongCurve",
             {"qCustomPlotLongCurve/quick": QUICK_PEN}, None),
    ], note="QCustomPlot draws in two ways here: in the same widths as ours, and in the pen of width 0, "
            "one pixel at any scale, for which Qt has a quicker way."),
    Section("Archives", [
        Goal("opening 100,000 keys down to channels", "openChannels/100000",
             {"libplistParse/100000": "libplist, parsing alone"}, 10, chart="document, opening",
             limit=OPENING),
        Goal("opening 1,000,000 keys", "openChannels/1000000",
             {"libplistParse/1000000": "libplist, parsing alone"}, 10, limit=OPENING),
        Goal("writing 100,000 keys", "writeChannels/100000", {"plistlibWrite/100000": "plistlib"}, 40,
             chart="document, writing"),
        Goal("writing: 1,000,000 keys beside 100,000", "writeChannels/1000000",
             {"writeChannels/100000": "100,000 keys"}, 12, is_cost=True),
        Goal("opening the sequential form, 1,000,000 keys", "openSequential/1000000",
             {"openChannels/1000000": "the keyed form"}, 1),
        Goal("writing the sequential form, 1,000,000 keys", "writeSequential/1000000",
             {"writeChannels/1000000": "the keyed form"}, 1),
        Goal("opening 100,000 keys, plistlib", "openChannels/100000",
             {"plistlibParse/100000": "plistlib, parsing alone"}),
    ]),
    Section("Start", [
        Goal("a program that links `KWBase::Channels`", "startWith",
             {"startWithout": "the same without it"}, 1.05, is_cost=True),
    ], note="Processor time of the whole program, from its start to its end."),
]
