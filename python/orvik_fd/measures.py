"""What pipelines measure and begin with."""

from __future__ import annotations

from typing import Any, Optional, Tuple

from .calls import Progress, Run, background, foreground, named, newRun
from .images import Array

__all__ = ["gaussianGradient2dImg", "gaussianGradient3dImg", "maxL2Norm2Msr", "maxL2Norm2Msr_async"]

#: The gradient along x and along y: arrays; None only for one that was not asked for, so that no caller need check.
Gradients = Tuple[Any, Any]
#: The same of volumes, with that along z.
Gradients3d = Tuple[Any, Any, Any]


def _gaussianGradient2dImg(
    in_: Array,
    stdDevX: Optional[float] = None,
    stdDevY: Optional[float] = None,
    coverage: Optional[float] = None,
    outX: Optional[Array] = None,
    outY: Optional[Array] = None,
    *,
    stdDev: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Gradients, Gradients]:
    """The gradient of each plane of an image, smoothed by a Gaussian.

    Separable derivatives of a Gaussian, which give exactly 1 on a ramp of one unit per pixel and exactly 0 on a flat image.
    After Canny, "A computational approach to edge detection", IEEE PAMI 8(6), 1986.

    Arguments:
        in_: of shape (y, x) to (t, c, z, y, x), any dtype that images have; every plane by itself. Outside the image the
            edge sample is repeated.
        stdDevX, stdDevY: standard deviations in pixels along each axis, finite and above 0. Default of stdDevY: stdDevX.
        coverage: standard deviations that the kernels cover on each side of their centre, finite and above 0: they end at
            max(1, floor(coverage * stdDev + 0.5)) pixels, at most 2^20. Default: 4.
        outX, outY: arrays of that shape, of any dtype that images have, that the results are written to; where only one is
            given, only that one is computed. Whole numbers are rounded to the nearest, half to even, and saturated.
            Default: new arrays of float32.
        stdDev: both deviations. This or stdDevX is always to be given.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a pair, the gradient along x (to the right) and along y (downwards), in units of the samples per pixel; None for
    one that is not computed.

    Raises Error for a deviation or coverage that makes no kernel, shapes that differ and arrays that overlap; TypeError and
    ValueError for arguments that no image or number can be made of.
    """
    nameX, deviationX = ("stdDevX", stdDevX) if stdDev is None else ("stdDev", stdDev)
    nameY, deviationY = ("stdDevY", stdDevY) if stdDevY is not None else (nameX, deviationX)
    if stdDev is not None and (stdDevX is not None or stdDevY is not None):
        raise TypeError("gaussianGradient2dImg() takes stdDev or stdDevX and stdDevY, not both")
    if deviationX is None:
        raise TypeError("gaussianGradient2dImg() needs the argument stdDevX or stdDev")
    run: Run[Gradients, Gradients] = newRun("filter::GaussianGradient2dImgLvl1", progress)
    run.set("InImg", in_=in_)
    run.set("InStdDevX", stdDev=named(nameX, deviationX))
    run.set("InStdDevY", stdDev=named(nameY, deviationY))
    run.set("InOptGradientGaussianCoverage", nbStdDev=named("coverage", coverage))
    run.give("OutOptGradXImg", outX=outX)
    run.give("OutOptGradYImg", outY=outY)
    return run.returning("OutOptGradXImg", "OutOptGradYImg")


def _gaussianGradient3dImg(
    in_: Array,
    stdDevX: Optional[float] = None,
    stdDevY: Optional[float] = None,
    stdDevZ: Optional[float] = None,
    coverage: Optional[float] = None,
    outX: Optional[Array] = None,
    outY: Optional[Array] = None,
    outZ: Optional[Array] = None,
    *,
    stdDev: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Gradients3d, Gradients3d]:
    """The gradient of each volume of an image, smoothed by a Gaussian.

    As gaussianGradient2dImg, along three axes: each result is differentiated along its axis and smoothed along the others.

    Arguments:
        in_: of shape (z, y, x) to (t, c, z, y, x), any dtype that images have; every volume by itself. Outside the volume
            the nearest sample is repeated. A plane is a volume of one slice, whose gradient along z is 0.
        stdDevX, stdDevY, stdDevZ: standard deviations in voxels along each axis, finite and above 0. Where slices are
            further apart than pixels, a smaller one along z smooths as far in space. Default of the others: stdDevX.
        coverage: standard deviations that the kernels cover on each side of their centre, finite and above 0. Default: 4.
        outX, outY, outZ: arrays of that shape, of any dtype that images have, that the results are written to; where some
            are given, only those are computed. Whole numbers are rounded to the nearest, half to even, and saturated.
            Default: new arrays of float32.
        stdDev: all deviations. This or stdDevX is always to be given.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives the gradients along x, y and z, in units of the samples per voxel; None for one that is not computed.

    Raises Error for a deviation or coverage that makes no kernel, shapes that differ and arrays that overlap; TypeError and
    ValueError for arguments that no image or number can be made of.
    """
    nameX, deviationX = ("stdDevX", stdDevX) if stdDev is None else ("stdDev", stdDev)
    if stdDev is not None and not (stdDevX is None and stdDevY is None and stdDevZ is None):
        raise TypeError("gaussianGradient3dImg() takes stdDev or stdDevX, stdDevY and stdDevZ, not both")
    if deviationX is None:
        raise TypeError("gaussianGradient3dImg() needs the argument stdDevX or stdDev")
    run: Run[Gradients3d, Gradients3d] = newRun("filter::GaussianGradient3dImgLvl1", progress)
    run.set("InImg3d", in_=in_)
    run.set("InStdDevX", stdDev=named(nameX, deviationX))
    run.set("InStdDevY", stdDev=named("stdDevY", stdDevY) if stdDevY is not None else named(nameX, deviationX))
    run.set("InStdDevZ", stdDev=named("stdDevZ", stdDevZ) if stdDevZ is not None else named(nameX, deviationX))
    run.set("InOptGradientGaussianCoverage", nbStdDev=named("coverage", coverage))
    run.give("OutOptGradXImg3d", outX=outX)
    run.give("OutOptGradYImg3d", outY=outY)
    run.give("OutOptGradZImg3d", outZ=outZ)
    return run.returning("OutOptGradXImg3d", "OutOptGradYImg3d", "OutOptGradZImg3d")


def _maxL2Norm2Msr(in1: Array, in2: Array, *, progress: Optional[Progress] = None) -> Run[float, float]:
    """The largest Euclidean norm of two images, sample by sample: max of sqrt(in1^2 + in2^2) over all samples.

    Squares and their sum are formed and compared as 32-bit floats; the root is taken in double. A NaN takes with it the
    maximum of its run of samples so far.

    Arguments:
        in1, in2: of shape (y, x) to (t, c, z, y, x), of equal shape and dtype, any dtype that images have.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a float in units of the samples.

    Raises Error when shapes or dtypes differ, with both in its text; TypeError and ValueError for arguments that no image
    can be made of.
    """
    run: Run[float, float] = newRun("fd::MaxL2Norm2MsrLvl1", progress)
    run.set("InImg1", in1=in1)
    run.set("InImg2", in2=in2)
    return run.returning("OutMax")


gaussianGradient2dImg = foreground(_gaussianGradient2dImg)
gaussianGradient3dImg = foreground(_gaussianGradient3dImg)
maxL2Norm2Msr = foreground(_maxL2Norm2Msr)
maxL2Norm2Msr_async = background(_maxL2Norm2Msr)
