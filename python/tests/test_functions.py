"""Every function: its arguments reach the library and its results come back, in all forms. What the library computes is
tested where it is written."""

import enum
import math
import pathlib
import re

import numpy
import orvik_fd
import pytest

PACKAGE = pathlib.Path(__file__).resolve().parents[1]


@pytest.mark.parametrize("calls", [  # the function: arguments == such that give the same != such that do not
    """gaussianGradient2dImg: small, 1.5 == small, 1.5, 1.5, 4 == small, stdDev=1.5 == in_=small, stdDevX=1.5, coverage=4
       != small, 1.5, 3 != small, 3, 1.5 != small, 1.5, coverage=2""",
    """gaussianGradient3dImg: many, 1.5 == many, 1.5, 1.5, 1.5, 4 == many, stdDev=1.5 == in_=many, stdDevX=1.5, coverage=4
       != many, 1.5, 1.5, 3 != many, 1.5, 3 != many, 3, 1.5, 1.5 != many, 1.5, coverage=2""",
    """cannyEdges2dImg: gx, gy, lowThreshold=5, highThreshold=80 == inGxImg2d=gx, inGyImg2d=gy, lowThreshold=5, highThreshold=80
       == gx, gy, eProcessingOptimizationPolicy.ePOP_Labels, lowThreshold=5, highThreshold=80
       != gx, gy, lowThreshold=70, highThreshold=80 != gx, gy, lowThreshold=5, highThreshold=160
       != gy, gx, lowThreshold=5, highThreshold=80""",
    """cannySurfaces3dImg: many, many[::-1], many, lowThreshold=5, highThreshold=31
       == many, many[::-1], many, eProcessingOptimizationPolicy.ePOP_Labels, lowThreshold=5, highThreshold=31
       != many, many[::-1], many, lowThreshold=30, highThreshold=31 != many[::-1], many, many, lowThreshold=5, highThreshold=31
       != many, many, many[::-1], lowThreshold=5, highThreshold=31 != many, many[::-1], many, lowThreshold=5, highThreshold=40""",
    """extractLocalExtrema2d: small, 2, 3 == small, inFeaturesDistX=2, inFeaturesDistY=3, localExtremumType=0
       == small, numpy.uint8(2), numpy.int64(3), threshold=numpy.float32(-10) != small, 3, 2 != small, 2, 3, threshold=155
       != small, 2, 3, localExtremumType=eLocalExtremumType.eLET_StrictMaxima != small, 2, 3, maxNbExtrema=0""",
    """extractLocalExtrema3d: many, 2, 3, 1 == inImg3d=many, inFeaturesDistX=2, inFeaturesDistY=3, inFeaturesDistZ=1
       == many, 2, 3, 1, localExtremumType=0, threshold=-10 != many, 3, 2, 1 != many, 2, 3, 0 != many, 2, 3, 1, threshold=20
       != many, 2, 3, 1, localExtremumType=eLocalExtremumType.eLET_StrictMaxima != many, 2, 3, 1, maxNbExtrema=4""",
    """harrisCorner2dImg: small == small, 1, nbStdDev=4, cornerResponseType=eCornerResponseType.eCRT_Harris, harrisK=0.04
       != small, 1.5 != small, nbStdDev=2 != small, cornerResponseType=0 != small, harrisK=0.1""",
    """harrisCorner2d: small, 9, 3 == small, 1, 9, 3 == small, None, 9, None, 3, 3 == small, 1, 9, -1e30, featuresDist=3
       == small, maxNbCorners=9, featuresDistX=3, featuresDistY=3, nbStdDev=4, cornerResponseType=1, harrisK=0.04
       != small, 1.5, 9, 3 != small, 8, 3 != small, 9, 4 != small, 1, 9, 4000, 3, 3 != small, 9, 3, nbStdDev=2
       != small, 9, 3, cornerResponseType=0 != small, 9, 3, harrisK=0.1""",
    """harrisCorner3dImg: many == inImg3d=many == many, 1, nbStdDev=4, cornerResponseType=1, harrisK=0.005
       != many, 1.5 != many, nbStdDev=2 != many, cornerResponseType=0 != many, harrisK=0.02""",
    """harrisCorner3d: many, 9, 3 == many, 1, 9, 3 == many, None, 9, None, 3, 3, 3 == many, 1, 9, -1e30, featuresDist=3
       == inImg3d=many, maxNbCorners=9, featuresDistX=3, featuresDistY=3, featuresDistZ=3, nbStdDev=4, harrisK=0.005
       != many, 1.5, 9, 3 != many, 8, 3 != many, 9, 1 != many, 1, 9, 1e9, 3, 3, 3 != many, 9, 3, nbStdDev=2
       != many, 9, 3, cornerResponseType=0 != many, 9, 3, harrisK=0.02""",
    """houghLines2dImg: small == small, rhoStep=1, thetaMin=0, thetaMax=3.141592653589793, nbThetaBins=180, pixelThreshold=0
       != small, rhoStep=2 != small, thetaMin=1 != small, thetaMax=1 != small, nbThetaBins=90 != small, pixelThreshold=9""",
    """houghLines2d: edge == edge, rhoStep=1, thetaMin=0, thetaMax=3.141592653589793, nbThetaBins=180, pixelThreshold=0
       == edge, thresholdType=1, threshold=0.5, peakDist=10 != edge, rhoStep=2 != edge, thetaMin=1 != edge, thetaMax=1
       != edge, nbThetaBins=90 != edge, pixelThreshold=1 != edge, threshold=0.9 != edge, peakDist=2""",
    """houghLinesGradient2dImg: gx, gy == inGx=gx, inGy=gy, rhoStep=1, thetaMin=-numpy.pi, thetaMax=numpy.pi
       == gx, gy, nbThetaBins=360, pixelThreshold=0, tolerance=0.1 != gy, gx != gx, gy, rhoStep=2
       != gx, gy, thetaMin=0 != gx, gy, thetaMax=1 != gx, gy, nbThetaBins=90 != gx, gy, pixelThreshold=100
       != gx, gy, tolerance=0.2""",
    """houghLinesGradient2d: gx, gy == gx, gy, thresholdType=1, threshold=0.5, peakDist=10, tolerance=0.1
       != gy, gx != gx, gy, rhoStep=2 != gx, gy, thetaMin=0 != gx, gy, thetaMax=1
       != gx, gy, nbThetaBins=90 != gx, gy, pixelThreshold=100 != gx, gy, threshold=0.99 != gx, gy, peakDist=2
       != gx, gy, tolerance=0.5""",
    """houghCircles2dImg: gx, gy, 4, 12 == inGx=gx, inGy=gy, minRadius=4, maxRadius=12, circleIntensityType=2
       == gx, gy, 4, 12, maxAngleWithGradDir=0.1, nbMaxPtsPerCircle=4294967295 != gx, gy, 5, 12 != gx, gy, 4, 11 != gx, gy
       != gy, gx, 4, 12 != gx, gy, 4, 12, circleIntensityType=eCircleIntensityType.eCIT_Inward
       != gx, gy, 4, 12, maxAngleWithGradDir=0.3 != gx, gy, 4, 12, nbMaxPtsPerCircle=9""",
    """houghCirclesPhaseCoded2dImg: gx, gy, 4, 12 == gx, gy, 4, 12, circleIntensityType=2, maxAngleWithGradDir=0.1
       != gx, gy, 5, 12 != gx, gy, 4, 12, nbMaxPtsPerCircle=9""",
    """houghCircles2d: small, 4, 12 == inImg=small, minRadius=4, maxRadius=12, algoMethod=0, circleIntensityType=2
       == small, 4, 12, maxAngleWithGradDir=0.1, nbMaxPtsPerCircle=4294967295, absoluteThreshold=0, ratioOfMax=0.5
       == small, 4, 12, removeTooClose=True, distanceFactor=1 != small, 3, 12 != small, 4, 12, ratioOfMax=0.1
       != small, 4, 12, algoMethod=eHoughCircles2dAlgoMethod.eHCAM_PhaseCoded != small, 4, 12, circleIntensityType=1
       != small, 4, 12, maxAngleWithGradDir=0.4 != small, 4, 12, nbMaxPtsPerCircle=5 != small, 4, 12, absoluteThreshold=1e9
       != small, 4, 12, removeTooClose=False != small, 4, 12, distanceFactor=9 != inGx=gx, inGy=gy, minRadius=4, maxRadius=12""",
    """extractHoughPeaks2d: gx, gy == gx, gy, 0 == gx=gx, gy=gy, lowestMax=0 != gx, gy, 100 != gx, gx""",
    """computeBestCirclesRadiiFromGradMagImg2d: gx, gy, [[20, 18, 0], [9, 9, 0]], 2, 9
       == inGx=gx, inGy=gy, centers=numpy.array([[20, 18], [9, 9]]), minRadius=2, maxRadius=9, circleIntensityType=2
       == gx, gy, numpy.array([(20, 18), (9, 9)], [("X", "f8"), ("Y", "f8")]), 2, 9, maxAngleWithGradDir=0.1
       != gx, gy, [[20, 18], [10, 9]], 2, 9 != gx, gy, [[20, 18, 1], [9, 9, 0]], 2, 9 != gx, gy, [[20, 18], [9, 9]], 12, 15
       != gx, gy, [[20, 18], [9, 9]], 2, 9, circleIntensityType=1, maxAngleWithGradDir=0.8""",
    """extractRadiusFromHoughImg2d: gx, gy, [[20, 18]], 2, 9 == gx, gy, centers=[(20, 18, 0)], minRadius=2, maxRadius=9
       != gx, gy, [[20, 18]], 3, 9 != gx, gy, [[20, 18]], 2, 8 != gy, gx, [[20, 18]], 2, 9""",
    """houghSpheres3dImg: many, many, many, 1, 2 == inGx=many, inGy=many, inGz=many, minRadius=1, maxRadius=2
       == many, many, many, circleIntensityType=2, maxAngleWithGradDir=0.1, nbMaxPtsPerCircle=4294967295
       != many, many, many, 2, 2 != many[::-1], many, many, 1, 2 != many, many[::-1], many, 1, 2
       != many, many, many[::-1], 1, 2 != many, many, many, 1, 2, circleIntensityType=0
       != many, many, many, 1, 2, maxAngleWithGradDir=0.5 != many, many, many, 1, 2, nbMaxPtsPerCircle=9""",
    """houghSpheres3d: many, 1, 2 == inImg=many, minRadius=1, maxRadius=2, circleIntensityType=2, maxAngleWithGradDir=0.1
       == many, 1, 2, nbMaxPtsPerCircle=4294967295, absoluteThreshold=0, ratioOfMax=0.5, removeTooClose=True, distanceFactor=1
       == many, 1, 2, removeTooClose=False, distanceFactor=9 != many, 2, 2 != many, 1, 2, ratioOfMax=0.1
       != many, 1, 2, circleIntensityType=1 != many, 1, 2, maxAngleWithGradDir=0.4 != many, 1, 2, nbMaxPtsPerCircle=5
       != many, 1, 2, absoluteThreshold=1e9 != many, 1, 2, distanceFactor=9
       != inGx=many, inGy=many, inGz=many, minRadius=1, maxRadius=2""",
    """computeBestSpheresRadiiFromGradMagImg3d: many, many, many, [[9, 8, 2, 0], [4, 9, 1, 0]], 1, 4
       == inGx=many, inGy=many, inGz=many, centers=numpy.array([[9, 8, 2], [4, 9, 1]]), minRadius=1, maxRadius=4
       == many, many, many, numpy.array([(9, 8, 2), (4, 9, 1)], [("X", "f8"), ("Y", "f8"), ("Z", "f8")]), 1, 4
       == many, many, many, [[9, 8, 2], [4, 9, 1]], 1, 4, circleIntensityType=2, maxAngleWithGradDir=0.1, nbMaxPtsPerCircle=7
       != many, many, many, [[9, 8, 3], [4, 9, 1]], 1, 4 != many, many, many, [[9, 8, 2, 1], [4, 9, 1, 0]], 1, 4
       != many, many, many, [[9, 8, 2], [4, 9, 1]], 7, 9""",
    "maxL2Norm2Msr: gx, gy == in1=gx, in2=gy == gy, gx != gx, gx != gy, gy",
], ids=lambda calls: calls.partition(":")[0])
def test_argumentsReachTheLibrary(run, rng, calls):
    orvik_fd.setNbThreads(1)  # sums of floats depend on the order of threads
    function, _, calls = calls.partition(":")
    same, *others = ([f"({arguments.strip()})" for arguments in part.split("==")] for part in calls.split("!="))
    forms = [function] if function.startswith("gaussian") else [function, function + "_async"]
    names = {"numpy": numpy, "many": rng.integers(0, 20, (5, 20, 24)).astype(numpy.uint8)}
    expected = run(function + same[0], **names)
    assert not [(form, call) for form in forms for call in same if run(form + call, **names) != expected]
    assert not [call for (call,) in others if run(function + call, **names) == expected]


