"""Circles, and the stages that find them."""

from __future__ import annotations

from typing import Any, Optional, Sequence, Tuple

import numpy

from .calls import Progress, Run, background, everyPlane, everyPlaneBackground, foreground, named, newRun
from .enumerations import eCircleIntensityType, eHoughCircles2dAlgoMethod, memberOf
from .extrema import ListOfEach
from .images import Array

__all__ = [
    "houghCircles2dImg", "houghCircles2dImg_async",
    "houghCirclesPhaseCoded2dImg", "houghCirclesPhaseCoded2dImg_async",
    "houghCircles2d", "houghCircles2d_async",
    "multiSlice_houghCircles2d", "multiSlice_houghCircles2d_async",
    "extractHoughPeaks2d", "extractHoughPeaks2d_async",
    "multiSlice_extractHoughPeaks2d", "multiSlice_extractHoughPeaks2d_async",
    "computeBestCirclesRadiiFromGradMagImg2d", "computeBestCirclesRadiiFromGradMagImg2d_async",
    "extractRadiusFromHoughImg2d", "extractRadiusFromHoughImg2d_async",
]

Pair = Tuple[Array, Array]


def _setRings(run: Run[Any, Any], minRadius: Optional[int], maxRadius: Optional[int], circleIntensityType: Any,
              maxAngleWithGradDir: Optional[float], nbMaxPtsPerCircle: Optional[int]) -> None:
    if (minRadius is None) != (maxRadius is None):
        raise TypeError("minRadius and maxRadius are given together, or neither of them")
    run.set("InOptHoughCirclesRadiusRange", minRadius=minRadius, maxRadius=maxRadius)
    run.set("InOptCircleIntensityType", **memberOf(eCircleIntensityType, circleIntensityType=circleIntensityType))
    run.set("InOptMaxAngleWithGradDir", maxAngleWithGradDir=maxAngleWithGradDir)
    run.set("InOptNbMaxPtsPerCircle", nbMaxPtsPerCircle=nbMaxPtsPerCircle)


def _rowsOf(centers: Any, axes: Sequence[str] = "XY", name: str = "centers") -> Any:
    """Coordinates and Value of centres: a structured array with such fields, the last one if it has it, or rows of coordinates
    and perhaps a value."""
    array = numpy.asarray(centers)
    if array.dtype.names:
        if not set(axes) <= set(array.dtype.names):
            raise TypeError(f"{name}: fields {' and '.join(axes)} are expected, not {', '.join(array.dtype.names)}")
        value = array["Value"] if "Value" in array.dtype.names else numpy.zeros(array.shape)
        return numpy.stack([array[axis] for axis in axes] + [value], axis=-1).astype(numpy.float64)
    nbLeaves = len(axes) + 1
    array = array.astype(numpy.float64).reshape(-1, nbLeaves) if array.size == 0 else array.astype(numpy.float64)
    if array.ndim == 2 and array.shape[1] == len(axes):
        array = numpy.column_stack([array, numpy.zeros(len(array))])
    if array.ndim != 2 or array.shape[1] != nbLeaves:
        columns = ", ".join(axis.lower() for axis in axes)
        raise TypeError(f"{name}: rows of {columns} and perhaps a value are expected, not an array of shape {array.shape}")
    return array


