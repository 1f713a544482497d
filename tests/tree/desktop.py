"""Fails when what tells the desktop of the editor does not fit together, or is not valid.

usage: desktop.py INSTALLED_PREFIX VERSION
"""

import pathlib
import shutil
import struct
import subprocess
import sys
from xml.etree import ElementTree

prefix, version = pathlib.Path(sys.argv[1]), sys.argv[2]
share = prefix / "share"
application = "org.kwbase.kwedit"
faults = []


def expect(holds, what):
    if not holds:
        faults.append(what)


entry = dict(line.split("=", 1) for line in
             (share / f"applications/{application}.desktop").read_text().splitlines() if "=" in line)
expect((prefix / "bin" / entry["Exec"].split()[0]).exists(), f"there is no program {entry['Exec']}")

# The icon, in every size.
icons = share / "icons/hicolor"
for picture in sorted(icons.glob(f"*/apps/{entry['Icon']}.png")):
    size = struct.unpack(">II", picture.read_bytes()[16:24])
    folder = picture.parent.parent.name
    expect(f"{size[0]}x{size[1]}" == folder, f"{picture} has {size[0]} x {size[1]} pixels")
expect((icons / f"scalable/apps/{entry['Icon']}.svg").exists(), "there is no scalable icon")
for drawing in icons.glob("scalable/*/*.svg"):
    ElementTree.parse(drawing)

# The documents.
name = {"m": "http://www.freedesktop.org/standards/shared-mime-info"}
kind = ElementTree.parse(share / "mime/packages/kwedit.xml").find("m:mime-type", name)
expect(entry["MimeType"] == kind.get("type") + ";", "the editor opens another type of document")
icon = kind.find("m:icon", name).get("name")
expect((icons / f"scalable/mimetypes/{icon}.svg").exists(), f"there is no icon {icon}")

# The description.
description = share / f"metainfo/{application}.metainfo.xml"
component = ElementTree.parse(description)
expect(component.findtext("launchable") == f"{application}.desktop", "another program is described")
expect(component.findtext("provides/mediatype") == kind.get("type"), "another type is described")
expect(component.find("releases/release").get("version") == version, f"{version} is no release")

for command in (["desktop-file-validate", str(share / f"applications/{application}.desktop")],
                ["appstreamcli", "validate", "--no-net", str(description)]):
    if not shutil.which(command[0]):
        print(f"{command[0]} is not installed")
        continue
    done = subprocess.run(command, text=True, capture_output=True)
    expect(done.returncode == 0, f"{' '.join(command)}\n{done.stdout}{done.stderr}")

# The manual pages hold together: what the formatter warns of is a fault.
if shutil.which("groff"):
    for page in sorted((share / "man/man1").glob("*.1")):
        done = subprocess.run(["groff", "-Kutf8", "-man", "-Tutf8", "-ww", "-z", str(page)], text=True,
                              capture_output=True)
        expect(not done.stderr, f"{page}: {done.stderr}")

print(*faults, sep="\n", end="\n" if faults else "")
sys.exit(1 if faults else 0)
