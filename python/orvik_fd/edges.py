"""Edges of planes and surfaces of volumes."""

from __future__ import annotations

from typing import Optional

from .calls import Progress, Run, background, foreground, newRun
from .enumerations import eProcessingOptimizationPolicy, memberOf
from .images import Array

__all__ = ["cannyEdges2dImg", "cannyEdges2dImg_async", "cannySurfaces3dImg", "cannySurfaces3dImg_async"]


def _cannyEdges2dImg(
    inGxImg2d: Array,
    inGyImg2d: Array,
    inOptimizationPolicy: Optional[eProcessingOptimizationPolicy] = None,
    outImg: Optional[Array] = None,
    *,
    lowThreshold: float,
    highThreshold: float,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Finds edges in planes, from gradients such as those of gaussianGradient2dImg.

    A pixel is a candidate when the magnitude of its gradient is above the low threshold and not less than that of its
    neighbours along the gradient, taken in four sectors of 45 degrees. Candidates above the high threshold are edges,
    and so are those that hang together with one through candidates, in the neighbourhood of eight. After J. Canny, "A
    computational approach to edge detection", IEEE Trans. PAMI 8(6), 1986.

    Arguments:
        inGxImg2d, inGyImg2d: gradient along x and y, of shape (y, x) to (t, c, z, y, x), of equal shape and dtype, any
            dtype that images have; every plane by itself. Reads 0 outside the image. Magnitudes are compared squared: in
            double for float32, else in unsigned integers that wrap, of 16 bits for samples of 8 bits and of 32 bits for
            the others. So gx^2 + gy^2 and the squared thresholds must stay below 65536, or 2^32.
        inOptimizationPolicy: ePOP_Labels finds what hangs together by labelling: passes independent of the picture, two
            more images, at most 65535 components. Default: ePOP_Iterative, in place.
        outImg: an array of that shape, not overlapping the gradients, that the result is written to. Default: a new one,
            of bool. Arrays of bool or uint8 need no working image; ePOP_Labels takes no others.
        lowThreshold, highThreshold: in the unit of the gradients. Neither is checked against the other: with the low one
            above the high one every candidate is an edge. A negative one acts as its absolute value.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives an array of that shape: True (or 1) on edges.

    Raises Error when shapes or dtypes differ, with both in its text; TypeError and ValueError for arguments that no image
    or threshold can be made of.
    """
    run: Run[Array, Array] = newRun("fd::CannyEdges2dImgLvl1", progress)
    run.set("InGxGreyImg2d", inGxImg2d=inGxImg2d)
    run.set("InGyGreyImg2d", inGyImg2d=inGyImg2d)
    return _withHysteresis(run, lowThreshold, highThreshold, inOptimizationPolicy, outImg)


def _cannySurfaces3dImg(
    inGxImg3d: Array,
    inGyImg3d: Array,
    inGzImg3d: Array,
    inOptimizationPolicy: Optional[eProcessingOptimizationPolicy] = None,
    outImg: Optional[Array] = None,
    *,
    lowThreshold: float,
    highThreshold: float,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Finds surfaces in volumes, from gradients such as those of gaussianGradient3dImg.

    As cannyEdges2dImg, along three axes: a voxel is a candidate when the magnitude of its gradient is above the low threshold
    and not less than that of its neighbours along the gradient, taken in 13 sectors; what hangs together does so in the
    neighbourhood of 26. Spacing is not looked at: sectors and neighbours are those of voxels.

    Arguments:
        inGxImg3d, inGyImg3d, inGzImg3d: gradient along x, y and z, of shape (z, y, x) to (t, c, z, y, x), of equal shape and
            dtype, any dtype that images have; every volume by itself. Reads 0 outside the volume. A volume of one slice is
            what cannyEdges2dImg gives of the plane as long as its gradients along z are 0. Magnitudes are compared squared: in
            double for float32, else in unsigned integers that wrap, of 16 bits for samples of 8 bits and of 32 bits for
            the others. So gx^2 + gy^2 + gz^2 and the squared thresholds must stay below 65536, or 2^32.
        inOptimizationPolicy: ePOP_Labels finds what hangs together by labelling: passes independent of the picture, two
            more images, at most 65535 components. Default: ePOP_Iterative, in place.
        outImg: an array of that shape, not overlapping the gradients, that the result is written to. Default: a new one,
            of bool. Arrays of bool or uint8 need no working image; ePOP_Labels takes no others.
        lowThreshold, highThreshold: in the unit of the gradients. Neither is checked against the other: with the low one
            above the high one every candidate is surface. A negative one acts as its absolute value.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives an array of that shape: True (or 1) on surfaces.

    Raises Error when shapes or dtypes differ, with both in its text; TypeError and ValueError for arguments that no image
    or threshold can be made of.
    """
    run: Run[Array, Array] = newRun("fd::CannySurfaces3dImgLvl1", progress)
    run.set("InGxGreyImg3d", inGxImg3d=inGxImg3d)
    run.set("InGyGreyImg3d", inGyImg3d=inGyImg3d)
    run.set("InGzGreyImg3d", inGzImg3d=inGzImg3d)
    return _withHysteresis(run, lowThreshold, highThreshold, inOptimizationPolicy, outImg)


def _withHysteresis(
    run: Run[Array, Array],
    lowThreshold: float,
    highThreshold: float,
    inOptimizationPolicy: Optional[eProcessingOptimizationPolicy],
    outImg: Optional[Array],
) -> Run[Array, Array]:
    """What both detectors are told beyond their gradients."""
    run.set("InCannyThresholds", lowThreshold=lowThreshold, highThreshold=highThreshold)
    run.set("InOptOptimizationPolicy", **memberOf(eProcessingOptimizationPolicy, inOptimizationPolicy=inOptimizationPolicy))
    run.give("OutBinImg", outImg=outImg)
    if inOptimizationPolicy == eProcessingOptimizationPolicy.ePOP_Labels and outImg is not None:
        if outImg.dtype.name not in ("bool", "uint8"):
            raise ValueError(f"outImg: ePOP_Labels writes to arrays of bool or uint8, not of {outImg.dtype}")
    return run.returning("OutBinImg")


cannyEdges2dImg = foreground(_cannyEdges2dImg)
cannyEdges2dImg_async = background(_cannyEdges2dImg)
cannySurfaces3dImg = foreground(_cannySurfaces3dImg)
cannySurfaces3dImg_async = background(_cannySurfaces3dImg)
