"""Every function: its arguments reach the library and its results come back, in all forms. What the library computes is
tested where it is written."""

import math
import pathlib
import re

import numpy
import orvik_fd
import pytest


def rows(structured):
    return [tuple(float(v) for v in row) for row in structured]


def test_gaussianGradient2dImg(small):
    y, x = numpy.mgrid[:30, :40]
    gx, gy = orvik_fd.gaussianGradient2dImg((2 * x + 3 * y).astype(numpy.float32), 1.5)
    assert gx.dtype == gy.dtype == numpy.float32
    numpy.testing.assert_allclose((gx[8:-8, 8:-8], gy[8:-8, 8:-8]), numpy.multiply.outer((2, 3), numpy.ones((14, 24))), rtol=1e-5)
    columns = numpy.broadcast_to(small[20].astype(numpy.float32), (40, 56))  # which smoothing along y leaves as they are
    for axis, picture, along, across in ((0, columns, (3, 1.5), (1.5, 3)), (1, columns.T, (1.5, 3), (3, 1.5))):
        base, more, same = (orvik_fd.gaussianGradient2dImg(picture, *s)[axis] for s in ((1.5, 1.5), along, across))
        assert abs(more - base).max() > 1 > 1e-3 > abs(same - base).max()
    gx, gy = orvik_fd.gaussianGradient2dImg(small, 1.5)
    for same in (orvik_fd.gaussianGradient2dImg(small, 1.5, 1.5, 4.0), orvik_fd.gaussianGradient2dImg(small, stdDev=1.5)):
        assert (same[0] == gx).all() and (same[1] == gy).all()
    assert (orvik_fd.gaussianGradient2dImg(small, 1.5, coverage=2)[0] != gx).any()
    out = numpy.empty(small.shape, numpy.int16)
    only = orvik_fd.gaussianGradient2dImg(small, 1.5, outY=out)
    assert only[0] is None and only[1] is out
    assert (out == numpy.rint(gy)).all()


@pytest.mark.parametrize("low, high, lines", [(4, 20, [3, 4, 5]), (15, 20, [4]), (4, 40, [])])
def test_cannyEdges2dImg(low, high, lines):
    gx, gy = numpy.zeros((2, 9, 7), numpy.int16)
    gx[3:6, 2] = 10, 30, 10
    expected = numpy.zeros((9, 7), bool)
    expected[lines, 2] = True
    edges = orvik_fd.cannyEdges2dImg(gx, gy, lowThreshold=low, highThreshold=high)
    assert edges.dtype == bool and (edges == expected).all()
    assert orvik_fd.cannyEdges2dImg(gy, gx, lowThreshold=low, highThreshold=high).sum() == (high < 30), "the peak of the line"
    policy = orvik_fd.eProcessingOptimizationPolicy
    for dtype in (bool, numpy.uint8, numpy.float32):
        out = numpy.full(gx.shape, 7, dtype)
        assert orvik_fd.cannyEdges2dImg(gx, gy, policy.ePOP_Iterative, out, lowThreshold=low, highThreshold=high) is out
        assert (out == expected).all()
    assert (orvik_fd.cannyEdges2dImg(gx, gy, policy.ePOP_Labels, lowThreshold=low, highThreshold=high) == expected).all()


def test_extractLocalExtrema2d():
    picture = numpy.full((30, 41), 50, numpy.int16)
    for x, y, value in ((10, 10, 90), (13, 10, 80), (10, 15, 70), (30, 20, 20), (34, 20, 40)):
        picture[y, x] = value
    found = orvik_fd.extractLocalExtrema2d(picture, 2, 4, threshold=60)
    assert found.dtype.names == ("X", "Y", "Value")
    assert rows(found) == [(10, 10, 90), (13, 10, 80), (10, 15, 70)]
    assert rows(orvik_fd.extractLocalExtrema2d(picture, 3, 4, threshold=60)) == [(10, 10, 90), (10, 15, 70)]
    assert rows(orvik_fd.extractLocalExtrema2d(picture, 2, 5, threshold=75, maxNbExtrema=1)) == [(10, 10, 90)]
    minima = orvik_fd.eLocalExtremumType.eLET_Minima
    assert rows(orvik_fd.extractLocalExtrema2d(picture, 3, 3, localExtremumType=minima, threshold=45)) == [(30, 20, 20), (34, 20, 40)]
    assert len(orvik_fd.extractLocalExtrema2d(picture, 2, 3, maxNbExtrema=0)) == 0


