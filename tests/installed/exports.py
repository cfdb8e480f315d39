#!/usr/bin/env python3
"""Compares the names that a library shows with the list beside this file.

usage: exports.py LIBRARY [--update]

A name that goes breaks programs that were linked with it; a name that comes is a promise. Either is meant when the list
changes with it: --update writes the list anew.
"""
import pathlib
import subprocess
import sys


def exported_names(library):
    """What other programs can link with: one line a function, variable or table, constructors of all kinds as one."""
    symbols = subprocess.run(["nm", "--dynamic", "--defined-only", "--demangle", library], check=True, text=True,
                             stdout=subprocess.PIPE).stdout.splitlines()
    return sorted({symbol.split(" ", 2)[2].split("@")[0] for symbol in symbols})


def main():
    library = pathlib.Path(sys.argv[1])
    listing = pathlib.Path(__file__).with_name(library.name.split(".")[0] + ".txt")
    names = exported_names(library)
    if "--update" in sys.argv[2:]:
        listing.write_text("".join(name + "\n" for name in names))
        return 0
    listed = listing.read_text().splitlines()
    for name in sorted(set(listed) - set(names)):
        print(f"no longer shown: {name}")
    for name in sorted(set(names) - set(listed)):
        print(f"not listed in {listing.name}: {name}")
    print(f"{library.name} shows {len(names)} names, {listing.name} lists {len(listed)}")
    return names != listed


if __name__ == "__main__":
    sys.exit(main())
