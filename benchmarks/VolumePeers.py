#!/usr/bin/env python3
"""Local extrema of a volume against a maximum filter of SciPy and a comparison, which give a mask, no list.

usage: PYTHONPATH=build/release/python python3 benchmarks/VolumePeers.py, where scipy is installed"""

import time

import numpy
import orvik_fd
from scipy.ndimage import maximum_filter


def seconds(call, rounds=3):
    times = []
    for _ in range(rounds):
        start = time.perf_counter()
        call()
        times.append(time.perf_counter() - start)
    return min(times)


orvik_fd.setNbThreads(1)
rng = numpy.random.default_rng(1)
volume = rng.random((256, 256, 256), dtype=numpy.float32)
for axis in range(3):
    volume += numpy.roll(volume, 1, axis) + numpy.roll(volume, 2, axis)
for distance in 1, 3, 10:
    ours = seconds(lambda: orvik_fd.extractLocalExtrema3d(volume, distance, distance, distance))
    peers = seconds(lambda: maximum_filter(volume, size=2 * distance + 1) == volume)
    print(f"{peers / ours:8.2f}  SciPy's filter over our list, distance {distance} (at distance 3 at least 3)")
