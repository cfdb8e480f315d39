"""What the tests share."""

from concurrent.futures import ThreadPoolExecutor

import numpy
import orvik_fd
import pytest


def inThreads(number, use):
    """What use(i) gives on each of so many threads; raises what one raised."""
    with ThreadPoolExecutor(number) as pool:
        return list(pool.map(use, range(number)))


@pytest.fixture
def rng():
    return numpy.random.default_rng(20260811)


@pytest.fixture
def small(rng):
    """A picture with something to find: noise, an edge, a corner."""
    picture = rng.integers(0, 20, (40, 56)).astype(numpy.uint8)
    picture[10:30, 12:40] += 150
    return picture


@pytest.fixture
def run(small):
    """Evaluates a call as users write it, on these pictures, and gives its results as a list of plain lists."""
    gx, gy = numpy.float32(small) - small[:, ::-1], numpy.float32(small) - 80

    def evaluate(call, **more):
        given = eval(call, {**vars(orvik_fd), "small": small, "gx": gx, "gy": gy, "edge": small > 160, **more})
        given = given.result() if isinstance(given, orvik_fd.Handle) else given
        return [numpy.asarray(one).tolist() for one in (given if isinstance(given, tuple) else (given,))]

    return evaluate


@pytest.fixture(autouse=True)
def defaultThreads():
    yield
    orvik_fd.setNbThreads(0)