def test_gaussianGradient2dImgTellsAxesApart(small):
    columns = numpy.broadcast_to(small[20].astype(numpy.float32), (40, 56))  # which smoothing along y leaves as they are
    base, more, same = (orvik_fd.gaussianGradient2dImg(columns, *s)[0] for s in ((1.5, 1.5), (3, 1.5), (1.5, 3)))
    assert abs(more - base).max() > 1 > 1e-3 > abs(same - base).max()
    assert orvik_fd.gaussianGradient2dImg(small, 1.5, outX=numpy.empty_like(base))[1] is None


@pytest.mark.parametrize("call, dtypes", [
    ("cannyEdges2dImg(gx, gy, 1, outImg=out, lowThreshold=5, highThreshold=80)", ["bool", "uint8", "float32"]),
    ("cannyEdges2dImg(gx, gy, 0, out, lowThreshold=5, highThreshold=80)", ["bool", "uint8"]),
    ("harrisCorner2dImg(small, 1, out)", ["float32"]),
    ("houghCircles2dImg(gx, gy, 4, 12, outImg=out)", ["float32"]),
    ("houghCirclesPhaseCoded2dImg(gx, gy, 4, 12, outImImg=out)[1]", ["float32"]),
    ("gaussianGradient2dImg(small, 1.5, 1.5, 4, out)[0]", ["float32", "int16"]),
    ("gaussianGradient2dImg(small, 1.5, outY=out)[1]", ["float32", "int16"]),
])
def test_resultsAreWrittenWhereTheyAreWanted(run, small, call, dtypes):
    (expected,) = run(call, out=None)
    for dtype in dtypes:
        part = numpy.zeros((small.shape[0] * 2, small.shape[1] + 10), dtype)[::-2, 4:-6]
        assert run(call + " is out", out=part) == [True]
        assert (part == (numpy.rint(expected) if dtype == "int16" else expected)).all()


