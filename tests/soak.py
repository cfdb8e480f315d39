#!/usr/bin/env python3
"""Calls the Python package at random for as long as asked: all functions in all forms, several at once, with callbacks that
raise, cancel and hold their handles, handles that are asked, closed or dropped, and arguments that are refused. Fails when a
handle, a run or an array outlives its use, or when memory grows.

    PYTHONPATH=build/release/python /usr/bin/python3 tests/soak.py [--seconds 600] [--seed 1] [--megabytes 16]
"""

import argparse
import collections
import concurrent.futures
import contextlib
import faulthandler
import gc
import inspect
import random
import sys
import time
import weakref

import numpy
import orvik_fd

NB_THREADS = 3
NB_CALLS_OF_ROUND = 150  # of each thread
DTYPES = "int8 uint8 int16 uint16 int32 uint32 float32 bool".split()


def seldom(draw, bad, *good):
    return bad if draw.random() < 0.05 else draw.choice(good)


#: The arguments of each function, from a random generator and two images of one shape and type.
ARGUMENTS = {
    "gaussianGradient2dImg": lambda draw, a, b: ((a, seldom(draw, -1, 0.5, 2)), {}),
    "gaussianGradient3dImg": lambda draw, a, b: ((a, seldom(draw, -1, 0.5, 2)), {"stdDevZ": draw.choice([None, 1.5])}),
    "cannySurfaces3dImg": lambda draw, a, b: ((a, b, a, seldom(draw, 7, 0, 1)), {"lowThreshold": 3, "highThreshold": 9}),
    "cannyEdges2dImg": lambda draw, a, b: ((a, b, seldom(draw, 7, 0, 1)), {"lowThreshold": 3, "highThreshold": 9}),
    "extractLocalExtrema2d": lambda draw, a, b: ((a, seldom(draw, -1, 1, 4), 2), {"maxNbExtrema": draw.choice([None, 5])}),
    "extractLocalExtrema3d": lambda draw, a, b: ((a, seldom(draw, -1, 1, 4), 2, draw.choice([0, 2])), {}),
    "harrisCorner2dImg": lambda draw, a, b: ((a, seldom(draw, 0, 0.5, 2), draw.choice([None, numpy.empty(a.shape, "f4")])), {}),
    "harrisCorner2d": lambda draw, a, b: ((a, seldom(draw, -1, 20), 3), {"harrisK": draw.choice([None, 0.1])}),
    "harrisCorner3dImg": lambda draw, a, b: ((a, seldom(draw, 0, 0.5, 2)), {"harrisK": draw.choice([None, 0.02])}),
    "harrisCorner3d": lambda draw, a, b: ((a, seldom(draw, -1, 20), 3), {"cornerResponseType": draw.choice([None, 0])}),
    "houghLines2dImg": lambda draw, a, b: ((a,), {"nbThetaBins": seldom(draw, 0, 10, 90)}),
    "houghLines2d": lambda draw, a, b: ((a,), {"peakDist": seldom(draw, "x", 1, 5)}),
    "houghLinesGradient2dImg": lambda draw, a, b: ((a, b), {"nbThetaBins": seldom(draw, 0, 10, 90)}),
    "houghLinesGradient2d": lambda draw, a, b: ((a, b), {"tolerance": seldom(draw, float("nan"), 0.05, 0.3)}),
    "houghCircles2dImg": lambda draw, a, b: ((a, b, seldom(draw, "x", 1, 3), 6), {}),
    "houghCirclesPhaseCoded2dImg": lambda draw, a, b: ((a, b, 2, seldom(draw, -1, 3, 9)), {}),
    "houghCircles2d": lambda draw, a, b: ((a, 2, seldom(draw, -1, 5, 9)), {"algoMethod": draw.choice([0, 1])}),
    "houghSpheres3dImg": lambda draw, a, b: ((a, b, a, seldom(draw, "x", 1), 2), {}),
    "houghSpheres3dLabelImg": lambda draw, a, b: (([(5, 4, 0, seldom(draw, -1, 2, 9))], a if a.ndim < 4 else a[0]), {}),
    "houghSpheres3d": lambda draw, a, b: ((a, 1, seldom(draw, -1, 2, 4)), {"ratioOfMax": draw.choice([None, 0.9])}),
    "extractHoughPeaks2d": lambda draw, a, b: ((a, b, seldom(draw, "x", 0, 9)), {}),
    "maxL2Norm2Msr": lambda draw, a, b: ((a, seldom(draw, b.astype("f8"), b)), {}),
}


class Image(numpy.ndarray):
    """An array that can be referred to weakly and refer to what uses it."""


class Stop(Exception):
    """What callbacks raise."""