def test_harrisCorner2dImg(small):
    response = orvik_fd.harrisCorner2dImg(small)
    harris, smallest = orvik_fd.eCornerResponseType.eCRT_Harris, orvik_fd.eCornerResponseType.eCRT_MinEigenvalue
    same = orvik_fd.harrisCorner2dImg(small, 1.0, nbStdDev=4, cornerResponseType=harris, harrisK=0.04)
    assert (same == response).all() and response.dtype == numpy.float32
    assert (orvik_fd.harrisCorner2dImg(small, 1.5) != response).any()
    assert (orvik_fd.harrisCorner2dImg(small, nbStdDev=2) != response).any()
    # Below the root the measure falls with the constant in a straight line.
    atZero, atOne = (r * abs(r) for r in (orvik_fd.harrisCorner2dImg(small, harrisK=k).astype(float) for k in (0, 1)))
    assert (atZero != atOne).any()
    numpy.testing.assert_allclose(response * abs(response), atZero + 0.04 * (atOne - atZero), rtol=1e-3, atol=1)
    assert response.min() < 0 <= orvik_fd.harrisCorner2dImg(small, cornerResponseType=smallest, harrisK=1).min() + 1e-3
    out = numpy.empty(small.shape, numpy.float32)
    assert orvik_fd.harrisCorner2dImg(small, None, out) is out
    assert (out == response).all()


def test_harrisCorner2d(small):
    def maxima(*dist, response=orvik_fd.harrisCorner2dImg(small, 1.5), **config):
        return rows(orvik_fd.extractLocalExtrema2d(response, *dist, **config))

    expected = maxima(4, 4)
    assert rows(orvik_fd.harrisCorner2d(small, 1.5, len(expected), featuresDist=4)) == expected
    assert rows(orvik_fd.harrisCorner2d(small, 1.5, 3, 4)) == expected[:3]
    plain = maxima(4, 4, response=orvik_fd.harrisCorner2dImg(small), maxNbExtrema=4)
    assert rows(orvik_fd.harrisCorner2d(small, 4, 4)) == plain
    assert rows(orvik_fd.harrisCorner2d(small, maxNbCorners=4, featuresDist=4)) == plain
    spread, strong = maxima(26, 4), maxima(4, 4, threshold=100)
    assert spread != maxima(26, 26) and 0 < len(strong) < len(expected)
    assert rows(orvik_fd.harrisCorner2d(small, 1.5, 1000, 100, 4, 4)) == strong
    assert rows(orvik_fd.harrisCorner2d(small, 1.5, 1000, featuresDistX=26, featuresDistY=4)) == spread
    assert orvik_fd.harrisCorner2d(numpy.broadcast_to(small[20], (40, 56)), 9, 3)["Value"].min() < 0, "edges are listed, too"


def test_houghLines2dImg():
    picture = numpy.zeros((23, 30), numpy.int32)
    picture[4, 21] = 5
    votes = orvik_fd.houghLines2dImg(picture, rhoStep=2, thetaMin=0.3, thetaMax=1.3, nbThetaBins=17)
    assert votes.dtype == numpy.int32 and len(votes) == 17
    for row, theta in zip(votes, 0.3 + numpy.arange(17) / 17):
        column = ((21 - 15) * math.cos(theta) + (4 - 11) * math.sin(theta)) / 2 + votes.shape[1] // 2
        assert row.sum() == 5 and set(numpy.nonzero(row)[0]) <= {math.floor(column), math.floor(column) + 1}
    assert not orvik_fd.houghLines2dImg(picture, pixelThreshold=5).any()
    votes = orvik_fd.houghLines2dImg(picture)
    assert len(votes) == 180 and (votes == orvik_fd.houghLines2dImg(picture, rhoStep=1, thetaMin=0, thetaMax=math.pi)).all()
    byte = picture.astype(numpy.uint8)
    ofType = {"bool": picture > 0, "uint8": byte, "label": orvik_fd.asLabel(byte), "binary": orvik_fd.asBinary(byte)}
    ofType = {name: orvik_fd.houghLines2dImg(array) for name, array in ofType.items()}
    assert [array.dtype for array in ofType.values()] == [numpy.uint32, numpy.uint32, numpy.float32, numpy.uint32]
    assert (ofType["binary"] == votes).all() and ofType["bool"].max() == 1


def test_houghLines2d():
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
    assert orvik_fd.houghLines2d(picture, peakDist=3)[1].shape[0] == 186
    assert (accumulator[:180] == orvik_fd.houghLines2dImg(picture)).all()
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
    index = {place[::-1] + (0,) * (5 - nbAxes): place for place in numpy.ndindex(*shape)}
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
    assert orvik_fd.multiSlice_houghLines2d(planes)[1].shape[:-2] == shape
    with pytest.raises(orvik_fd.Error, match="plane"):
        orvik_fd.extractLocalExtrema2d(planes, 3, 3)


def test_theExampleOfTheReadmeFindsTheSquare():
    text = (pathlib.Path(__file__).resolve().parents[1] / "README.md").read_text()
    found = {}
    exec(re.search(r"```python\n(.*?)```", text, re.DOTALL).group(1), found)  # as a reader would run it
    assert sorted(zip(found["corners"]["X"], found["corners"]["Y"])) == [(200, 100), (200, 299), (399, 100), (399, 299)]
    assert found["edges"][200, 199:201].sum() == 1 and len(found["lines"]) >= 4
