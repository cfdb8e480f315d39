"""Arrays as images: layouts, types, shapes, lifetimes."""

import gc
import math
import resource
import weakref

import numpy
import orvik_fd
import pytest

from conftest import DTYPES


def layouts(array):
    """The same samples, differently laid out."""
    yield "in C order", array
    yield "in Fortran order", numpy.asfortranarray(array)
    yield "upside down", numpy.ascontiguousarray(array[::-1])[::-1]
    yield "mirrored", numpy.ascontiguousarray(array[:, ::-1])[:, ::-1]
    wide = numpy.zeros((array.shape[0] * 2, array.shape[1] + 5), array.dtype)
    wide[::2, 3:-2] = array
    yield "every other line of a part", wide[::2, 3:-2]
    spread = numpy.zeros((array.shape[0], array.shape[1] * 2), array.dtype)
    spread[:, ::2] = array
    yield "every other column", spread[:, ::2]
    raw = numpy.zeros(array.nbytes + 1, numpy.uint8)
    misaligned = raw[1:].view(array.dtype).reshape(array.shape)
    misaligned[...] = array
    yield "misaligned", misaligned
    readOnly = array.copy()
    readOnly.flags.writeable = False
    yield "read-only", readOnly


@pytest.mark.parametrize("dtype", DTYPES)
def test_everyLayoutIsReadAndLeftAlone(rng, dtype):
    array = rng.integers(0, 2 if dtype == "bool" else 100, (21, 33)).astype(dtype)
    expected = orvik_fd.harrisCorner2dImg(array, 1.0)
    assert numpy.abs(expected).max() > 0
    for name, same in layouts(array):
        before = same.copy()
        assert (orvik_fd.harrisCorner2dImg(same, 1.0) == expected).all(), name
        assert (same == before).all(), name


def test_repeatedAndOverlappingLinesAreReadAsTheyAre(rng):
    line = rng.integers(0, 100, 30).astype(numpy.float32)
    windows = numpy.lib.stride_tricks.sliding_window_view(line, 12)
    for view in (numpy.broadcast_to(line, (7, 30)), windows, numpy.broadcast_to(windows, (2,) + windows.shape), line[None],
                 line[:, None]):
        result = orvik_fd.gaussianGradient2dImg(view, 1)[0]
        assert result.shape == view.shape and (result == orvik_fd.gaussianGradient2dImg(view.copy(), 1)[0]).all()


def test_resultsAreWrittenWhereTheyAreWanted(small):
    gx, gy = orvik_fd.gaussianGradient2dImg(small, 1)
    expected = orvik_fd.cannyEdges2dImg(gx, gy, lowThreshold=5, highThreshold=10)
    frame = numpy.full((small.shape[0] * 2, small.shape[1] + 10), 7, numpy.uint8)
    part = frame[::-2, 4:-6]
    assert orvik_fd.cannyEdges2dImg(gx, gy, outImg=part, lowThreshold=5, highThreshold=10) is part
    assert (part == expected).all()
    untouched = numpy.ones(frame.shape, bool)
    untouched[::-2, 4:-6] = False
    assert (frame[untouched] == 7).all()


@pytest.mark.parametrize("out, error, text", [
    (numpy.zeros((40, 112), numpy.uint8)[:, ::2], ValueError, "outImg: .*strides"),
    (numpy.asfortranarray(numpy.zeros((40, 56), numpy.uint8)), ValueError, "outImg: .*strides"),
    (numpy.broadcast_to(numpy.uint8(0), (40, 56)), ValueError, "outImg: the array is read-only"),
    (numpy.zeros((40, 56)), TypeError, "outImg: samples of type float64"),
    (numpy.zeros((40, 57), bool), orvik_fd.Error, "56 x 40.*57 x 40"),
    ([[0]], TypeError, "outImg: an array is expected, not list"),
])
def test_resultsThatCanNotBeWrittenAreRefused(small, out, error, text):
    gx, gy = orvik_fd.gaussianGradient2dImg(small, 1)
    with pytest.raises(error, match=text):
        orvik_fd.cannyEdges2dImg(gx, gy, outImg=out, lowThreshold=5, highThreshold=10)
    assert not numpy.any(out)
    with pytest.raises(orvik_fd.Error, match="memory"):
        orvik_fd.cannyEdges2dImg(gx, gy, outImg=gx, lowThreshold=5, highThreshold=10)


