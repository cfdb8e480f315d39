"""What a call from Python costs beyond the same call from C++, to import the package, and what memory an input takes.

    PYTHONPATH=build/release/python /usr/bin/python3 benchmarks/PythonCalls.py build/release/lib/libCallCost.so
"""

import ctypes
import resource
import statistics
import subprocess
import sys
import time

ROUNDS = 9


def importSeconds():
    program = "import time; t = time.perf_counter(); import orvik_fd; print(time.perf_counter() - t)"
    return float(subprocess.run([sys.executable, "-c", program], stdout=subprocess.PIPE, check=True).stdout)


imports = [importSeconds() for _ in range(ROUNDS)]
print(f"import of orvik_fd with numpy: {statistics.median(imports):.3f} s ({min(imports):.3f} to {max(imports):.3f})")

import numpy  # noqa: E402  after the measure of its import

import orvik_fd  # noqa: E402

y, x = numpy.mgrid[0:64, 0:64]
samples = (x * y % 17).astype(numpy.float32)
calls = {
    "cannyEdges2dImg": lambda: orvik_fd.cannyEdges2dImg(samples, samples, lowThreshold=3.0, highThreshold=7.0),
    "extractLocalExtrema2d": lambda: orvik_fd.extractLocalExtrema2d(samples, 3, 3, maxNbExtrema=10),
    "harrisCorner2dImg": lambda: orvik_fd.harrisCorner2dImg(samples),
}


def fromPython(call, nbCalls):
    taken = []
    for _ in range(nbCalls):
        begin = time.perf_counter()
        call()
        taken.append((time.perf_counter() - begin) * 1e6)
    return taken


def fromC(which, nbCalls):
    taken = numpy.empty(nbCalls)
    library.measureCalls(which, samples.ctypes.data_as(ctypes.c_void_p), nbCalls,
                         taken.ctypes.data_as(ctypes.c_void_p))
    return taken.tolist()


library = ctypes.CDLL(sys.argv[1])
for which, (name, call) in enumerate(calls.items()):
    python, c = [], []
    for _ in range(100):  # in turns, since the machine is not the same all the time
        python += fromPython(call, 40)
        c += fromC(which, 40)
    more = statistics.median(python) - statistics.median(c)
    print(f"{name} of 64 x 64: {statistics.median(python):.1f} us from Python, {statistics.median(c):.1f} us from C++, "
          f"{more:.1f} us more")


def peak():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024


image = numpy.ones((4096, 4096), numpy.float32)
orvik_fd.maxL2Norm2Msr(image[:64], image[:64])
before = peak()
orvik_fd.maxL2Norm2Msr(image, image)
print(f"memory for a call on two inputs of {image.nbytes / 2**20:.0f} MB in C order: {peak() - before:.1f} MB more at the peak")
orvik_fd.maxL2Norm2Msr(image.T, image.T)
print(f"the same in Fortran order, which is copied: {peak() - before:.1f} MB more")
