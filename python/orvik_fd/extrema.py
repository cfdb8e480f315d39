"""Local extrema."""

from __future__ import annotations

from typing import Any, Dict, Optional, Tuple

from .calls import Progress, Run, background, everyPlane, everyPlaneBackground, everyVolume, foreground, newRun
from .enumerations import eLocalExtremumType, memberOf
from .images import Array

__all__ = [
    "extractLocalExtrema2d", "extractLocalExtrema2d_async",
    "multiSlice_extractLocalExtrema2d", "multiSlice_extractLocalExtrema2d_async",
    "extractLocalExtrema3d", "extractLocalExtrema3d_async",
    "multiSlice_extractLocalExtrema3d", "multiSlice_extractLocalExtrema3d_async",
]

#: From (z, c, t) to the list of that plane, or from (0, c, t) to that of the volume.
ListOfEach = Dict[Tuple[int, int, int], Array]


def _extractLocalExtrema2d(
    inImg: Array,
    inFeaturesDistX: int,
    inFeaturesDistY: int,
    *,
    localExtremumType: Optional[eLocalExtremumType] = None,
    threshold: Optional[float] = None,
    maxNbExtrema: Optional[int] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, ListOfEach]:
    """Lists the local extrema of a plane.

    A pixel is listed when no pixel of the rectangle of 2 * inFeaturesDistX + 1 columns and 2 * inFeaturesDistY + 1 lines
    about it is more extreme, and when its value passes the threshold. Pixels outside the image hinder nothing.

    Arguments:
        inImg: one plane, of shape (y, x), any dtype that images have.
        inFeaturesDistX, inFeaturesDistY: half-sizes of the rectangle in pixels; 0 looks at no neighbours on that
            axis. What exceeds the image, up to 4294967295, means all of it.
        localExtremumType: eLET_Maxima and eLET_Minima list the first pixel of a plateau that fits into one rectangle, the
            strict types none of it. Default: eLET_Maxima.
        threshold: what a maximum must reach, a minimum must not exceed; values are compared as 32-bit floats. Default:
            the lowest finite float, which every maximum reaches and no minimum passes: with minima give one.
        maxNbExtrema: at most that many are listed, the most extreme ones. Default: all.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a structured array with fields X, Y (column and line, whole numbers at the centres of pixels) and Value, the most
    extreme ones first; equal values stand in no particular order, which is the same in every run. Pixels with the lowest
    finite value of the dtype (the highest for minima) and NaN are never listed.

    Raises Error for an image of several planes (use the multiSlice_ form); TypeError and ValueError for arguments that no
    image, number or type can be made of.
    """
    run: Run[Array, ListOfEach] = newRun("fd::ExtractLocalExtrema2dLvl1", progress)
    run.set("InImg", inImg=inImg)
    run.set("InFeaturesDistX", inFeaturesDistX=inFeaturesDistX)
    run.set("InFeaturesDistY", inFeaturesDistY=inFeaturesDistY)
    _setConfig(run, localExtremumType, threshold, maxNbExtrema)
    return run.returning("OutPIPixels2d")


def _setConfig(run: Run[Any, Any], localExtremumType: Any, threshold: Optional[float], maxNbExtrema: Optional[int]) -> None:
    run.set(
        "InOptLocalExtremaConfig",
        threshold=threshold,
        maxNbExtrema=maxNbExtrema,
        **memberOf(eLocalExtremumType, localExtremumType=localExtremumType),
    )


def _extractLocalExtrema3d(
    inImg3d: Array,
    inFeaturesDistX: int,
    inFeaturesDistY: int,
    inFeaturesDistZ: int,
    *,
    localExtremumType: Optional[eLocalExtremumType] = None,
    threshold: Optional[float] = None,
    maxNbExtrema: Optional[int] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, ListOfEach]:
    """Lists the local extrema of a volume.

    A voxel is listed when no voxel of the box of 2 * inFeaturesDistX + 1 columns, 2 * inFeaturesDistY + 1 lines and
    2 * inFeaturesDistZ + 1 slices about it is more extreme, and when its value passes the threshold. Voxels outside the
    volume hinder nothing.

    Arguments:
        inImg3d: one volume, of shape (z, y, x), any dtype that images have. A plane is a volume of one slice.
        inFeaturesDistX, inFeaturesDistY, inFeaturesDistZ: half-sizes of the box in voxels, whatever the spacing; 0 looks
            at no neighbours on that axis. What exceeds the volume, up to 4294967295, means all of it.
        localExtremumType: eLET_Maxima and eLET_Minima list the first voxel, by (z, y, x), of a plateau that fits into one
            box, the strict types none of it. Default: eLET_Maxima.
        threshold: what a maximum must reach, a minimum must not exceed; values are compared as 32-bit floats. Default:
            the lowest finite float, which every maximum reaches and no minimum passes: with minima give one.
        maxNbExtrema: at most that many are listed, the most extreme ones of the volume. Default: all.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a structured array with fields X, Y, Z (column, line and slice, whole numbers at the centres of voxels) and Value,
    the most extreme ones first; equal values stand in no particular order, which is the same in every run. Voxels with the
    lowest finite value of the dtype (the highest for minima) and NaN are never listed.

    Raises Error for an image of several channels or times (use the multiSlice_ form); TypeError and ValueError for arguments
    that no image, number or type can be made of.
    """
    run: Run[Array, ListOfEach] = newRun("fd::ExtractLocalExtrema3dLvl1", progress)
    run.set("InImg3d", inImg3d=inImg3d)
    run.set("InFeaturesDistX", inFeaturesDistX=inFeaturesDistX)
    run.set("InFeaturesDistY", inFeaturesDistY=inFeaturesDistY)
    run.set("InFeaturesDistZ", inFeaturesDistZ=inFeaturesDistZ)
    _setConfig(run, localExtremumType, threshold, maxNbExtrema)
    return run.returning("OutPIVoxels3d")


extractLocalExtrema2d = foreground(_extractLocalExtrema2d)
extractLocalExtrema2d_async = background(_extractLocalExtrema2d)
multiSlice_extractLocalExtrema2d = everyPlane(_extractLocalExtrema2d)
multiSlice_extractLocalExtrema2d_async = everyPlaneBackground(_extractLocalExtrema2d)
extractLocalExtrema3d = foreground(_extractLocalExtrema3d)
extractLocalExtrema3d_async = background(_extractLocalExtrema3d)
multiSlice_extractLocalExtrema3d = everyVolume(_extractLocalExtrema3d)
multiSlice_extractLocalExtrema3d_async = everyPlaneBackground(_extractLocalExtrema3d)
