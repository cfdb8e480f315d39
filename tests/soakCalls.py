#!/usr/bin/env python3
"""Runs a fuzz target for as long as asked and watches its memory: what calls of the C++ functions leave behind adds up, in all
forms, cancelled, refused and with callbacks that throw. Fails when the target does, or when memory grows.

    tests/soakCalls.py build/release/bin/fuzz/Calls [--seconds 600] [--seed 1] [--megabytes 16]
"""
import argparse
import subprocess
import sys
import time


def megabytes(process):
    with open(f"/proc/{process.pid}/statm") as file:
        return int(file.read().split()[1]) * 4096 / 2**20


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n\n")[0])
    parser.add_argument("target")
    parser.add_argument("--seconds", type=float, default=600)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--megabytes", type=float, default=16, help="growth from the second quarter to the last that fails")
    asked = parser.parse_args()
    command = [asked.target, "--seconds", str(round(asked.seconds)), "--seed", str(asked.seed)]
    process, sizes = subprocess.Popen(command), []
    while process.poll() is None:
        sizes.append(megabytes(process))
        time.sleep(asked.seconds / 400)
    sizes = [size for size in sizes if size > 0]  # 0 of one that has just ended
    if process.returncode != 0 or len(sizes) < 40:
        sys.exit(f"{' '.join(command)} ended with {process.returncode} after {len(sizes)} looks")
    quarter = len(sizes) // 4
    early, late = min(sizes[quarter : 2 * quarter]), min(sizes[-quarter:])  # calls in progress come and go
    print(f"at least {early:.1f} MB in the second quarter, at least {late:.1f} in the last")
    if late - early > asked.megabytes:
        sys.exit(f"memory grew by {late - early:.0f} MB")


main()
