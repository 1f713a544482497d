"""Tells on what machine, and with which versions, something was measured."""

import os
import platform
import re
import subprocess
from pathlib import Path

PACKAGES = {
    "GSL": "libgsl-dev", "Boost.Math": "libboost-math-dev", "NumPy": "python3-numpy",
    "SciPy": "python3-scipy", "muParser": "libmuparser-dev", "fparser": "libfparser-dev",
    "KSeExpr": "libkseexpr-dev", "LuaJIT": "libluajit-5.1-dev",
    "QCustomPlot": "libqcustomplot2.1-qt6", "Qt": "qt6-base-dev", "libplist": "libplist-dev",
    "Highway": "libhwy-dev", "Google Benchmark": "libbenchmark-dev", "valgrind": "valgrind",
}


def read_cpu():
    """The processor's name and the vector extensions that matter here."""
    text = Path("/proc/cpuinfo").read_text()
    name = re.search(r"^model name\s*: (.*)$", text, re.MULTILINE)
    family = re.search(r"^cpu family\s*: (.*)$", text, re.MULTILINE)
    flags = re.search(r"^flags\s*: (.*)$", text, re.MULTILINE)
    known = set(flags.group(1).split()) if flags else set()
    wanted = ["sse4_1", "avx", "avx2", "fma", "avx512f", "avx512dq", "avx512bw", "avx512vl"]
    words = name.group(1) if name else platform.machine()
    if family:
        words += f", family {family.group(1)}"
    return words, [flag for flag in wanted if flag in known]


def version_of(package):
    done = subprocess.run(["dpkg-query", "-W", "-f=${db:Status-Status} ${Version}", package],
                          capture_output=True, text=True)
    status, _, version = done.stdout.partition(" ")
    return version if done.returncode == 0 and status == "installed" else None


def versions():
    """Pairs of a library and its version; None for those that are not there."""
    found = {name: version_of(package) for name, package in PACKAGES.items()}
    found["Python and its plistlib"] = platform.python_version()
    return found


def compiler(build):
    """What CMake chose, and with which options."""
    cache = (build / "CMakeCache.txt").read_text()
    path = re.search(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache, re.MULTILINE).group(1)
    options = re.search(r"^CMAKE_CXX_FLAGS_RELEASE:\w+=(.*)$", cache, re.MULTILINE).group(1)
    first = subprocess.run([path, "--version"], capture_output=True, text=True).stdout.splitlines()
    return f"{first[0]}, `{options}`" if first else path


def system():
    with open("/etc/os-release") as file:
        name = re.search(r'^PRETTY_NAME="?(.*?)"?$', file.read(), re.MULTILINE)
    words = name.group(1) if name else platform.system()
    return f"{words}, kernel {platform.release().split('-')[0]}, {os.cpu_count()} processors"