def test_extractLocalExtrema2d():
    picture = numpy.full((30, 41), 50, numpy.int16)
    picture[[10, 10, 15, 20, 20], [10, 13, 10, 30, 34]] = 90, 80, 70, 20, 40
    found = orvik_fd.extractLocalExtrema2d(picture, 2, 4, threshold=60)
    assert found.dtype.names == ("X", "Y", "Value") and found.tolist() == [(10, 10, 90), (13, 10, 80), (10, 15, 70)]
    assert orvik_fd.extractLocalExtrema2d(picture, 3, 4, threshold=60).tolist() == [(10, 10, 90), (10, 15, 70)]
    minima = orvik_fd.extractLocalExtrema2d(picture, 3, 3, localExtremumType=1, threshold=45)
    assert minima.tolist() == [(30, 20, 20), (34, 20, 40)]


def test_harrisCorner2dListsTheMaximaOfItsMeasure(small):
    response = orvik_fd.harrisCorner2dImg(small, 1.5)
    for dist, threshold in (((4, 4), -3e38), ((26, 4), -3e38), ((4, 4), 100)):
        expected = orvik_fd.extractLocalExtrema2d(response, *dist, threshold=threshold).tolist()
        assert expected and orvik_fd.harrisCorner2d(small, 1.5, len(expected), threshold, *dist).tolist() == expected
    assert orvik_fd.harrisCorner2d(numpy.broadcast_to(small[20], (40, 56)), 9, 3)["Value"].min() < 0, "edges are listed, too"


