"""Corners."""

from __future__ import annotations

from typing import Dict, Optional

import numpy

from .calls import (
    Progress, Run, background, everyPlane, everyPlaneBackground, everyVolume, foreground, named, newRun, shortForms,
)
from .enumerations import eCornerResponseType, memberOf
from .extrema import ListOfEach
from .images import Array

__all__ = [
    "harrisCorner2dImg", "harrisCorner2dImg_async",
    "harrisCorner2d", "harrisCorner2d_async",
    "multiSlice_harrisCorner2d", "multiSlice_harrisCorner2d_async",
    "harrisCorner3dImg", "harrisCorner3dImg_async",
    "harrisCorner3d", "harrisCorner3d_async",
    "multiSlice_harrisCorner3d", "multiSlice_harrisCorner3d_async",
]

#: No threshold: what every number reaches.
_LOWEST = float(numpy.finfo(numpy.float32).min)


def _harrisCorner2dImg(
    inImg: Array,
    inOptGradStdDev: Optional[float] = None,
    outImg: Optional[Array] = None,
    *,
    nbStdDev: Optional[float] = None,
    cornerResponseType: Optional[eCornerResponseType] = None,
    harrisK: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Measures at each pixel of each plane how much the image changes in every direction, as it does at corners.

    With the structure tensor (xx, xy; xy, yy), the products of the Gaussian gradient smoothed by the same Gaussian: the
    Harris measure r = xx * yy - xy^2 - harrisK * (xx + yy)^2, of which the result is sqrt(r), or -sqrt(-r) where r is
    below 0; or the smaller eigenvalue. After C. Harris, M. Stephens, "A combined corner and edge detector", Alvey Vision
    Conference, 1988, and J. Shi, C. Tomasi, "Good features to track", IEEE CVPR, 1994.

    Arguments:
        inImg: of shape (y, x) to (t, c, z, y, x), any dtype that images have; every plane by itself. Outside a plane its
            edge sample is repeated, and so are the products of its gradients.
        inOptGradStdDev: standard deviation of gradient and smoothing, in pixels, finite and above 0. Default: 1.
        outImg: an array of float32 of that shape that the result is written to. Default: a new one.
        nbStdDev: standard deviations that the kernels cover on each side, finite and above 0. Default: 4.
        cornerResponseType: eCRT_Harris or eCRT_MinEigenvalue. Default: eCRT_Harris.
        harrisK: the constant of the Harris measure; the eigenvalue does not read it. Default: 0.04.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives an array of float32 of that shape, in units of the squared sample per squared pixel: above 0 at corners, below 0
    at edges.

    Raises Error for a deviation or coverage that makes no kernel and for shapes that differ; TypeError and ValueError for
    arguments that no image, number or type can be made of.
    """
    run: Run[Array, Array] = newRun("fd::HarrisCorner2dImgLvl1", progress)
    run.set("InImg", inImg=inImg)
    _setMeasure(run, inOptGradStdDev, nbStdDev, cornerResponseType, harrisK)
    run.give("OutImg", outImg=outImg)
    return run.returning("OutImg")


@shortForms(
    ("inImg", "maxNbCorners", "featuresDist"),
    ("inImg", "inOptGradStdDev", "maxNbCorners", "featuresDist"),
    unless=("featuresDistX", "featuresDistY"),
)
def _harrisCorner2d(
    inImg: Array,
    inOptGradStdDev: Optional[float] = None,
    maxNbCorners: Optional[int] = None,
    threshold: Optional[float] = None,
    featuresDistX: Optional[int] = None,
    featuresDistY: Optional[int] = None,
    *,
    featuresDist: Optional[int] = None,
    nbStdDev: Optional[float] = None,
    cornerResponseType: Optional[eCornerResponseType] = None,
    harrisK: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, ListOfEach]:
    """Lists the corners of a plane: the local maxima of its corner response (see harrisCorner2dImg), the strongest first.

    A pixel is a corner when no response in the rectangle of 2 * featuresDistX + 1 columns and 2 * featuresDistY + 1 lines
    about it is larger; of equal ones the first in scan order stays. Two short forms are called with positional arguments:
    harrisCorner2d(inImg, maxNbCorners, featuresDist) and
    harrisCorner2d(inImg, inOptGradStdDev, maxNbCorners, featuresDist).

    Arguments:
        inImg: one plane, of shape (y, x), any dtype that images have.
        inOptGradStdDev, nbStdDev, cornerResponseType, harrisK: as for harrisCorner2dImg, with its defaults.
        maxNbCorners: most corners that are listed; 0 lists none. Always to be given.
        threshold: least response that is listed, in the unit of harrisCorner2dImg. Default: none, so that on an image with
            few corners faint ones and such below 0 are listed.
        featuresDistX, featuresDistY: half-sizes of the rectangle in pixels; 0 looks at no neighbours on that axis.
            What exceeds the image, up to 4294967295, means all of it.
        featuresDist: both of them. This or the two are always to be given.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a structured array with fields X, Y (column and line, whole numbers at the centres of pixels) and Value, the
    response.

    Raises Error for an image of several planes (use the multiSlice_ form) and a deviation or coverage that makes no kernel;
    TypeError and ValueError for arguments that no image, number or type can be made of.
    """
    run: Run[Array, ListOfEach] = newRun("fd::HarrisCorner2dLvl1", progress)
    run.set("InImg", inImg=inImg)
    _setMeasure(run, inOptGradStdDev, nbStdDev, cornerResponseType, harrisK)
    _setList(run, "harrisCorner2d", maxNbCorners, threshold, featuresDist,
             {"featuresDistX": featuresDistX, "featuresDistY": featuresDistY})
    return run.returning("OutPIPixels2d")


def _harrisCorner3dImg(
    inImg3d: Array,
    inOptGradStdDev: Optional[float] = None,
    outImg: Optional[Array] = None,
    *,
    nbStdDev: Optional[float] = None,
    cornerResponseType: Optional[eCornerResponseType] = None,
    harrisK: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Measures at each voxel of each volume how much the image changes in every direction, as it does at corners.

    With the structure tensor, the products of the Gaussian gradient along x, y and z smoothed by the same Gaussian: the
    Harris measure r, its determinant less harrisK times the cube of its trace, of which the result is the cube root of
    abs(r) + 2^-23 with the sign of r; or the smallest eigenvalue. After C. Harris, M. Stephens, "A combined corner and edge
    detector", Alvey Vision Conference, 1988, and O. K. Smith, "Eigenvalues of a symmetric 3 x 3 matrix", CACM 4(4), 1961.

    Arguments:
        inImg3d: of shape (z, y, x) to (t, c, z, y, x), any dtype that images have; every volume by itself. A plane is a
            volume of one slice. Outside a volume the nearest sample is repeated, and so are the products of its gradients.
        inOptGradStdDev: standard deviation of gradient and smoothing, in voxels along each axis, whatever the spacing,
            finite and above 0. Default: 1.
        outImg: an array of float32 of that shape that the result is written to. Default: a new one.
        nbStdDev: standard deviations that the kernels cover on each side, finite and above 0. Default: 4.
        cornerResponseType: eCRT_Harris or eCRT_MinEigenvalue. Default: eCRT_Harris.
        harrisK: the constant of the Harris measure; the eigenvalue does not read it. From 1/27 on nothing is above 0.
            Default: 0.005.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives an array of float32 of that shape, in units of the squared sample per squared voxel: by the Harris measure 0.0049
    where nothing changes, above at corners, below 0 at surfaces and straight edges.

    Raises Error for a deviation or coverage that makes no kernel and for shapes that differ; TypeError and ValueError for
    arguments that no image, number or type can be made of.
    """
    run: Run[Array, Array] = newRun("fd::HarrisCorner3dImgLvl1", progress)
    run.set("InImg3d", inImg3d=inImg3d)
    _setMeasure(run, inOptGradStdDev, nbStdDev, cornerResponseType, harrisK, "InOptCornerDetectionParams3d")
    run.give("OutImg", outImg=outImg)
    return run.returning("OutImg")


@shortForms(
    ("inImg3d", "maxNbCorners", "featuresDist"),
    ("inImg3d", "inOptGradStdDev", "maxNbCorners", "featuresDist"),
    unless=("featuresDistX", "featuresDistY", "featuresDistZ"),
)
def _harrisCorner3d(
    inImg3d: Array,
    inOptGradStdDev: Optional[float] = None,
    maxNbCorners: Optional[int] = None,
    threshold: Optional[float] = None,
    featuresDistX: Optional[int] = None,
    featuresDistY: Optional[int] = None,
    featuresDistZ: Optional[int] = None,
    *,
    featuresDist: Optional[int] = None,
    nbStdDev: Optional[float] = None,
    cornerResponseType: Optional[eCornerResponseType] = None,
    harrisK: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, ListOfEach]:
    """Lists the corners of a volume: the local maxima of its corner response (see harrisCorner3dImg), the strongest first.

    A voxel is a corner when no response in the box of 2 * featuresDistX + 1 columns, 2 * featuresDistY + 1 lines and
    2 * featuresDistZ + 1 slices about it is larger; of equal ones the first in scan order stays. Two short forms are called
    with positional arguments: harrisCorner3d(inImg3d, maxNbCorners, featuresDist) and
    harrisCorner3d(inImg3d, inOptGradStdDev, maxNbCorners, featuresDist).

    Arguments:
        inImg3d: one volume, of shape (z, y, x), any dtype that images have.
        inOptGradStdDev, nbStdDev, cornerResponseType, harrisK: as for harrisCorner3dImg, with its defaults.
        maxNbCorners: most corners that are listed; 0 lists none. Always to be given.
        threshold: least response that is listed, in the unit of harrisCorner3dImg; 0 keeps voxels where nothing changes.
            Default: none, so that in a volume with few corners faint ones and such below 0 are listed.
        featuresDistX, featuresDistY, featuresDistZ: half-sizes of the box in voxels; 0 looks at no neighbours on that axis.
            What exceeds the volume, up to 4294967295, means all of it.
        featuresDist: all of them. This or the three are always to be given.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a structured array with fields X, Y, Z (column, line and slice, whole numbers at the centres of voxels) and Value,
    the response.

    Raises Error for an image of several channels or times (use the multiSlice_ form) and a deviation or coverage that makes
    no kernel; TypeError and ValueError for arguments that no image, number or type can be made of.
    """
    run: Run[Array, ListOfEach] = newRun("fd::HarrisCorner3dLvl1", progress)
    run.set("InImg3d", inImg3d=inImg3d)
    _setMeasure(run, inOptGradStdDev, nbStdDev, cornerResponseType, harrisK, "InOptCornerDetectionParams3d")
    _setList(run, "harrisCorner3d", maxNbCorners, threshold, featuresDist,
             {"featuresDistX": featuresDistX, "featuresDistY": featuresDistY, "featuresDistZ": featuresDistZ})
    return run.returning("OutPIVoxels3d")


def _setMeasure(
    run: Run[Array, Array] | Run[Array, ListOfEach],
    inOptGradStdDev: Optional[float],
    nbStdDev: Optional[float],
    cornerResponseType: Optional[eCornerResponseType],
    harrisK: Optional[float],
    params: str = "InOptCornerDetectionParams2d",
) -> None:
    run.set("InOptGradStdDev", inOptGradStdDev=inOptGradStdDev)
    run.set("InOptGradientGaussianCoverage", nbStdDev=nbStdDev)
    run.set(
        params,
        harrisK=harrisK,
        **memberOf(eCornerResponseType, cornerResponseType=cornerResponseType),
    )


def _setList(
    run: Run[Array, ListOfEach],
    function: str,
    maxNbCorners: Optional[int],
    threshold: Optional[float],
    featuresDist: Optional[int],
    distances: Dict[str, Optional[int]],
) -> None:
    if maxNbCorners is None:
        raise TypeError(f"{function}() needs the argument maxNbCorners")
    *most, last = distances
    several = f"{', '.join(most)} and {last}"
    if featuresDist is not None and any(distance is not None for distance in distances.values()):
        raise TypeError(f"{function}() takes featuresDist or {several}, not both")
    run.set(
        "InLocalExtremaConfig",
        threshold=_LOWEST if threshold is None else threshold,
        maxNbExtrema=named("maxNbCorners", maxNbCorners),
    )
    for name, given in distances.items():
        used, distance = (name, given) if featuresDist is None else ("featuresDist", featuresDist)
        if distance is None:
            raise TypeError(f"{function}() needs the argument featuresDist, or {several}")
        run.set(name.replace("features", "InFeatures"), featuresDist=named(used, distance))


harrisCorner2dImg = foreground(_harrisCorner2dImg)
harrisCorner2dImg_async = background(_harrisCorner2dImg)
harrisCorner2d = foreground(_harrisCorner2d)
harrisCorner2d_async = background(_harrisCorner2d)
multiSlice_harrisCorner2d = everyPlane(_harrisCorner2d)
multiSlice_harrisCorner2d_async = everyPlaneBackground(_harrisCorner2d)
harrisCorner3dImg = foreground(_harrisCorner3dImg)
harrisCorner3dImg_async = background(_harrisCorner3dImg)
harrisCorner3d = foreground(_harrisCorner3d)
harrisCorner3d_async = background(_harrisCorner3d)
multiSlice_harrisCorner3d = everyVolume(_harrisCorner3d)
multiSlice_harrisCorner3d_async = everyPlaneBackground(_harrisCorner3d)