class Soak:
    def __init__(self):
        self.functions = {name: f for name in orvik_fd.__all__ if inspect.isfunction(f := getattr(orvik_fd, name))
                          and self.familyOf(name) in ARGUMENTS}
        missed = set(ARGUMENTS) - {self.familyOf(name) for name in self.functions}
        assert not missed, f"the package has no {missed}"
        self.counts = collections.Counter()
        self.used = weakref.WeakSet()  # handles; keeps none of them
        self.images = []  # weak references: arrays can't be in sets

    @staticmethod
    def familyOf(name):
        return name.replace("multiSlice_", "").replace("_async", "")

    def image(self, draw, shape, dtype):
        samples = numpy.random.default_rng(draw.getrandbits(32)).integers(0, 2 if dtype == "bool" else 100, shape)
        image = samples.astype(dtype, order=draw.choice("CF")).view(Image)
        self.images.append(weakref.ref(image))
        return image

    def call(self, draw):
        """One call and what becomes of it."""
        name = draw.choice(list(self.functions))
        side = draw.choice([1, 17, 64, 300])
        ofPlanes = "2d" in name and "2dImg" not in name and "multiSlice" not in name  # refuses more than one
        planes = () if side == 300 else seldom(draw, (3,), ()) if ofPlanes else draw.choice([(), (2,), (2, 1, 2)])
        dtype, shape = draw.choice(DTYPES), (*planes, side, side + 3)
        a, b = (self.image(draw, shape, dtype) for _ in range(2))
        args, more = ARGUMENTS[self.familyOf(name)](draw, a, b)
        behaviour = draw.choice(["none", "tells", "raises", "cancels"])
        told = []

        def progress(fraction):
            told.append(a)
            if behaviour == "raises" and len(told) > 1:
                raise Stop
            if behaviour == "cancels" and hasattr(a, "handle"):
                a.handle.cancel()

        outcome = "given"
        try:
            handle = self.functions[name](*args, **more, **({} if behaviour == "none" else {"progress": progress}))
            if isinstance(handle, orvik_fd.Handle):
                self.used.add(handle)
                a.handle = handle
                end = draw.choice(["result", "result", "close", "cancel", "drop", "done"])
                outcome = end
                if end == "cancel":
                    handle.cancel()
                if end in ("result", "cancel"):
                    handle.result(60)
                elif end == "close":
                    handle.close()
                elif end == "done":
                    handle.done()
        except (orvik_fd.CancelledError, Stop, ValueError, TypeError) as e:
            outcome = type(e).__name__
        self.counts[name, outcome] += 1

    def round(self, draw):
        """Calls from several threads. Gives how many handles, runs and arrays are left when all is over."""
        draws = [random.Random(draw.getrandbits(64)) for _ in range(NB_THREADS)]
        with concurrent.futures.ThreadPoolExecutor(NB_THREADS) as pool:
            for ended in [pool.submit(lambda one=one: [self.call(one) for _ in range(NB_CALLS_OF_ROUND)]) for one in draws]:
                ended.result()
        for _ in range(600):  # dropped ones may be on
            orvik_fd.harrisCorner2dImg_async(numpy.zeros((3, 3), "f4")).result()  # gives back what earlier ones read
            gc.collect()
            self.images = [image for image in self.images if image() is not None]
            left = len(self.used), sum(type(o).__name__ == "Run" for o in gc.get_objects()), len(self.images)
            if left == (0, 0, 0):
                break
            time.sleep(0.1)
        return left


def megabytes():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * 4096 / 2**20


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n\n")[0])
    parser.add_argument("--seconds", type=float, default=600)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--megabytes", type=float, default=16, help="growth from the second quarter to the last that fails")
    asked = parser.parse_args()
    soak, draw, begin, sizes = Soak(), random.Random(asked.seed), time.monotonic(), []
    while (now := time.monotonic() - begin) < asked.seconds or len(sizes) < 8:
        faulthandler.dump_traceback_later(300, exit=True)  # a hang
        orvik_fd.setNbThreads(draw.choice([0, 1, 2, 4]))
        left = soak.round(draw)
        sizes.append(megabytes())
        if left != (0, 0, 0):
            sys.exit(f"round {len(sizes)} left {left[0]} handles, {left[1]} runs and {left[2]} arrays alive")
    faulthandler.cancel_dump_traceback_later()
    quarter = len(sizes) // 4
    early, late = max(sizes[quarter : 2 * quarter]), min(sizes[-quarter:])
    outcomes = collections.Counter()
    for (_, outcome), number in soak.counts.items():
        outcomes[outcome] += number
    print(f"seed {asked.seed}: {sum(outcomes.values())} calls of {len(soak.functions)} functions, "
          f"{now:.0f} s, {len(sizes)} rounds")
    print(", ".join(f"{number} {outcome}" for outcome, number in outcomes.most_common()))
    print(f"no handle, run or array left; {sizes[0]:.1f} MB after the first round, at most {early:.1f} in the second quarter, "
          f"at least {late:.1f} in the last")
    missed = set(soak.functions) - {name for name, _ in soak.counts}
    if missed:
        sys.exit(f"never called: {', '.join(missed)}")
    if late - early > asked.megabytes:
        sys.exit(f"memory grew by {late - early:.0f} MB")


if __name__ == "__main__":
    main()
