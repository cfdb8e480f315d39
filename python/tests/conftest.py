"""What the tests share."""

from concurrent.futures import ThreadPoolExecutor

import numpy
import orvik_fd
import pytest

#: dtypes of images, and what an array of each is like.
DTYPES = ["int8", "uint8", "int16", "uint16", "int32", "uint32", "float32", "bool"]


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


@pytest.fixture(autouse=True)
def defaultThreads():
    yield
    orvik_fd.setNbThreads(0)