def test_houghLines2dImgTellsTypesApart():
    bytes = numpy.zeros((23, 30), numpy.uint8)
    bytes[4, 21] = 5
    pictures = bytes > 0, bytes, orvik_fd.asBinary(bytes), orvik_fd.asLabel(bytes), bytes.astype(numpy.int32)
    votes = [orvik_fd.houghLines2dImg(picture) for picture in pictures]
    assert [array.dtype for array in votes] == [numpy.uint32] * 3 + [numpy.float32, numpy.int32]
    assert [array[0].sum() for array in votes] == [1, 5, 5, 5, 5]


def test_houghLines2d():
    picture = numpy.zeros((101, 141), bool)
    rho, theta, y = 60.0, math.radians(30), numpy.arange(101)
    x = numpy.rint((rho - y * math.sin(theta)) / math.cos(theta)).astype(int)
    picture[y[x >= 0], x[x >= 0]] = True
    lines, votes = orvik_fd.houghLines2d(picture)
    assert lines.dtype.names == ("Rho", "Theta", "AccumulatorValue") and len(lines) == 1
    assert abs(lines["Rho"][0] - rho) <= 1 and abs(lines["Theta"][0] - theta) <= math.pi / 180
    assert lines["AccumulatorValue"][0] == votes.max() and (votes[:180] == orvik_fd.houghLines2dImg(picture)).all()
    absolute = orvik_fd.eHoughLinesThresholdType.eHLTT_Absolute
    same, none = (orvik_fd.houghLines2d(picture, thresholdType=absolute, threshold=votes.max() + i)[0] for i in (0, 1))
    assert same.tolist() == lines.tolist() and none.shape == (0,) and none.dtype == lines.dtype


