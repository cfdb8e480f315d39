#!/usr/bin/env python3
"""Compares what a library shows with the list beside this file.

usage: exports.py LIBRARY [--update]

The list has what callers name: functions and variables of namespaces, with what they take, and classes that own anything
shown. A function or class that goes breaks programs that were linked with it; one that comes is a promise. Either is meant
when the list changes with it: --update writes the list anew. The members of a class and the instantiations of class
templates follow from the headers and from what the compiler makes of them; they are not listed, but nothing outside
namespace orvik may be shown.
"""
import pathlib
import re
import subprocess
import sys

TABLES = re.compile(r"^(?:vtable for|VTT for|typeinfo for|typeinfo name for|(?:non-)?virtual thunk to|guard variable for) ")
RETURNED = re.compile(r"^[^(]*?[^,(] (?=orvik::)")  # function templates begin with the type that they return
CLASS = re.compile(r"((?:[a-z]\w*::)+[A-Z]\w*)(<|::|$)")


def shown_names(library):
    """With tables that the compiler makes of a class as the class itself."""
    symbols = subprocess.run(["nm", "--dynamic", "--defined-only", "--demangle", library], check=True, text=True,
                             stdout=subprocess.PIPE).stdout.splitlines()
    names = {TABLES.sub("", symbol.split(" ", 2)[2].split("@")[0]) for symbol in symbols}
    text = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >"
    return {RETURNED.sub("", name).replace("[abi:cxx11]", "").replace(text, "std::string") for name in names}


def line_of(name):
    """What stands for a name in the list; nothing for class templates."""
    owner = CLASS.match(name)
    return name if not owner else "" if owner[2] == "<" else "class " + owner[1]


def main():
    library = pathlib.Path(sys.argv[1])
    listing = pathlib.Path(__file__).with_name(library.name.split(".")[0] + ".txt")
    names = shown_names(library)
    lines = {line_of(name) for name in names} - {""}
    if "--update" in sys.argv[2:]:
        listing.write_text("".join(line + "\n" for line in sorted(lines)))
    listed = set(listing.read_text().splitlines())
    faults = [f"outside namespace orvik: {name}" for name in names if not name.startswith("orvik::")]
    faults += [f"no longer shown: {line}" for line in listed - lines]
    faults += [f"not listed in {listing.name}: {line}" for line in lines - listed]
    print(*sorted(faults), f"{library.name} shows {len(lines)} functions and classes", sep="\n")
    return bool(faults)


if __name__ == "__main__":
    sys.exit(main())
