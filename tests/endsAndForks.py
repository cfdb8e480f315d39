#!/usr/bin/env python3
"""Ends processes in the middle of their work, and forks them, many times: by hand or at night, not in each run of the tests.

usage: endsAndForks.py BUILD_FOLDER [ROUNDS]     200 rounds, some minutes, by default

Tells how many processes ended otherwise than they should, and fails if any did.
"""
import collections
import os
import pathlib
import random
import subprocess
import sys

BUILD = pathlib.Path(sys.argv[1]).resolve()
ROUNDS = int(sys.argv[2]) if len(sys.argv) > 2 else 200
DRIVER = str(BUILD / "bin/endDriver")
PYTHON = [
    ("import orvik_fd, os, sys; os.fork() or sys.exit(7); sys.exit(os.wait()[1] >> 8)"),
    ("import numpy, orvik_fd, os, sys; call = lambda: orvik_fd.harrisCorner2dImg(numpy.zeros((400, 400), numpy.float32), 2.0); call();"
     "os.fork() or (call(), sys.exit(7)); sys.exit(os.wait()[1] >> 8)"),
    ("import numpy, orvik_fd, sys, threading, time\n"
     "work = lambda: [orvik_fd.harrisCorner2dImg(numpy.zeros((300, 300), numpy.float32), 2.0, progress=lambda f: None)"
     " for _ in iter(int, 1)]\n"
     "[threading.Thread(target=work, daemon=True).start() for _ in range(3)]; time.sleep({seconds}); sys.exit(7)"),
]


def run(*command):
    try:
        return subprocess.run(command, timeout=150, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                              env={**os.environ, "PYTHONPATH": str(BUILD / "python")}).returncode
    except subprocess.TimeoutExpired:
        return "hangs"


def main():
    numbers = random.Random(1)
    ended = collections.defaultdict(collections.Counter)
    for _ in range(ROUNDS):
        ended["exit in the middle of calls"][run(DRIVER, "exit", str(numbers.randrange(150)))] += 1
        for i, program in enumerate(PYTHON):
            program = program.replace("{seconds}", str(numbers.random() / 5))
            ended[f"Python, program {i}"][run("/usr/bin/python3", "-c", program)] += 1
    for _ in range(max(1, ROUNDS // 20)):
        ended["fork after each call"][run(DRIVER, "fork")] += 1
    for name, statuses in ended.items():
        print(f"{name}: " + ", ".join(f"{nb} by {status}" for status, nb in statuses.items()))
    return any(status != 7 for statuses in ended.values() for status in statuses)


if __name__ == "__main__":
    sys.exit(main())
