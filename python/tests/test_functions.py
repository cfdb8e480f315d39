"""Every function once, against its definition in NumPy."""

import math
import pathlib
import re

import numpy
import orvik_fd
import pytest
from numpy.lib.stride_tricks import sliding_window_view


def gaussianGradient(picture, sigma, coverage=4.0):
    half = max(1, math.floor(coverage * sigma + 0.5))
    k = numpy.arange(-half, half + 1)
    weights = numpy.exp(-(k**2) / (2 * sigma**2))
    smoothing = weights / weights.sum()
    slope = k * weights / (k**2 * weights).sum()
    padded = numpy.pad(picture.astype(float), half, mode="edge")

    def along(array, kernel, axis):
        return numpy.apply_along_axis(lambda line: numpy.convolve(line, kernel[::-1], "valid"), axis, array)

    return along(along(padded, slope, 1), smoothing, 0), along(along(padded, slope, 0), smoothing, 1)


def smoothed(array, sigma, coverage=4.0):
    half = max(1, math.floor(coverage * sigma + 0.5))
    weights = numpy.exp(-(numpy.arange(-half, half + 1) ** 2) / (2 * sigma**2))
    for axis in (0, 1):
        array = numpy.apply_along_axis(
            lambda line: numpy.convolve(numpy.pad(line, half, mode="edge"), weights / weights.sum(), "valid"), axis, array
        )
    return array


def cannyEdges(gx, gy, low, high):
    gx, gy = gx.astype(float), gy.astype(float)
    m = numpy.pad(gx**2 + gy**2, 1)

    def shifted(dy, dx):
        return m[1 + dy : m.shape[0] - 1 + dy, 1 + dx : m.shape[1] - 1 + dx]

    here, ax, ay = shifted(0, 0), abs(gx), abs(gy)
    kept = numpy.select(
        [ax * 0.41421356237309503 > ay, ay > ax * 2.414213562373095, (gx < 0) == (gy < 0)],
        [
            (here > shifted(0, -1)) & (here >= shifted(0, 1)),
            (here >= shifted(1, 0)) & (here > shifted(-1, 0)),
            (here > shifted(1, 1)) & (here > shifted(-1, -1)),
        ],
        (here > shifted(1, -1)) & (here > shifted(-1, 1)),
    )
    weak = kept & (here > low**2)
    edges = weak & (here > high**2)
    while True:
        grown = weak & sliding_window_view(numpy.pad(edges, 1), (3, 3)).any(axis=(2, 3))
        if (grown == edges).all():
            return edges
        edges = grown


def maxima(picture, distX, distY):
    """Pixels that beat all others of their rectangle; for pictures without equal values."""
    lowest = picture.min() - 1.0
    padded = numpy.pad(picture.astype(float), ((distY, distY), (distX, distX)), constant_values=lowest)
    windows = sliding_window_view(padded, (2 * distY + 1, 2 * distX + 1))
    y, x = numpy.nonzero(picture == windows.max(axis=(2, 3)))
    order = numpy.argsort(-picture[y, x].astype(float))
    return list(zip(x[order], y[order], picture[y, x][order].astype(float)))