def test_houghLinesGradient2dTellsTheSidesOfABarApart():
    bar = numpy.zeros((80, 100), numpy.float32)
    bar[:, 30:61] = 200
    gx, gy = orvik_fd.gaussianGradient2dImg(bar, 1)
    (left, right), votes = orvik_fd.houghLinesGradient2d(gx, gy, pixelThreshold=1, threshold=0.9)
    assert {round(left["Theta"]), round(right["Theta"])} == {0, -3} and votes.shape == (380, 2 * int(math.hypot(50, 40) + 1))
    sides = sorted(line["Rho"] * math.cos(line["Theta"]) for line in (left, right))
    assert abs(sides[0] - 29.5) <= 1 and abs(sides[1] - 60.5) <= 1


def test_houghCircles2dFindsDiscsAndCentresOutsideHaveNoRadius():
    y, x = numpy.mgrid[:120, :150]
    picture = 200 * (numpy.hypot(x - 40, y - 50) < 18.5) + 90 * (numpy.hypot(x - 100, y - 70) < 30.5)
    found = orvik_fd.houghCircles2d(picture.astype(numpy.uint8), 10, 40, circleIntensityType=1, ratioOfMax=0.3)
    assert found.dtype.names == ("X", "Y", "Radius", "Value") and found["X"].tolist() == [40, 100]
    assert found["Y"].tolist() == [50, 70] and abs(found["Radius"] - [18, 30]).max() <= 1
    gx, gy = orvik_fd.gaussianGradient2dImg(picture.astype(numpy.float32), 1)
    rows = orvik_fd.computeBestCirclesRadiiFromGradMagImg2d(gx, gy, [(40, 50), (-7, 50)], 10, 40)
    assert abs(rows["Radius"][0] - 18) <= 1 and numpy.isnan(list(rows[1])).all()
    assert len(orvik_fd.computeBestCirclesRadiiFromGradMagImg2d(gx, gy, [], 10, 40)) == 0
    for wrong in [[1, 2, 3, 4]], [1, 2], numpy.zeros(2, [("X", "f8")]), "centres":
        with pytest.raises((TypeError, ValueError), match="centers|could not convert"):
            orvik_fd.computeBestCirclesRadiiFromGradMagImg2d(gx, gy, wrong, 10, 40)
    with pytest.raises(TypeError, match="together"):
        orvik_fd.houghCircles2d(picture.astype(numpy.uint8), 10)