def _houghCircles2dImg(
    inGx: Array,
    inGy: Array,
    minRadius: Optional[int] = None,
    maxRadius: Optional[int] = None,
    *,
    circleIntensityType: Optional[eCircleIntensityType] = None,
    maxAngleWithGradDir: Optional[float] = None,
    nbMaxPtsPerCircle: Optional[int] = None,
    outImg: Optional[Array] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Scores each pixel as the centre of a circle, from the gradient on rings about it.

    The score is the sum, over all radii, of the mean over the ring of the gradient's share along the radius, where gradient
    and radius differ by no more than maxAngleWithGradDir. A ring of radius r has the pixels whose distance is r or more, and
    below r + 1.
    After Kimme, Ballard, Sklansky, "Finding circles by an array of accumulators", CACM 18(2), 1975, in gather form.

    Arguments:
        inGx, inGy: gradient, of equal shape and dtype, (y, x) to (t, c, z, y, x); every plane by itself. Reads 0 outside.
        minRadius, maxRadius: whole pixels, from 1 on; narrowed silently to half of the smaller side. Default: from 1 to that
            half.
        circleIntensityType: eCIT_Outward for dark circles, eCIT_Inward for bright ones, eCIT_Both. Default: eCIT_Both.
        maxAngleWithGradDir: radians; the score is flat within radius * sin(angle) of a centre. 0 gives zeros. Default: 0.1.
        nbMaxPtsPerCircle: pixels that rings are thinned to, spread evenly over the angle; 0 gives zeros. Default: all.
        outImg: array of that shape, float32, that the scores are written to. Default: a new one.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives an array of float32 in units of the gradient. An infinite gradient makes NaN of all pixels whose rings reach it.

    Raises Error for shapes or dtypes that differ, a maxRadius below 0, rings that take more memory than there is; TypeError
    and ValueError for arguments that no image, number or type can be made of.
    """
    run: Run[Array, Array] = newRun("fd::HoughCircles2dImgLvl1", progress)
    run.set("InGxGreyImg2d", inGx=inGx)
    run.set("InGyGreyImg2d", inGy=inGy)
    _setRings(run, minRadius, maxRadius, circleIntensityType, maxAngleWithGradDir, nbMaxPtsPerCircle)
    run.give("OutRealImg", outImg=outImg)
    return run.returning("OutRealImg")


def _houghCirclesPhaseCoded2dImg(
    inGx: Array,
    inGy: Array,
    minRadius: Optional[int] = None,
    maxRadius: Optional[int] = None,
    *,
    circleIntensityType: Optional[eCircleIntensityType] = None,
    maxAngleWithGradDir: Optional[float] = None,
    nbMaxPtsPerCircle: Optional[int] = None,
    outRealImg: Optional[Array] = None,
    outImImg: Optional[Array] = None,
    progress: Optional[Progress] = None,
) -> Run[Pair, Pair]:
    """Scores each pixel as the centre of a circle by a complex number: its modulus tells the support, its angle the radius.

    As houghCircles2dImg, but what a pixel of a ring adds is multiplied by exp(2 pi i (f - minRadius) / (maxRadius -
    minRadius)), with its exact distance f. A single radius divides by zero: the scores are NaN.
    After Atherton, Kerbyson, "Size invariant circle detection", Image and Vision Computing 17(11), 1999.

    Arguments:
        inGx, inGy, minRadius, maxRadius, circleIntensityType, maxAngleWithGradDir, nbMaxPtsPerCircle, progress: as for
            houghCircles2dImg.
        outRealImg, outImImg: arrays of that shape, float32, that the scores are written to. Default: new ones.

    Gives a pair of arrays of float32, the real and the imaginary part.

    Raises as houghCircles2dImg does.
    """
    run: Run[Pair, Pair] = newRun("fd::HoughCirclesPhaseCoded2dImgLvl1", progress)
    run.set("InGxGreyImg2d", inGx=inGx)
    run.set("InGyGreyImg2d", inGy=inGy)
    _setRings(run, minRadius, maxRadius, circleIntensityType, maxAngleWithGradDir, nbMaxPtsPerCircle)
    run.give("OutComplexRealImg", outRealImg=outRealImg)
    run.give("OutComplexImImg", outImImg=outImImg)
    return run.returning("OutComplexRealImg", "OutComplexImImg")


def _houghCircles2d(
    inImg: Optional[Array] = None,
    minRadius: Optional[int] = None,
    maxRadius: Optional[int] = None,
    *,
    inGx: Optional[Array] = None,
    inGy: Optional[Array] = None,
    algoMethod: Optional[eHoughCircles2dAlgoMethod] = None,
    circleIntensityType: Optional[eCircleIntensityType] = None,
    maxAngleWithGradDir: Optional[float] = None,
    nbMaxPtsPerCircle: Optional[int] = None,
    absoluteThreshold: Optional[float] = None,
    ratioOfMax: Optional[float] = None,
    removeTooClose: Optional[bool] = None,
    distanceFactor: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, ListOfEach]:
    """Lists the circles of a plane.

    Pixels are scored as centres by houghCircles2dImg, from gradients that are given, or made of a grey image by Gaussian
    derivatives of standard deviation 1. A centre is a pixel whose score is above that of its eight neighbours and reaches
    both thresholds; its radius is the whole one whose ring carries most gradient. Circles that are too close to a stronger
    one are left out. The phase-coded method reads real radii from the angle of a complex score instead.

    Arguments:
        inImg: grey image, one plane of shape (y, x), any dtype that images have; or, instead:
        inGx, inGy: its gradient, of equal shape and dtype.
        minRadius, maxRadius: whole pixels, from 1 on; narrowed silently to half of the smaller side. Default: from 1 to that
            half. A single radius gives no circles by the phase-coded method.
        algoMethod: eHCAM_Standard or eHCAM_PhaseCoded. Default: eHCAM_Standard.
        circleIntensityType: eCIT_Outward for dark circles, eCIT_Inward for bright ones, eCIT_Both. Default: eCIT_Both.
        maxAngleWithGradDir: radians between gradient and radius. Default: 0.1.
        nbMaxPtsPerCircle: pixels that rings are thinned to; 0 gives no circles. Default: all.
        absoluteThreshold: lowest score of a centre, in units of the gradient. Default: 0.
        ratioOfMax: the same as a share of the greatest score. Default: 0.5.
        removeTooClose: whether to leave out circles that are too close to stronger ones. Default: True.
        distanceFactor: of that: with 1 a centre must not lie in a stronger circle, with 2 the discs must not overlap.
            Default: 1.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a structured array with fields X, Y, Radius, in pixels from the centre of the first one, and Value, the score; the
    strongest first. True radii are about half a pixel larger than whole ones.

    Raises Error for an image of several planes (use the multiSlice_ form), both or neither of an image and gradients, shapes
    or dtypes that differ, a maxRadius below 0, rings that take more memory than there is; TypeError and ValueError for
    arguments that no image, number or type can be made of.
    """
    run: Run[Array, ListOfEach] = newRun("fd::HoughCircles2dLvl1", progress)
    if inImg is not None:
        run.set("InOptGreyImg2d", inImg=inImg)
    if inGx is not None:
        run.set("InOptGxGreyImg2d", inGx=inGx)
    if inGy is not None:
        run.set("InOptGyGreyImg2d", inGy=inGy)
    _setRings(run, minRadius, maxRadius, circleIntensityType, maxAngleWithGradDir, nbMaxPtsPerCircle)
    run.set("InOptHoughCircles2dAlgoMethod", **memberOf(eHoughCircles2dAlgoMethod, algoMethod=algoMethod))
    run.set("InOptAccumIntensityThreshold", absoluteThreshold=absoluteThreshold, ratioOfMax=ratioOfMax)
    run.set("InOptRemoveTooCloseCirclesParams", enabled=named("removeTooClose", removeTooClose),
            distanceFactor=distanceFactor)
    return run.returning("OutPIHoughCircles2dPpties")


def _extractHoughPeaks2d(
    gx: Array, gy: Array, lowestMax: float = 0.0, *, progress: Optional[Progress] = None
) -> Run[Array, ListOfEach]:
    """Lists the peaks of the modulus of two components, such as the real and the imaginary part of scores.

    A pixel is a peak when its modulus is above that of its eight neighbours and not below lowestMax. Outside both are 0.

    Arguments:
        gx, gy: one plane each, of shape (y, x), of equal shape and dtype.
        lowestMax: compared as a 32-bit float. Default: 0.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a structured array with fields X, Y and Value, the modulus; the highest first.

    Raises Error for images of several planes (use the multiSlice_ form), shapes or dtypes that differ; TypeError and
    ValueError for arguments that no image or number can be made of.
    """
    run: Run[Array, ListOfEach] = newRun("fd::ExtractHoughPeaks2dLvl1", progress)
    run.set("InGxGreyImg2d", gx=gx)
    run.set("InGyGreyImg2d", gy=gy)
    run.set("InOptLowestMax", lowestMax=lowestMax)
    return run.returning("OutPIPixels2d")


def _computeBestCirclesRadiiFromGradMagImg2d(
    inGx: Array,
    inGy: Array,
    centers: Any,
    minRadius: int,
    maxRadius: int,
    *,
    circleIntensityType: Optional[eCircleIntensityType] = None,
    maxAngleWithGradDir: float = 0.1,
    nbMaxPtsPerCircle: int = 4294967295,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Finds for each centre the whole radius whose ring carries most gradient along the radius.

    Arguments:
        inGx, inGy: one plane of the gradient, of equal shape (y, x) and dtype; reads 0 outside.
        centers: rows of x, y and perhaps a value, or a structured array with such fields, as lists of features are.
        minRadius, maxRadius: the radii that are tried, whole pixels, not narrowed to the image.
        circleIntensityType, maxAngleWithGradDir, nbMaxPtsPerCircle: as for houghCircles2dImg, with its defaults.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a structured array with fields X, Y, Radius and Value, a row for each centre, in their order; NaN for those outside
    the image. Of equal radii the smaller one is taken, and the smallest where none has any gradient.

    Raises Error for shapes or dtypes that differ, several planes, a maxRadius below 0, rings that take more memory than
    there is; TypeError and ValueError for arguments that no image, number, type or list can be made of.
    """
    run: Run[Array, Array] = newRun("fd::ComputeBestCirclesRadiiFromGradMagImg2dLvl1", progress)
    run.set("InGxSingleGreyImg2d", inGx=inGx)
    run.set("InGySingleGreyImg2d", inGy=inGy)
    run.setList("InHoughCircles2dCenters", centers=_rowsOf(centers))
    run.set("InHoughCirclesRadiusRange", minRadius=minRadius, maxRadius=maxRadius)
    run.set("InOptCircleIntensityType", **memberOf(eCircleIntensityType, circleIntensityType=circleIntensityType))
    run.set("InMaxAngleWithGradDir", maxAngleWithGradDir=maxAngleWithGradDir)
    run.set("InNbMaxPtsPerCircle", nbMaxPtsPerCircle=nbMaxPtsPerCircle)
    return run.returning("OutHoughCircles2dPpties")


def _extractRadiusFromHoughImg2d(
    inRealImg: Array,
    inImImg: Array,
    centers: Any,
    minRadius: int,
    maxRadius: int,
    *,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Reads the radii of circles from the angles of complex scores, see houghCirclesPhaseCoded2dImg, at their centres.

    Arguments:
        inRealImg, inImImg: one plane each, of equal shape (y, x) and dtype.
        centers: as for computeBestCirclesRadiiFromGradMagImg2d.
        minRadius, maxRadius: those that the scores were made with, as they were narrowed to the image.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a structured array with fields X, Y, Radius and Value, a row for each centre, in their order; NaN for those outside
    the image.

    Raises Error for shapes or dtypes that differ and several planes; TypeError and ValueError for arguments that no image,
    number or list can be made of.
    """
    run: Run[Array, Array] = newRun("fd::ExtractRadiusFromHoughImgLvl1", progress)
    run.set("InSingleGreyComplexRealImg2d", inRealImg=inRealImg)
    run.set("InSingleGreyComplexImImg2d", inImImg=inImImg)
    run.setList("InHoughCircles2dCenters", centers=_rowsOf(centers))
    run.set("InHoughCirclesRadiusRange", minRadius=minRadius, maxRadius=maxRadius)
    return run.returning("OutHoughCircles2dPpties")


houghCircles2dImg = foreground(_houghCircles2dImg)
houghCircles2dImg_async = background(_houghCircles2dImg)
houghCirclesPhaseCoded2dImg = foreground(_houghCirclesPhaseCoded2dImg)
houghCirclesPhaseCoded2dImg_async = background(_houghCirclesPhaseCoded2dImg)
houghCircles2d = foreground(_houghCircles2d)
houghCircles2d_async = background(_houghCircles2d)
multiSlice_houghCircles2d = everyPlane(_houghCircles2d)
multiSlice_houghCircles2d_async = everyPlaneBackground(_houghCircles2d)
extractHoughPeaks2d = foreground(_extractHoughPeaks2d)
extractHoughPeaks2d_async = background(_extractHoughPeaks2d)
multiSlice_extractHoughPeaks2d = everyPlane(_extractHoughPeaks2d)
multiSlice_extractHoughPeaks2d_async = everyPlaneBackground(_extractHoughPeaks2d)
computeBestCirclesRadiiFromGradMagImg2d = foreground(_computeBestCirclesRadiiFromGradMagImg2d)
computeBestCirclesRadiiFromGradMagImg2d_async = background(_computeBestCirclesRadiiFromGradMagImg2d)
extractRadiusFromHoughImg2d = foreground(_extractRadiusFromHoughImg2d)
extractRadiusFromHoughImg2d_async = background(_extractRadiusFromHoughImg2d)
