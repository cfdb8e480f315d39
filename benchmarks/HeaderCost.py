#!/usr/bin/env python3
"""What it costs a user to include each public header: seconds of one processor, the shortest of some compilations.

usage: HeaderCost.py [FOLDER]   the headers in FOLDER, include/orvik of an installation; without it those of the sources
"""
import pathlib
import resource
import subprocess
import sys

SOURCE = pathlib.Path(__file__).resolve().parent.parent


def seconds(include, folders, repetitions=9):
    def compile_once():
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        subprocess.run(["c++", "-std=c++17", "-O2", *(f"-I{folder}" for folder in folders), "-c", "-x", "c++", "-",
                        "-o", "/dev/null"], input=f"#include {include}\n", text=True, check=True)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return min(compile_once() for _ in range(repetitions))


def main():
    folders = [pathlib.Path(sys.argv[1])] if len(sys.argv) > 1 else [SOURCE / "include/public", SOURCE]
    costs = sorted(((seconds(f'"{header.relative_to(folders[0])}"', folders), header.name)
                    for header in folders[0].rglob("*.h")), reverse=True)
    for cost, name in costs:
        print(f"{cost:.2f} s  {name}")
    print(f"{seconds('<boost/make_shared.hpp>', folders):.2f} s  boost's shared pointers alone")


if __name__ == "__main__":
    main()
