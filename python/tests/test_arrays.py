"""Arrays as images: layouts, types, shapes, lifetimes."""

import gc
import math
import resource
import weakref

import numpy
import orvik_fd
import pytest


def put(array, view):
    view[...] = array
    return view


#: The same samples, differently laid out.
LAYOUTS = {
    "in Fortran order": numpy.asfortranarray,
    "upside down": lambda a: a[::-1].copy()[::-1],
    "mirrored": lambda a: a[:, ::-1].copy()[:, ::-1],
    "every other line of a part": lambda a: put(a, numpy.zeros((a.shape[0] * 2, a.shape[1] + 5), a.dtype)[::2, 3:-2]),
    "every other column": lambda a: put(a, numpy.zeros((a.shape[0], a.shape[1] * 2), a.dtype)[:, ::2]),
    "misaligned": lambda a: put(a, numpy.zeros(a.nbytes + 1, numpy.uint8)[1:].view(a.dtype).reshape(a.shape)),
    "read-only": lambda a: numpy.broadcast_to(a, a.shape),
    "what can become an array": lambda a: type("Picture", (), {"__array__": lambda self, *args, **more: a})(),
}


@pytest.mark.parametrize("dtype", ["int8", "uint8", "int16", "uint16", "int32", "uint32", "float32", "bool"])
def test_everyLayoutIsReadAndLeftAlone(rng, dtype):
    array = rng.integers(0, 2 if dtype == "bool" else 100, (21, 33)).astype(dtype)
    expected = orvik_fd.harrisCorner2dImg(array, 1.0)
    assert (expected == orvik_fd.harrisCorner2dImg(array.astype(numpy.float32), 1.0)).all() and expected.any()
    for name, layOut in LAYOUTS.items():
        same = layOut(array)
        assert (orvik_fd.harrisCorner2dImg(same, 1.0) == expected).all() and (numpy.asarray(same) == array).all(), name


def test_repeatedAndOverlappingLinesAreReadAsTheyAre(rng):
    line = rng.integers(0, 100, 30).astype(numpy.float32)
    windows = numpy.lib.stride_tricks.sliding_window_view(line, 12)
    for view in (numpy.broadcast_to(line, (7, 30)), windows, numpy.broadcast_to(windows, (2,) + windows.shape), line[None],
                 line[:, None]):
        result = orvik_fd.gaussianGradient2dImg(view, 1)[0]
        assert result.shape == view.shape and (result == orvik_fd.gaussianGradient2dImg(view.copy(), 1)[0]).all()


@pytest.mark.parametrize("out, error, text", [
    (numpy.zeros((40, 112), numpy.uint8)[:, ::2], ValueError, "outImg: .*strides"),
    (numpy.asfortranarray(numpy.zeros((40, 56), numpy.uint8)), ValueError, "outImg: .*strides"),
    (numpy.broadcast_to(numpy.uint8(0), (40, 56)), ValueError, "outImg: the array is read-only"),
    (numpy.zeros((40, 56)), TypeError, "outImg: samples of type float64"),
    (numpy.zeros((40, 57), bool), orvik_fd.Error, "56 x 40.*57 x 40"),
    ([[0]], TypeError, "outImg: an array is expected, not list"),
    (None, orvik_fd.Error, "memory"),  # the input itself
])
def test_resultsThatCanNotBeWrittenAreRefused(small, out, error, text):
    with pytest.raises(error, match=text):
        orvik_fd.cannyEdges2dImg(small, small, outImg=small if out is None else out, lowThreshold=5, highThreshold=10)
    assert not numpy.any(out)


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
    changed = labels.copy()
    changed += 1
    assert numpy.shares_memory(labels, small)
    assert [type(one) for one in (labels[3:5], labels.copy(), changed)] == [orvik_fd.LabelArray] * 3
    assert [type(one) for one in (labels + 1, labels > 3, labels.max())] == [numpy.ndarray, numpy.ndarray, numpy.uint8]
    refused = small.astype(numpy.int8), small.astype(numpy.float32), small > 3, small.astype(">u2"), [1]
    for mark, array in (*((orvik_fd.asLabel, array) for array in refused), (orvik_fd.asBinary, small.astype(numpy.uint16))):
        with pytest.raises(TypeError, match="label|binary|list"):
            mark(array)
    # Votes of labels of 8 bits are counted in floats; other types are no labels any more.
    votes = [orvik_fd.houghLines2dImg(array).dtype for array in (changed.astype(numpy.uint8), labels.astype(numpy.int32))]
    assert votes == [numpy.float32, numpy.int32]


def test_resultsOutliveWhatTheyWereMadeFrom(small):
    a, b = orvik_fd.gaussianGradient2dImg(small, 1)
    expected, line = a.copy(), a[3]
    del b
    other = [orvik_fd.gaussianGradient2dImg(small[::-1], 1) for _ in range(20)]  # would reuse memory that was freed
    assert (a == expected).all()
    del a, other
    other = [orvik_fd.gaussianGradient2dImg(small[::-1], 1) for _ in range(20)]
    assert (line == expected[3]).all()


def test_anArrayMayBeDroppedWhileItIsRead(rng):
    array = rng.random((1500, 1500)).astype(numpy.float32)
    expected = orvik_fd.harrisCorner2dImg(array, 3)
    for _ in range(3):
        handle = orvik_fd.harrisCorner2dImg_async(array.copy(), 3)
        [numpy.zeros(array.shape, numpy.float32) for _ in range(3)]  # would take its place
        assert (handle.result() == expected).all()


def test_nothingIsKeptOfAnArray(small):
    watched = small.view(orvik_fd.LabelArray)
    gone, kept = weakref.ref(watched), [orvik_fd.harrisCorner2dImg(watched), orvik_fd.harrisCorner2dImg_async(watched)]
    kept.append(kept[1].result())
    with pytest.raises(orvik_fd.Error):
        orvik_fd.harrisCorner2dImg(watched, -1)
    del watched
    gc.collect()
    assert gone() is None


def test_inputsAreNotCopied():
    image = numpy.ones((4096, 4096), numpy.float32)
    peak = lambda: resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024
    orvik_fd.maxL2Norm2Msr(image[:64], image[:64])
    before = peak()
    assert orvik_fd.maxL2Norm2Msr(image, image) == pytest.approx(math.sqrt(2))
    assert peak() - before < image.nbytes / 4, "a copy would add all of it"
    assert orvik_fd.maxL2Norm2Msr(image.T, image.T) == pytest.approx(math.sqrt(2))
    assert peak() - before > image.nbytes / 2, "this layout is copied, so the measure sees copies"
