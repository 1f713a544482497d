"""Runs the programs, and answers what each benchmark took, in nanoseconds."""

import json
import os
import re
import statistics
import subprocess
import sys
import tempfile
from pathlib import Path

UNITS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
HERE = Path(__file__).parent
# muParser's bulk call would start threads.
ENVIRONMENT = dict(os.environ, OMP_NUM_THREADS="1", QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8")
VIEW_ROWS = "^(draw|qCustomPlot)"


def medians(result, counters=None):
    """The median of each benchmark's repetitions: of an item where it counts items."""
    times = {}
    for run in result["benchmarks"]:
        if run.get("run_type") != "iteration" or run.get("error_occurred"):
            continue
        name = run["run_name"]
        rate = run.get("items_per_second")
        times.setdefault(name, []).append(
            1e9 / rate if rate else run["cpu_time"] * UNITS[run["time_unit"]])
        if counters is not None and "bytes_per_key" in run:
            counters["bytes per key"] = run["bytes_per_key"]
    return {name: statistics.median(all_times) for name, all_times in times.items()}


def run_benchmarks(program, seconds, repetitions, rows):
    with tempfile.TemporaryDirectory() as folder:
        out = Path(folder) / "out.json"
        subprocess.run([program, f"--benchmark_filter={rows}", f"--benchmark_min_time={seconds}",
                        f"--benchmark_repetitions={repetitions}",
                        "--benchmark_enable_random_interleaving=true", f"--benchmark_out={out}",
                        "--benchmark_out_format=json"],
                       env=ENVIRONMENT, check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.PIPE)
        return json.loads(out.read_text())


def run_python_peers(document, seconds, repetitions):
    done = subprocess.run([sys.executable, HERE / "peers.py", document, str(seconds),
                           str(repetitions)],
                          env=ENVIRONMENT, check=True, stdout=subprocess.PIPE)
    return json.loads(done.stdout)


def measure_starts(programs, count):
    """The median processor time of each program, run in turns."""
    times = {program: [] for program in programs}
    for _ in range(count):
        for program in programs:
            child = os.posix_spawn(programs[program], [programs[program]], {})
            _, status, usage = os.wait4(child, 0)
            if status == 0:
                times[program].append((usage.ru_utime + usage.ru_stime) * 1e9)
    return {program: statistics.median(all_times) for program, all_times in times.items()}


def measure_round(build, document, seconds, repetitions, is_quick, counters):
    """All benchmarks once: the median of each."""
    folder = build / "benchmarks"
    model_rows = "-/1000000$" if is_quick else "."
    taken = medians(run_benchmarks(folder / "kwbase_benchmarks", seconds, repetitions, model_rows),
                    counters)
    taken |= medians(run_python_peers(document, seconds, repetitions))
    views = folder / "kwbase_view_benchmarks"
    if views.exists():
        taken |= medians(run_benchmarks(views, seconds, repetitions, VIEW_ROWS))
    taken |= measure_starts({"startWith": folder / "kwbase_start_with",
                             "startWithout": folder / "kwbase_start_without"},
                            20 if is_quick else 100)
    return taken


def instructions_of(command, function=None):
    """How many instructions a program takes, or a function of it; None without valgrind."""
    only = [f"--toggle-collect={function}"] if function else []
    try:
        done = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *only,
                               *command],
                              env=ENVIRONMENT, capture_output=True, text=True, check=True)
    except (OSError, subprocess.CalledProcessError):
        return None
    found = re.search(r"Collected : (\d+)", done.stderr)
    return int(found.group(1)) if found else None


def count_instructions(build):
    """Rows of what, how many instructions; empty without valgrind."""
    folder = build / "benchmarks"
    listed = subprocess.run([folder / "kwbase_hotpaths"], capture_output=True, text=True, check=True)
    rows = []
    for line in listed.stdout.splitlines():
        name, count, unit = line.split("\t")
        total = instructions_of([folder / "kwbase_hotpaths", name], "hotPath")
        if total is not None:
            rows.append((unit, total / int(count)))
    starts = [instructions_of([folder / f"kwbase_start_{which}"]) for which in ("with", "without")]
    if None not in starts:
        rows.append(("start and end of a program that links the channels", starts[0]))
        rows.append(("the same without them", starts[1]))
    return rows
