"""Runs the README's commands and compares its code with the example that is built and run.

usage: readme.py SOURCE_DIRECTORY PROGRAM_DIRECTORY WORKING_DIRECTORY [without-views]
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

source, programs, work = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
text = (source / "README.md").read_text()
faults = []


def blocks(language):
    return re.findall(rf"^```{language}\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)


def section(title):
    return re.search(rf"^## {title}\n(.*?)(?=^## |\Z)", text, re.MULTILINE | re.DOTALL).group(1)


# The code is the example, whole.
if blocks("cpp") != [(source / "examples/host.cpp").read_text()]:
    faults.append("the C++ code is not that of examples/host.cpp")
consumer = (source / "tests/consumer/CMakeLists.txt").read_text()
for line in blocks("cmake")[0].splitlines():
    for word in re.findall(r"[\w:]+", line):
        if word not in consumer:
            faults.append(f"no consumer is built with: {line}")

# The commands run, in a folder of their own that has the samples beside it.
shutil.rmtree(work, ignore_errors=True)
work.mkdir(parents=True)
(work / "samples").symlink_to(source / "samples")
environment = dict(os.environ, PATH=f"{programs}:{programs.parent / 'kwedit'}:{os.environ['PATH']}",
                   QT_QPA_PLATFORM="offscreen")
commands = [line for block in blocks("sh") for line in block.splitlines()]
if "without-views" in sys.argv[4:]:  # nothing can be drawn then
    commands = [command for command in commands if " plot " not in command and "kwedit" not in command]
if not commands:
    faults.append("there are no commands")
for command in commands:
    done = subprocess.run(["sh", "-c", command], cwd=work, env=environment, text=True,
                          stdin=subprocess.DEVNULL, capture_output=True, timeout=120)
    if done.returncode != 0 or "error" in done.stderr.lower():
        faults.append(f"{command}\n  ended with {done.returncode}: {done.stderr}")

# The scripts can be run, and every place in the tree that is named is there.
for script in re.findall(r"^    (\./\w+)", section("Two commands"), re.MULTILINE):
    if not os.access(source / script, os.X_OK):
        faults.append(f"{script} cannot be run")
places = re.findall(r"^    (\S+/) ", section("Where things are"), re.MULTILINE)
places += re.findall(r"\]\(([\w./]+)\)", text)
for place in places:
    if not (source / place).exists():
        faults.append(f"{place} is not there")

print(*faults, sep="\n", end="\n" if faults else "")
sys.exit(1 if faults else 0)
