"""Fails when a source is not named in its folder's CMakeLists.txt, or where there is none in that of the
next folder up that has one: it would never be built.

usage: listed.py SOURCE_DIRECTORY
"""

import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])


def list_of(source):
    lists = (folder / "CMakeLists.txt" for folder in source.parents)
    return next(found for found in lists if found.is_file())


forgotten = [
    source.relative_to(root)
    for folder in ("KWFoundation", "KWBase", "KWDesktop", "apps", "samples", "tests", "benchmarks")
    for source in sorted((root / folder).rglob("*.cpp"))
    if source.name not in re.split(r"[\s()/]+", list_of(source).read_text())
]
for source in forgotten:
    print(f"{source} is not named in its CMakeLists.txt")
sys.exit(1 if forgotten else 0)