@pytest.mark.parametrize("array, error, text", [
    *((numpy.zeros((5, 5), dtype), TypeError, text) for dtype, text in (
        ("O", "inImg: samples of type object"), ("c16", "complex128"), ("f8", "float64"), ("i8", "int64"), ("u8", "uint64"),
        ("f2", "float16"), (">f4", "byte order"), ("M8[s]", "datetime64"), ([("a", "f4")], "'a'"))),
    (numpy.ma.zeros((5, 5), numpy.float32), TypeError, "mask"),
    ([[1, 2], [3, 4]], TypeError, "an array is expected, not list"),
    *((numpy.zeros(shape, numpy.float32), ValueError, text) for shape, text in (
        ((), "0 axes"), (5, r"shape \(5,\) has 1 axes"), ((1, 1, 1, 1, 1, 5), "6 axes"),
        ((2, 0, 5), r"shape \(2, 0, 5\) has no samples"))),
])
def test_whatIsNoImageIsRefusedByName(array, error, text):
    for call in (lambda: orvik_fd.extractLocalExtrema2d(array, 1, 1), lambda: orvik_fd.harrisCorner2dImg_async(array)):
        with pytest.raises(error, match=text) as raised:
            call()
        assert str(raised.value).startswith("inImg: ")


def test_marksSayWhatSamplesAre(small):
    labels = orvik_fd.asLabel(small)
    assert numpy.shares_memory(labels, small)
    assert isinstance(labels[3:5], orvik_fd.LabelArray) and isinstance(labels.copy(), orvik_fd.LabelArray)
    assert type(labels + 1) is numpy.ndarray and type(labels > 3) is numpy.ndarray
    assert labels.max() == small.max() and not isinstance(labels.max(), numpy.ndarray)
    for array in (small.astype(numpy.int8), small.astype(numpy.float32), small > 3, small.astype(">u2")):
        with pytest.raises(TypeError, match="label"):
            orvik_fd.asLabel(array)
    with pytest.raises(TypeError, match="binary"):
        orvik_fd.asBinary(small.astype(numpy.uint16))
    with pytest.raises(TypeError, match="list"):
        orvik_fd.asLabel([1])
    changed = labels.copy()
    changed += 1
    assert isinstance(changed, orvik_fd.LabelArray)
    # Votes of labels of 8 bits are counted in floats; other types are no labels any more.
    votes = [orvik_fd.houghLines2dImg(array).dtype for array in (changed.astype(numpy.uint8), labels.astype(numpy.int32))]
    assert votes == [numpy.float32, numpy.int32]


def test_whatCanBecomeAnArrayIsOne(small):
    class Picture:
        def __array__(self, dtype=None, copy=None):
            return small

    assert (orvik_fd.harrisCorner2dImg(Picture()) == orvik_fd.harrisCorner2dImg(small)).all()


def test_resultsOutliveWhatTheyWereMadeFrom(small):
    a, b = orvik_fd.gaussianGradient2dImg(small, 1)
    expected = a.copy(), b.copy()
    line = a[3]
    del b
    gc.collect()
    other = [orvik_fd.gaussianGradient2dImg(small[::-1], 1) for _ in range(20)]  # would reuse memory that was freed
    assert (a == expected[0]).all() and (line == expected[0][3]).all()
    del a, other
    gc.collect()
    [orvik_fd.gaussianGradient2dImg(small[::-1], 1) for _ in range(20)]
    assert (line == expected[0][3]).all()


def test_anArrayMayBeDroppedWhileItIsRead(rng):
    array = rng.random((1500, 1500)).astype(numpy.float32)
    expected = orvik_fd.harrisCorner2dImg(array, 3)
    for _ in range(3):
        handle = orvik_fd.harrisCorner2dImg_async(array.copy(), 3)
        others = [numpy.zeros((1500, 1500), numpy.float32) for _ in range(3)]  # would take its place
        del others
        assert (handle.result() == expected).all()


def test_nothingIsKeptOfAnArray(small):
    class Seen(numpy.ndarray):
        pass

    watched = small.view(Seen)
    gone = weakref.ref(watched)
    result = orvik_fd.harrisCorner2dImg(watched)
    with pytest.raises(orvik_fd.Error):
        orvik_fd.harrisCorner2dImg(watched, -1)
    handle = orvik_fd.harrisCorner2dImg_async(watched)
    handle.result()
    del watched
    gc.collect()
    assert gone() is None and result.shape == small.shape


def test_inputsAreNotCopied():
    side = 4096
    image = numpy.ones((side, side), numpy.float32)

    def peak():
        return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024

    orvik_fd.maxL2Norm2Msr(image[:64], image[:64])
    before = peak()
    assert orvik_fd.maxL2Norm2Msr(image, image) == pytest.approx(math.sqrt(2))
    assert peak() - before < image.nbytes / 4, "a copy would add all of it"
    assert orvik_fd.maxL2Norm2Msr(image.T, image.T) == pytest.approx(math.sqrt(2))
    assert peak() - before > image.nbytes / 2, "this layout is copied, so the measure sees copies"
