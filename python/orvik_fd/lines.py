"""Lines."""

from __future__ import annotations

from typing import Any, Optional, Tuple

from .calls import Progress, Run, background, everyPlane, everyPlaneBackground, foreground, newRun
from .enumerations import eHoughLinesThresholdType, memberOf
from .extrema import ListOfEach
from .images import Array

__all__ = [
    "houghLines2dImg", "houghLines2dImg_async",
    "houghLines2d", "houghLines2d_async",
    "multiSlice_houghLines2d", "multiSlice_houghLines2d_async",
    "houghLinesGradient2dImg", "houghLinesGradient2dImg_async",
    "houghLinesGradient2d", "houghLinesGradient2d_async",
    "multiSlice_houghLinesGradient2d", "multiSlice_houghLinesGradient2d_async",
]

Lines = Tuple[Array, Array]
LinesOfEach = Tuple[ListOfEach, Array]


def _setExtraction(run: Run[Any, Any], thresholdType: Any, threshold: Optional[float], peakDist: Optional[int]) -> None:
    run.set(
        "InOptHoughLinesExtractionParams",
        threshold=threshold,
        peakDist=peakDist,
        **memberOf(eHoughLinesThresholdType, thresholdType=thresholdType),
    )


def _houghLines2dImg(
    inGreyImg: Array,
    *,
    rhoStep: Optional[float] = None,
    thetaMin: Optional[float] = None,
    thetaMax: Optional[float] = None,
    nbThetaBins: Optional[int] = None,
    pixelThreshold: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Counts votes for the lines of an image: each pixel above a threshold votes with its value for every line through it.

    Row t of the result stands for the angle theta = thetaMin + t * (thetaMax - thetaMin) / nbThetaBins of the line's
    normal, column i for the distance rho = (i - width // 2) * rhoStep, with the width of the result, of the line from the
    centre of the plane, the pixel (W // 2, H // 2). A vote is parted between the two columns that its rho lies between.
    After Hough, US patent 3069654, 1962, in the form of Duda, Hart, CACM 15(1), 1972.

    Arguments:
        inGreyImg: of shape (y, x) to (t, c, z, y, x), any dtype that images have; every plane by itself: edges as a rule,
            where every edge pixel has 1 vote when they are bool. NaN does not vote.
        rhoStep: width of a bin in pixels, above 0. Default: 1.
        thetaMin, thetaMax: angles in radians; thetaMax itself is outside. Default: 0 and pi.
        nbThetaBins: number of angles. Default: 180.
        pixelThreshold: pixels above it vote. Default: 0.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives an array with nbThetaBins rows for each plane: int32 for signed integers, uint32 for unsigned integers and bool,
    float32 for float32 and 8-bit labels. Whole numbers that do not fit wrap.

    Raises Error for a result without bins or with too many; MemoryError with its size when there is no memory for it;
    TypeError and ValueError for arguments that no image or number can be made of.
    """
    run: Run[Array, Array] = newRun("fd::HoughLines2dImgLvl1", progress)
    run.set("InGreyImg2d", inGreyImg=inGreyImg)
    run.set("InOptHoughLinesImgParams", rhoStep=rhoStep, thetaMin=thetaMin, thetaMax=thetaMax, nbThetaBins=nbThetaBins,
            pixelThreshold=pixelThreshold)
    return run.returning("OutImg")


def _houghLines2d(
    inGreyImg: Array,
    *,
    rhoStep: Optional[float] = None,
    thetaMin: Optional[float] = None,
    thetaMax: Optional[float] = None,
    nbThetaBins: Optional[int] = None,
    pixelThreshold: Optional[float] = None,
    thresholdType: Optional[eHoughLinesThresholdType] = None,
    threshold: Optional[float] = None,
    peakDist: Optional[int] = None,
    progress: Optional[Progress] = None,
) -> Run[Lines, LinesOfEach]:
    """Lists the lines of an image of edges.

    Votes for lines are counted as by houghLines2dImg; a line is a bin that has no higher one within peakDist bins along rho
    and along theta, and whose votes reach the threshold. Where the angles cover 0 to pi or more, the result goes on for
    2 * peakDist rows with the first ones, mirrored, since theta + pi is the same line with -rho.

    Arguments:
        inGreyImg: one plane, of shape (y, x), any dtype that images have: edges as a rule.
        rhoStep, thetaMin, thetaMax, nbThetaBins, pixelThreshold: as for houghLines2dImg, with its defaults.
        thresholdType: eHLTT_Absolute, eHLTT_Ratio or eHLTT_Quantile: whether the threshold tells votes, a share of the
            highest bin's votes, or a share of the bins that have at most as many. Default: eHLTT_Ratio.
        threshold: see thresholdType. Default: 0.5.
        peakDist: in bins; as many as there are angles, or more, leave no line. Default: 10.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a pair: a structured array with fields Rho, Theta and AccumulatorValue, those with most votes first, and the
    array of votes with the rows that go on. A line has x * cos(Theta) + y * sin(Theta) = Rho, from the centre of the first
    pixel of the plane, in pixels and radians. The multiSlice_ form has a dictionary of lists in the first place.

    Raises Error for an image of several planes (use the multiSlice_ form), for votes without bins or with too many;
    MemoryError with their size when there is no memory for them; TypeError and ValueError for arguments that no image,
    number or type can be made of.
    """
    run: Run[Lines, LinesOfEach] = newRun("fd::HoughLines2dLvl1", progress)
    run.set("InGreyImg2d", inGreyImg=inGreyImg)
    run.set("InOptHoughLinesImgParams", rhoStep=rhoStep, thetaMin=thetaMin, thetaMax=thetaMax, nbThetaBins=nbThetaBins,
            pixelThreshold=pixelThreshold)
    _setExtraction(run, thresholdType, threshold, peakDist)
    return run.returning("OutPIHoughLines2dPpties", "OutOptImg")


def _houghLinesGradient2dImg(
    inGx: Array,
    inGy: Array,
    *,
    rhoStep: Optional[float] = None,
    thetaMin: Optional[float] = None,
    thetaMax: Optional[float] = None,
    nbThetaBins: Optional[int] = None,
    pixelThreshold: Optional[float] = None,
    tolerance: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Counts the votes of gradients for the lines that they are across.

    As houghLines2dImg, but a pixel votes with the magnitude of its gradient, and only for the angles theta within a
    tolerance of the gradient's own: a line has as its normal the direction in which values rise. So theta and theta + pi
    are two lines, the two sides of a bar. The window of angles crosses from pi to -pi.
    After O'Gorman, Clowes, "Finding picture edges through collinearity of feature points", IEEE Trans. Computers 25(4), 1976.

    Arguments:
        inGx, inGy: gradient, of equal shape, (y, x) to (t, c, z, y, x), and dtype; every plane by itself.
        rhoStep: width of a bin in pixels, above 0. Default: 1.
        thetaMin, thetaMax: angles in radians; thetaMax itself is outside. Default: -pi and pi.
        nbThetaBins: number of angles. Default: 360.
        pixelThreshold: gradients of a greater magnitude vote. Default: 0.
        tolerance: in radians, a number. With pi or more every gradient votes for the angles from 0 to pi, deliberately not
            for the whole turn; with a negative one for all but the window. Default: 0.1.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a float32 array with nbThetaBins rows for each plane, in units of the gradient. Its sums depend on the order in
    which threads add, and a gradient at the limit of its window may have one angle more or less with another set of
    instructions.

    Raises Error for gradients of different shapes or dtypes, a tolerance that is no number, a result without bins or with
    too many; MemoryError with its size when there is no memory for it; TypeError and ValueError for arguments that no image
    or number can be made of.
    """
    run: Run[Array, Array] = newRun("fd::HoughLinesGradient2dImgLvl1", progress)
    run.set("InGxGreyImg2d", inGx=inGx)
    run.set("InGyGreyImg2d", inGy=inGy)
    run.set("InOptHoughLinesGradientImgParams", rhoStep=rhoStep, thetaMin=thetaMin, thetaMax=thetaMax,
            nbThetaBins=nbThetaBins, pixelThreshold=pixelThreshold)
    run.set("InOptHoughLinesOrientationTolerance", tolerance=tolerance)
    return run.returning("OutRealImg")


def _houghLinesGradient2d(
    inGx: Array,
    inGy: Array,
    *,
    rhoStep: Optional[float] = None,
    thetaMin: Optional[float] = None,
    thetaMax: Optional[float] = None,
    nbThetaBins: Optional[int] = None,
    pixelThreshold: Optional[float] = None,
    thresholdType: Optional[eHoughLinesThresholdType] = None,
    threshold: Optional[float] = None,
    peakDist: Optional[int] = None,
    tolerance: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Lines, LinesOfEach]:
    """Lists the lines of a gradient.

    Votes are counted as by houghLinesGradient2dImg, lines are found among them as by houghLines2d, with a turn that is
    twice as long: a line and its opposite, of theta + pi and -rho, are two, the sides of a bar. Where the angles cover -pi
    to pi or more, the result goes on for 2 * peakDist rows with the first ones, mirrored along rho.

    Arguments:
        inGx, inGy: gradient, one plane, of equal shape (y, x) and dtype.
        rhoStep, thetaMin, thetaMax, nbThetaBins, pixelThreshold, tolerance: as for houghLinesGradient2dImg, with its
            defaults.
        thresholdType, threshold, peakDist: as for houghLines2d, with its defaults.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a pair as houghLines2d does: lines with Rho, Theta and AccumulatorValue, those with most votes first, and the
    array of votes with the rows that go on. Values rise across a line in the direction of its Theta.

    Raises Error for an image of several planes (use the multiSlice_ form), and for what houghLinesGradient2dImg refuses.
    """
    run: Run[Lines, LinesOfEach] = newRun("fd::HoughLinesGradient2dLvl1", progress)
    run.set("InGxGreyImg2d", inGx=inGx)
    run.set("InGyGreyImg2d", inGy=inGy)
    run.set("InOptHoughLinesGradientImgParams", rhoStep=rhoStep, thetaMin=thetaMin, thetaMax=thetaMax,
            nbThetaBins=nbThetaBins, pixelThreshold=pixelThreshold)
    _setExtraction(run, thresholdType, threshold, peakDist)
    run.set("InOptHoughLinesOrientationTolerance", tolerance=tolerance)
    return run.returning("OutPIHoughLines2dPpties", "OutOptRealImg")


houghLines2dImg = foreground(_houghLines2dImg)
houghLines2dImg_async = background(_houghLines2dImg)
houghLines2d = foreground(_houghLines2d)
houghLines2d_async = background(_houghLines2d)
multiSlice_houghLines2d = everyPlane(_houghLines2d)
multiSlice_houghLines2d_async = everyPlaneBackground(_houghLines2d)
houghLinesGradient2dImg = foreground(_houghLinesGradient2dImg)
houghLinesGradient2dImg_async = background(_houghLinesGradient2dImg)
houghLinesGradient2d = foreground(_houghLinesGradient2d)
houghLinesGradient2d_async = background(_houghLinesGradient2d)
multiSlice_houghLinesGradient2d = everyPlane(_houghLinesGradient2d)
multiSlice_houghLinesGradient2d_async = everyPlaneBackground(_houghLinesGradient2d)