def votes(picture, rhoStep, thetaMin, thetaMax, nbThetaBins):
    """Positions and shares are formed in 32-bit floats."""
    height, width = picture.shape
    half = int(1 + math.hypot((width + 1) // 2, (height + 1) // 2) / rhoStep)
    accumulator = numpy.zeros((nbThetaBins, 2 * half), numpy.int64)
    lines, columns = numpy.nonzero(picture)
    x, y, value = (numpy.float32(v) for v in (columns - width // 2, lines - height // 2, picture[lines, columns]))
    for t, row in enumerate(accumulator):
        theta = thetaMin + t * ((thetaMax - thetaMin) / nbThetaBins)
        p = x * numpy.float32(math.cos(theta) / rhoStep) + y * numpy.float32(math.sin(theta) / rhoStep)
        fraction = p - numpy.floor(p)
        for first, share in ((0, (1 - fraction) * value), (1, fraction * value)):
            at = numpy.floor(p).astype(int) + half + first
            inside = (at >= 0) & (at < 2 * half)
            numpy.add.at(row, at[inside], numpy.floor(share[inside].astype(float) + 0.5).astype(int))
    return accumulator


def rows(structured):
    return [tuple(float(v) for v in row) for row in structured]


def test_gaussianGradient2dImg(small):
    gx, gy = orvik_fd.gaussianGradient2dImg(small, 1.5)
    x, y = gaussianGradient(small, 1.5)
    assert gx.dtype == gy.dtype == numpy.float32
    numpy.testing.assert_allclose(gx, x, rtol=1e-6, atol=1e-5)
    numpy.testing.assert_allclose(gy, y, rtol=1e-6, atol=1e-5)
    both = orvik_fd.gaussianGradient2dImg(small, 1.5, 1.5, 4.0)
    assert (both[0] == gx).all() and (both[1] == gy).all()
    assert (orvik_fd.gaussianGradient2dImg(small, stdDev=1.5)[0] == gx).all()
    out = numpy.empty(small.shape, numpy.int16)
    only = orvik_fd.gaussianGradient2dImg(small, 1.5, outY=out)
    assert only[0] is None and only[1] is out
    assert (out == numpy.rint(gy)).all()


def test_cannyEdges2dImg(small):
    gx, gy = (numpy.rint(g).astype(numpy.int16) for g in orvik_fd.gaussianGradient2dImg(small, 1.0))
    expected = cannyEdges(gx, gy, 4, 20)
    assert 50 < expected.sum() < 1000
    edges = orvik_fd.cannyEdges2dImg(gx, gy, lowThreshold=4, highThreshold=20)
    assert edges.dtype == bool
    assert (edges == expected).all()
    policy = orvik_fd.eProcessingOptimizationPolicy
    for dtype in (bool, numpy.uint8, numpy.float32):
        out = numpy.full(small.shape, 7, dtype)
        assert orvik_fd.cannyEdges2dImg(gx, gy, policy.ePOP_Iterative, out, lowThreshold=4, highThreshold=20) is out
        assert (out == expected).all()
    labels = orvik_fd.cannyEdges2dImg(gx, gy, policy.ePOP_Labels, lowThreshold=4, highThreshold=20)
    assert (labels == expected).all()


def test_extractLocalExtrema2d(rng):
    picture = rng.permutation(30 * 41).reshape(30, 41).astype(numpy.int16)
    found = orvik_fd.extractLocalExtrema2d(picture, 2, 3)
    assert found.dtype.names == ("X", "Y", "Value")
    assert rows(found) == maxima(picture, 2, 3)
    kind = orvik_fd.eLocalExtremumType
    lowest = orvik_fd.extractLocalExtrema2d(picture, 2, 3, localExtremumType=kind.eLET_Minima, threshold=500, maxNbExtrema=3)
    assert rows(lowest) == [(x, y, -v) for x, y, v in maxima(-picture, 2, 3)][:3]
    assert rows(orvik_fd.extractLocalExtrema2d(picture, 2, 3, threshold=1000)) == [r for r in rows(found) if r[2] >= 1000]
    assert len(orvik_fd.extractLocalExtrema2d(picture, 2, 3, maxNbExtrema=0)) == 0


def test_harrisCorner2dImg(small):
    gx, gy = gaussianGradient(small, 1.2, 3.0)
    xx, yy, xy = (smoothed(product, 1.2, 3.0) for product in (gx * gx, gy * gy, gx * gy))
    measure = xx * yy - xy**2 - 0.05 * (xx + yy) ** 2
    response = orvik_fd.harrisCorner2dImg(small, 1.2, nbStdDev=3, harrisK=0.05)
    scale = abs(measure).max() ** 0.5
    numpy.testing.assert_allclose(response, numpy.sign(measure) * abs(measure) ** 0.5, rtol=1e-3, atol=1e-3 * scale)
    smaller = (xx + yy - numpy.sqrt((xx - yy) ** 2 + 4 * xy**2)) / 2
    minimum = orvik_fd.eCornerResponseType.eCRT_MinEigenvalue
    numpy.testing.assert_allclose(
        orvik_fd.harrisCorner2dImg(small, 1.2, cornerResponseType=minimum, nbStdDev=3), smaller, rtol=1e-3, atol=1e-4 * scale
    )
    out = numpy.empty(small.shape, numpy.float32)
    assert orvik_fd.harrisCorner2dImg(small, 1.2, out, nbStdDev=3, harrisK=0.05) is out
    assert (out == response).all()


def test_harrisCorner2d(small):
    response = orvik_fd.harrisCorner2dImg(small, 1.5)
    expected = maxima(response, 4, 4)
    assert rows(orvik_fd.harrisCorner2d(small, 1.5, len(expected), featuresDist=4)) == expected
    assert rows(orvik_fd.harrisCorner2d(small, 1.5, 3, 4)) == expected[:3]
    plain = maxima(orvik_fd.harrisCorner2dImg(small), 4, 4)
    assert rows(orvik_fd.harrisCorner2d(small, 4, 4)) == plain[:4]
    assert rows(orvik_fd.harrisCorner2d(small, maxNbCorners=4, featuresDist=4)) == plain[:4]
    strong = [row for row in maxima(response, 4, 6) if row[2] >= 100]
    assert 0 < len(strong) < len(maxima(response, 4, 6))
    assert rows(orvik_fd.harrisCorner2d(small, 1.5, 1000, 100, 4, 6)) == strong
    assert rows(orvik_fd.harrisCorner2d(small, 1.5, 1000, 100, featuresDistX=4, featuresDistY=6)) == strong


def test_houghLines2dImg(rng):
    picture = (rng.random((23, 30)) < 0.1) * rng.integers(1, 9, (23, 30))
    accumulator = orvik_fd.houghLines2dImg(picture.astype(numpy.int32))
    assert accumulator.dtype == numpy.int32
    assert (accumulator == votes(picture, 1, 0, math.pi, 180)).all()
    marked = orvik_fd.houghLines2dImg(
        picture > 0, rhoStep=2, thetaMin=0.3, thetaMax=1.3, nbThetaBins=17, pixelThreshold=0
    )
    assert marked.dtype == numpy.uint32
    assert (marked == votes(picture > 0, 2, 0.3, 1.3, 17)).all()
    assert (orvik_fd.houghLines2dImg(picture.astype(numpy.int32), pixelThreshold=4)
            == votes(picture * (picture > 4), 1, 0, math.pi, 180)).all()
    byte = picture.astype(numpy.uint8)
    assert orvik_fd.houghLines2dImg(byte).dtype == numpy.uint32
    assert orvik_fd.houghLines2dImg(orvik_fd.asLabel(byte)).dtype == numpy.float32
    assert (orvik_fd.houghLines2dImg(orvik_fd.asBinary(byte)) == accumulator).all()


def test_houghLines2d(rng):
    picture = numpy.zeros((101, 141), bool)
    rho, theta = 60.0, math.radians(30)
    for y in range(101):
        x = round((rho - y * math.sin(theta)) / math.cos(theta))
        if 0 <= x < 141:
            picture[y, x] = True
    lines, accumulator = orvik_fd.houghLines2d(picture)
    assert lines.dtype.names == ("Rho", "Theta", "AccumulatorValue")
    assert len(lines) == 1
    assert abs(lines["Rho"][0] - rho) <= 1 and abs(lines["Theta"][0] - theta) <= math.pi / 180
    assert lines["AccumulatorValue"][0] == accumulator.max()
    assert accumulator.shape[0] == 200, "180 angles go on for twice 10 rows"
    assert (accumulator[:180] == votes(picture, 1, 0, math.pi, 180)).all()
    absolute = orvik_fd.eHoughLinesThresholdType.eHLTT_Absolute
    picture[80] = True
    two, _ = orvik_fd.houghLines2d(picture, thresholdType=absolute, threshold=60)
    assert rows(two[:1]) == [(80.0, math.pi / 2, 141.0)] and abs(two["Rho"][1] - rho) <= 1
    none, _ = orvik_fd.houghLines2d(picture, thresholdType=absolute, threshold=1000)
    assert none.shape == (0,) and none.dtype == lines.dtype


def test_maxL2Norm2Msr(rng):
    a, b = rng.integers(-1000, 1000, (2, 3, 20, 30)).astype(numpy.int16)
    assert orvik_fd.maxL2Norm2Msr(a, b) == math.sqrt((a.astype(float) ** 2 + b.astype(float) ** 2).max())


@pytest.mark.parametrize("nbAxes", [3, 4, 5])
def test_multiSliceFormsGiveAListForEachPlane(rng, nbAxes):
    shape = (2, 3, 2)[5 - nbAxes :]  # t, c, z
    planes = rng.integers(0, 200, shape + (20, 24)).astype(numpy.uint8)
    index = {(z, c, t): (t, c, z)[5 - nbAxes :] for t in range(2) for c in range(3) for z in range(2)
             if (nbAxes > 4 or t == 0) and (nbAxes > 3 or c == 0)}
    for every, single in (
        (orvik_fd.multiSlice_extractLocalExtrema2d(planes, 3, 3), lambda p: orvik_fd.extractLocalExtrema2d(p, 3, 3)),
        (orvik_fd.multiSlice_harrisCorner2d(planes, 7, 3), lambda p: orvik_fd.harrisCorner2d(p, 7, 3)),
        (orvik_fd.multiSlice_houghLines2d(planes)[0], lambda p: orvik_fd.houghLines2d(p)[0]),
        (orvik_fd.multiSlice_extractLocalExtrema2d_async(planes, 3, 3).result(),
         lambda p: orvik_fd.extractLocalExtrema2d(p, 3, 3)),
    ):
        assert set(every) == set(index)
        for plane, place in index.items():
            assert (every[plane] == single(planes[place])).all()
    accumulators = orvik_fd.multiSlice_houghLines2d(planes)[1]
    assert accumulators.shape[:-2] == shape
    with pytest.raises(orvik_fd.Error, match="plane"):
        orvik_fd.extractLocalExtrema2d(planes, 3, 3)


def test_theExampleOfTheReadmeFindsTheSquare():
    text = (pathlib.Path(__file__).resolve().parents[1] / "README.md").read_text()
    found = {}
    exec(re.search(r"```python\n(.*?)```", text, re.DOTALL).group(1), found)  # as a reader would run it
    assert sorted(zip(found["corners"]["X"], found["corners"]["Y"])) == [(200, 100), (200, 299), (399, 100), (399, 299)]
    assert found["edges"][200, 199:201].sum() == 1 and len(found["lines"]) >= 4
