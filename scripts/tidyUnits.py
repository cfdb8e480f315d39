#!/usr/bin/env python3
"""Prints the units that clang-tidy has to look at for changed files: the changed units themselves, and for the changed
headers as few units as include them all. Writes a compilation database for clang beside: build/tidy/compile_commands.json.

usage: tidyUnits.py [CHANGED_FILE...]   (no file: every unit of the repository)
"""
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/release"
GCC_ONLY = r" -fno-gnu-unique| -Winvalid-pch| -include \S*/cmake_pch\.hxx"  # what clang does not know


def write_database():
    """Every unit once, in the order of the build, and what it is compiled with."""
    entries = {}
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"])
        if BUILD in path.parents:  # written by the build
            continue
        entry["command"] = re.sub(GCC_ONLY, "", entry["command"])
        entries[path] = entry
    folder = ROOT / "build/tidy"
    folder.mkdir(exist_ok=True)
    (folder / "compile_commands.json").write_text(json.dumps(list(entries.values()), indent=1))
    return list(entries)


def included():
    """The files of the repository that each unit includes, as the last build found them."""
    listing = subprocess.run(["ninja", "-C", BUILD, "-t", "deps"], check=True, text=True, stdout=subprocess.PIPE)
    headers, files = {}, None
    for line in listing.stdout.splitlines():
        if not line.startswith(" "):
            files = None
        elif files is None:
            files = headers.setdefault((BUILD / line.strip()).resolve(), set())
        else:
            path = (BUILD / line.strip()).resolve()
            if ROOT in path.parents:
                files.add(path)
    return headers


def units_for(changed, units):
    chosen = [unit for unit in units if unit in changed]
    headers = {unit: files for unit, files in included().items() if unit in units}
    left = {path for path in changed if path.suffix == ".h"}
    for unit in chosen:
        left -= headers.get(unit, set())
    while left:
        # Of units that include as many of them, the one that includes least is the quickest.
        best = max(headers, key=lambda unit: (len(headers[unit] & left), -len(headers[unit])))
        if not headers[best] & left:
            print("no unit includes " + " ".join(sorted(str(path) for path in left)), file=sys.stderr)
            break
        chosen.append(best)
        left -= headers[best]
    return chosen


def main():
    units = write_database()
    changed = {(ROOT / name).resolve() for name in sys.argv[1:]}
    for unit in units_for(changed, units) if changed else units:
        print(unit.relative_to(ROOT))


main()