def test_houghSpheres3dFindsBallsAndCentresOutsideHaveNoRadius():
    z, y, x = numpy.mgrid[:40, :44, :60]
    distances = [numpy.sqrt((x - i) ** 2 + (y - j) ** 2 + (z - k) ** 2) for i, j, k in [(16, 20, 18), (45, 24, 22)]]
    picture = (200 * (distances[0] < 9) + 150 * (distances[1] < 12)).astype(numpy.uint8)
    found = orvik_fd.houghSpheres3d(picture, 5, 15, circleIntensityType=1, ratioOfMax=0.3)
    assert found.dtype.names == ("X", "Y", "Z", "Radius", "Value") and len(found) == 2
    order = found[numpy.argsort(found["X"])]
    assert abs(order["X"] - [16, 45]).max() <= 1 and abs(order["Y"] - [20, 24]).max() <= 1
    assert abs(order["Z"] - [18, 22]).max() <= 1 and abs(order["Radius"] - [9, 12]).max() <= 1
    assert list(orvik_fd.multiSlice_houghSpheres3d(numpy.stack([picture, picture]), 5, 15)) == [(0, 0, 0), (0, 1, 0)]
    labels = orvik_fd.houghSpheres3dLabelImg(found, picture)
    first = 1 + abs(found["X"] - 16).argmin()
    assert labels.dtype == numpy.uint8 and [labels[18, 20, 16], labels[22, 24, 45], labels[0, 0, 0]] == [first, 3 - first, 0]
    ofStack = orvik_fd.houghSpheres3dLabelImg({(0, 0, 0): [], (0, 1, 0): found}, numpy.stack([picture, picture]))
    assert not ofStack[0].any() and (ofStack[1] == labels).all()
    out = numpy.empty(picture.shape, numpy.uint16)
    assert orvik_fd.houghSpheres3dLabelImg_async([(16, 20, 18, 9)], picture, out).result() is out and out[18, 20, 16] == 1
    with pytest.raises(TypeError, match="spheres: rows of x, y, z, radius and perhaps a value"):
        orvik_fd.houghSpheres3dLabelImg([(16, 20, 18)], picture)
    g = orvik_fd.gaussianGradient3dImg(picture.astype(numpy.float32), 1)
    rows = orvik_fd.computeBestSpheresRadiiFromGradMagImg3d(*g, [(16, 20, 18), (5, 5, -7)], 5, 15)
    assert abs(rows["Radius"][0] - 9) <= 1 and numpy.isnan(list(rows[1])).all()
    with pytest.raises(TypeError, match="rows of x, y, z and perhaps a value"):
        orvik_fd.computeBestSpheresRadiiFromGradMagImg3d(*g, [(16, 20)], 5, 15)


@pytest.mark.parametrize("call", ["extractLocalExtrema2d(many, 3, 3)", "harrisCorner2d(many, 7, 3)", "houghLines2d(many)",
                                  "houghLinesGradient2d(many, many)", "houghCircles2d(many, 2, 7)",
                                  "extractHoughPeaks2d(many, many)"])
@pytest.mark.parametrize("shape", [(2,), (3, 2), (2, 3, 2)])  # z; c, z; t, c, z
def test_multiSliceFormsGiveAListForEachPlane(run, rng, shape, call):
    orvik_fd.setNbThreads(1)  # sums of floats depend on the order of threads
    many = rng.integers(0, 200, shape + (20, 24)).astype(numpy.uint8)
    for form in "multiSlice_" + call, "multiSlice_" + call.replace("(", "_async("):
        lists, *votes = run(form, many=many)
        assert len(lists) == math.prod(shape) and all(numpy.shape(array)[:-2] == shape for array in votes)
        for place in numpy.ndindex(*shape):
            index = place[::-1] + (0,) * (3 - len(place))
            assert lists[index].tolist() == run(call, many=many[place])[0]
    with pytest.raises(orvik_fd.Error, match="plane"):
        run(call, many=many)


def test_gaussianGradient3dImgIsWrittenWhereItIsWanted(rng):
    volume = rng.integers(0, 99, (7, 20, 24)).astype(numpy.uint8)
    expected = orvik_fd.gaussianGradient3dImg(volume, 1.5)
    out = numpy.zeros((14, 20, 40), numpy.float32)[::2, :, 3:27]
    x, y, z = orvik_fd.gaussianGradient3dImg(volume, 1.5, outZ=out)
    assert x is None and y is None and z is out and (out == expected[2]).all()
    assert not orvik_fd.gaussianGradient3dImg(volume[:1], 1.5)[2].any(), "along z there is one slice"
    with pytest.raises(TypeError, match="stdDev"):
        orvik_fd.gaussianGradient3dImg(volume, stdDev=1, stdDevZ=2)


