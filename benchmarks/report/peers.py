"""Measures the peers that are Python's, and prints what they took as JSON.

usage: peers.py DOCUMENT SECONDS REPETITIONS

DOCUMENT is a keyed archive. A library that is missing is named on the standard error and left out.
The result has the form of Google Benchmark's, times being the thread's processor time.
"""

import json
import plistlib
import sys
import time

document, seconds, repetitions = sys.argv[1], float(sys.argv[2]), int(sys.argv[3])
runs = []


def measure(name, function, items=None):
    """Enough calls in a row to take some time, as often as there are repetitions."""

    def took(calls):
        start = time.thread_time_ns()
        for _ in range(calls):
            function()
        return time.thread_time_ns() - start

    calls = max(1, int(seconds * 1e9 / max(1, took(1))))
    for _ in range(repetitions):
        each = took(calls) / calls
        run = {"run_name": name, "run_type": "iteration", "cpu_time": each, "time_unit": "ns"}
        if items:
            run["items_per_second"] = items * 1e9 / each
        runs.append(run)


def measure_numpy(numpy):
    t = (numpy.arange(10000) / 1000).astype(numpy.float32)
    two, three, five = numpy.float32(2), numpy.float32(3), numpy.float32(5)
    one = numpy.float32(1)
    measure("numpyExpression/1", lambda: two * t + one, t.size)
    measure("numpyExpression/2", lambda: numpy.sin(t) * numpy.exp(-t / three) + two * t**2, t.size)
    measure("numpyExpression/3",
            lambda: numpy.sqrt(numpy.abs(t)) * numpy.cos(three * t) + numpy.log(t + two) / (t + five),
            t.size)


def curve(numpy, count):
    random = numpy.random.default_rng(1)
    keys = numpy.cumsum(1 + 0.4 * random.uniform(-1, 1, count))
    return keys, random.uniform(-1, 1, count), random.uniform(-1, 1, count), random


def measure_curves(numpy, scipy_interpolate):
    keys, values, slopes, random = curve(numpy, 1000)
    scattered = random.uniform(keys[0], keys[-1], 100000)
    dense = numpy.linspace(keys[0], keys[-1], 1000000)
    measure("numpyLinearDense", lambda: numpy.interp(dense, keys, values), dense.size)
    measure("numpyLinearRandom", lambda: numpy.interp(scattered, keys, values), scattered.size)
    if scipy_interpolate:
        hermite = scipy_interpolate.CubicHermiteSpline(keys, values, slopes)
        measure("scipyDense", lambda: hermite(dense), dense.size)
        measure("scipyRandom", lambda: hermite(scattered), scattered.size)


def main():
    with open(document, "rb") as file:
        data = file.read()
    tree = plistlib.loads(data)
    measure("plistlibWrite/100000", lambda: plistlib.dumps(tree, fmt=plistlib.FMT_BINARY))
    measure("plistlibParse/100000", lambda: plistlib.loads(data))
    try:
        import numpy
    except ImportError:
        print("NumPy is not installed: it is not measured", file=sys.stderr)
        numpy = None
    try:
        import scipy.interpolate as scipy_interpolate
    except ImportError:
        print("SciPy is not installed: it is not measured", file=sys.stderr)
        scipy_interpolate = None
    if numpy:
        measure_numpy(numpy)
        measure_curves(numpy, scipy_interpolate)
    json.dump({"benchmarks": runs}, sys.stdout)


main()
