"""Measures the benchmarks of a build beside their peers, round by round, and writes the report.

usage: main.py BUILD DOCS [--rounds N] [--quick]

Writes DOCS/benchmarks.md and the charts that it shows, DOCS/benchmarks*.svg.
"""

import argparse
import subprocess
import tempfile
from pathlib import Path

import machine
import measuring
import page


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=Path)
    parser.add_argument("docs", type=Path)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--quick", action="store_true", help="one short round")
    return parser.parse_args()


def main():
    given = arguments()
    rounds = 1 if given.quick else given.rounds
    seconds, repetitions = (0.01, 3) if given.quick else (0.03, 3)
    counters = {}
    taken = []
    with tempfile.TemporaryDirectory() as folder:
        document = Path(folder) / "document"
        subprocess.run([given.build / "benchmarks/kwbase_hotpaths", "document", document], check=True)
        for number in range(rounds):
            print(f"Round {number + 1} of {rounds}", flush=True)
            taken.append(measuring.measure_round(given.build, document, seconds, repetitions,
                                                 given.quick, counters))
    print("Counting instructions", flush=True)
    counts = measuring.count_instructions(given.build)
    _, flags = machine.read_cpu()
    rows = page.rows_of(taken, "avx512f" in flags)
    page.write(given.docs, given.build, rows, taken, counts, counters)
    for section, row in rows:
        if row.is_reached is False:
            print(f"{section.title}: {row.goal.what}: {row.ratio:.2f}, wanted {row.wanted:g}")
    print(f"{given.docs / 'benchmarks.md'} is written")


main()
