"""Fails when a source is not named in its folder's CMakeLists.txt: it would never be built.

usage: listed.py SOURCE_DIRECTORY
"""

import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
forgotten = [
    source.relative_to(root)
    for folder in ("KWFoundation", "KWBase", "KWDesktop", "apps", "samples", "tests", "benchmarks")
    for source in sorted((root / folder).rglob("*.cpp"))
    if source.name not in re.split(r"[\s()/]+", (source.parent / "CMakeLists.txt").read_text())
]
for source in forgotten:
    print(f"{source} is not named in its CMakeLists.txt")
sys.exit(1 if forgotten else 0)