def test_volumesHaveOneListEach(rng):
    many = rng.integers(0, 200, (3, 2, 5, 20, 24)).astype(numpy.int16)  # t, c, z, y, x
    lists = orvik_fd.multiSlice_extractLocalExtrema3d(many, 2, 2, 1)
    assert lists.keys() == {(0, c, t) for c in range(2) for t in range(3)}
    for (_, c, t), found in lists.items():
        assert found.dtype.names == ("X", "Y", "Z", "Value") and len(found) > 5
        assert found.tolist() == orvik_fd.extractLocalExtrema3d(many[t, c], 2, 2, 1).tolist()
        x, y, z = (found[name].astype(int) for name in "XYZ")
        assert (many[t, c][z, y, x] == found["Value"]).all() and many[t, c].max() == found["Value"][0]
    with pytest.raises(orvik_fd.Error, match="one volume is expected, not 6"):
        orvik_fd.extractLocalExtrema3d(many, 2, 2, 1)


def test_cornersOfVolumesAreThoseOfABox(rng):
    volume = numpy.zeros((20, 24, 28), numpy.uint8)
    volume[5:15, 6:18, 7:21] = 200
    lists = orvik_fd.multiSlice_harrisCorner3d(numpy.stack([volume, volume[::-1]]), 8, 4)
    assert lists.keys() == {(0, 0, 0), (0, 1, 0)}
    for found in lists.values():
        assert {tuple(corner)[:3] for corner in found.tolist()} == {(x, y, z) for x in (8, 19) for y in (7, 16) for z in (6, 13)}
    response = orvik_fd.harrisCorner3dImg(volume)
    assert response.max() == lists[0, 0, 0]["Value"][0] > 100
    assert orvik_fd.harrisCorner3dImg(volume[:4, :4, :4]).max() == pytest.approx(2 ** (-23 / 3), rel=1e-5)
    with pytest.raises(TypeError, match="takes featuresDist or featuresDistX, featuresDistY and featuresDistZ, not both"):
        orvik_fd.harrisCorner3d(volume, maxNbCorners=3, featuresDist=3, featuresDistZ=3)


def test_theExampleOfTheReadmeFindsTheSquare():
    found = {}
    exec(re.search(r"```python\n(.*?)```", (PACKAGE / "README.md").read_text(), re.DOTALL).group(1), found)  # as a reader would
    assert sorted(zip(found["corners"]["X"], found["corners"]["Y"])) == [(200, 100), (200, 299), (399, 100), (399, 299)]
    assert found["gx"].dtype == numpy.float32 and found["edges"].dtype == bool
    assert found["edges"][200, 199:201].sum() == 1 and len(found["lines"]) >= 4


def test_threadsAndKernelsAreForced(small):
    for n in 3, 0:
        orvik_fd.setNbThreads(n)
        assert orvik_fd.getNbThreads() == n or n == 0 and orvik_fd.getNbThreads() >= 1
    avx, sets = orvik_fd.eInstructionSet.eIS_Avx, orvik_fd.instructionSets()
    assert sets[0] == orvik_fd.eInstructionSet.eIS_Generic
    if avx not in sets:
        pytest.skip("this machine has no AVX")
    whole = small.astype(numpy.int16)  # AVX serves floats alone
    for forced in avx, [avx]:
        orvik_fd.forceInstructionSets("CannyEdges2dImgLvl3", forced)
        with pytest.raises(orvik_fd.Error, match="avx"):
            orvik_fd.cannyEdges2dImg(whole, whole, lowThreshold=5, highThreshold=10)
        orvik_fd.releaseForcedInstructionSets("CannyEdges2dImgLvl3")
        orvik_fd.cannyEdges2dImg(whole, whole, lowThreshold=5, highThreshold=10)


def test_enumerationsAreThoseOfTheLibrary():
    headers = PACKAGE.parent / "frame"
    text = (headers / "attr" / "Enumerations.h").read_text() + (headers / "core" / "InstructionSet.h").read_text()
    ofLibrary = {name: {member: int(value) for member, value in re.findall(r"(\w+) = (\d+)", body)}
                 for name, body in re.findall(r"enum (?:ORVIK_API )?(\w+) : [\w ]+\n\{(.*?)\};", text, re.DOTALL)}
    ofPackage = [one for one in vars(orvik_fd).values() if isinstance(one, type) and issubclass(one, enum.IntEnum)]
    assert {one.__name__: {member.name: int(member) for member in one} for one in ofPackage}.items() <= ofLibrary.items()
    assert len(ofPackage) == 7
