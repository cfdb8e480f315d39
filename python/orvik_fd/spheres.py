"""Spheres in volumes, and the stages that find them."""

from __future__ import annotations

from typing import Any, Mapping, Optional, Tuple, Union

from .calls import Progress, Run, background, everyPlaneBackground, everyVolume, foreground, named, newRun
from .circles import _rowsOf, _setRings
from .enumerations import eCircleIntensityType, memberOf
from .extrema import ListOfEach
from .images import Array

__all__ = [
    "houghSpheres3dImg", "houghSpheres3dImg_async",
    "houghSpheres3d", "houghSpheres3d_async",
    "multiSlice_houghSpheres3d", "multiSlice_houghSpheres3d_async",
    "computeBestSpheresRadiiFromGradMagImg3d", "computeBestSpheresRadiiFromGradMagImg3d_async",
    "houghSpheres3dLabelImg", "houghSpheres3dLabelImg_async",
]


def _houghSpheres3dImg(
    inGx: Array,
    inGy: Array,
    inGz: Array,
    minRadius: Optional[int] = None,
    maxRadius: Optional[int] = None,
    *,
    circleIntensityType: Optional[eCircleIntensityType] = None,
    maxAngleWithGradDir: Optional[float] = None,
    nbMaxPtsPerCircle: Optional[int] = None,
    outImg: Optional[Array] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Scores each voxel as the centre of a sphere, from the gradient on shells about it.

    The score is the sum, over all radii, of the mean over the shell of the gradient's share along the radius, where gradient
    and radius differ by no more than maxAngleWithGradDir. A shell of radius r has the voxels whose distance rounds to r;
    those below minRadius, and those that round beyond maxRadius, are left out. Means are over the voxels whose distance is
    r or more, and below r + 1.
    After Kimme, Ballard, Sklansky, "Finding circles by an array of accumulators", CACM 18(2), 1975, in three dimensions.

    Arguments:
        inGx, inGy, inGz: gradient along x, y and z, of equal shape and dtype, (z, y, x) to (t, c, z, y, x); every volume by
            itself. Reads 0 outside. Spacing is not looked at: spheres are those of the grid.
        minRadius, maxRadius: whole voxels, from 1 on; narrowed silently to half of the smallest side. Default: from 1 to
            that half, which takes long: the time grows with the cube of the radius.
        circleIntensityType: eCIT_Outward for dark spheres, eCIT_Inward for bright ones, eCIT_Both. Default: eCIT_Both.
        maxAngleWithGradDir: radians; the score is flat within radius * sin(angle) of a centre. 0 gives zeros. Default: 0.1.
        nbMaxPtsPerCircle: the most voxels that a shell counts for; no voxel is left out for it, so that scores grow with what
            is beyond. 0 gives infinite scores and NaN. Default: no limit.
        outImg: array of that shape, float32, that the scores are written to. Default: a new one.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives an array of float32 in units of the gradient. An infinite gradient makes NaN of all voxels whose shells reach it.

    Raises Error for shapes or dtypes that differ, a maxRadius below 0, shells that take more memory than there is; TypeError
    and ValueError for arguments that no image, number or type can be made of.
    """
    run: Run[Array, Array] = newRun("fd::HoughSpheres3dImgLvl1", progress)
    run.set("InGxGreyImg3d", inGx=inGx)
    run.set("InGyGreyImg3d", inGy=inGy)
    run.set("InGzGreyImg3d", inGz=inGz)
    _setRings(run, minRadius, maxRadius, circleIntensityType, maxAngleWithGradDir, nbMaxPtsPerCircle)
    run.give("OutRealImg", outImg=outImg)
    return run.returning("OutRealImg")


def _houghSpheres3d(
    inImg: Optional[Array] = None,
    minRadius: Optional[int] = None,
    maxRadius: Optional[int] = None,
    *,
    inGx: Optional[Array] = None,
    inGy: Optional[Array] = None,
    inGz: Optional[Array] = None,
    circleIntensityType: Optional[eCircleIntensityType] = None,
    maxAngleWithGradDir: Optional[float] = None,
    nbMaxPtsPerCircle: Optional[int] = None,
    absoluteThreshold: Optional[float] = None,
    ratioOfMax: Optional[float] = None,
    removeTooClose: Optional[bool] = None,
    distanceFactor: Optional[float] = None,
    progress: Optional[Progress] = None,
) -> Run[Array, ListOfEach]:
    """Lists the spheres of a volume.

    Voxels are scored as centres by houghSpheres3dImg, from gradients that are given, or made of a grey volume by Gaussian
    derivatives of standard deviation 1. A centre is a voxel whose score is above that of its 26 neighbours and reaches both
    thresholds; its radius is the whole one whose shell carries most gradient. Spheres that are too close to a stronger one
    are left out.

    Arguments:
        inImg: grey volume of shape (z, y, x), any dtype that images have; or, instead:
        inGx, inGy, inGz: its gradient along x, y and z, of equal shape and dtype.
        minRadius, maxRadius: whole voxels, from 1 on; narrowed silently to half of the smallest side. Default: from 1 to
            that half.
        circleIntensityType: eCIT_Outward for dark spheres, eCIT_Inward for bright ones, eCIT_Both. Default: eCIT_Both.
        maxAngleWithGradDir: radians between gradient and radius. Default: 0.1.
        nbMaxPtsPerCircle: the most voxels that a shell counts for; 0 gives no spheres. Default: no limit.
        absoluteThreshold: lowest score of a centre, in units of the gradient. Default: 0.
        ratioOfMax: the same as a share of the greatest score. Default: 0.5.
        removeTooClose: whether to leave out spheres that are too close to stronger ones. Default: True.
        distanceFactor: of that: with 1 a centre must not lie in a stronger sphere, with 2 the balls must not overlap.
            Default: 1.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a structured array with fields X, Y, Z, Radius, in voxels from the centre of the first one, and Value, the score;
    the strongest first.

    Raises Error for an image of several channels or times (use the multiSlice_ form), both or neither of an image and
    gradients, shapes or dtypes that differ, a maxRadius below 0, shells that take more memory than there is; TypeError and
    ValueError for arguments that no image, number or type can be made of.
    """
    run: Run[Array, ListOfEach] = newRun("fd::HoughSpheres3dLvl1", progress)
    if inImg is not None:
        run.set("InOptGreyImg3d", inImg=inImg)
    if inGx is not None:
        run.set("InOptGxGreyImg3d", inGx=inGx)
    if inGy is not None:
        run.set("InOptGyGreyImg3d", inGy=inGy)
    if inGz is not None:
        run.set("InOptGzGreyImg3d", inGz=inGz)
    _setRings(run, minRadius, maxRadius, circleIntensityType, maxAngleWithGradDir, nbMaxPtsPerCircle)
    run.set("InOptAccumIntensityThreshold", absoluteThreshold=absoluteThreshold, ratioOfMax=ratioOfMax)
    run.set("InOptRemoveTooCloseCirclesParams", enabled=named("removeTooClose", removeTooClose),
            distanceFactor=distanceFactor)
    return run.returning("OutPIHoughSpheres3dPpties")


def _computeBestSpheresRadiiFromGradMagImg3d(
    inGx: Array,
    inGy: Array,
    inGz: Array,
    centers: Any,
    minRadius: int,
    maxRadius: int,
    *,
    circleIntensityType: Optional[eCircleIntensityType] = None,
    maxAngleWithGradDir: float = 0.1,
    nbMaxPtsPerCircle: int = 4294967295,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Finds for each centre the whole radius whose shell carries most gradient along the radius.

    Arguments:
        inGx, inGy, inGz: one volume of the gradient, of equal shape (z, y, x) and dtype; reads 0 outside.
        centers: rows of x, y, z and perhaps a value, or a structured array with such fields, as lists of features are.
        minRadius, maxRadius: the radii that are tried, whole voxels, not narrowed to the volume.
        circleIntensityType, maxAngleWithGradDir: as for houghSpheres3dImg, with its defaults.
        nbMaxPtsPerCircle: changes nothing, since means are over all voxels of a shell.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives a structured array with fields X, Y, Z, Radius and Value, a row for each centre, in their order; NaN for those
    outside the volume. Of equal radii the smaller one is taken, and the smallest where none has any gradient.

    Raises Error for shapes or dtypes that differ, a maxRadius below 0, shells that take more memory than there is; TypeError
    and ValueError for arguments that no image, number, type or list can be made of.
    """
    run: Run[Array, Array] = newRun("fd::ComputeBestSpheresRadiiFromGradMagImg3dLvl1", progress)
    run.set("InGxGreyImg3d", inGx=inGx)
    run.set("InGyGreyImg3d", inGy=inGy)
    run.set("InGzGreyImg3d", inGz=inGz)
    run.setList("InHoughSpheres3dCenters", centers=_rowsOf(centers, "XYZ"))
    run.set("InHoughCirclesRadiusRange", minRadius=minRadius, maxRadius=maxRadius)
    run.set("InOptCircleIntensityType", **memberOf(eCircleIntensityType, circleIntensityType=circleIntensityType))
    run.set("InMaxAngleWithGradDir", maxAngleWithGradDir=maxAngleWithGradDir)
    run.set("InNbMaxPtsPerCircle", nbMaxPtsPerCircle=nbMaxPtsPerCircle)
    return run.returning("OutHoughSpheres3dPpties")


def _houghSpheres3dLabelImg(
    spheres: Union[Any, Mapping[Tuple[int, int, int], Any]],
    inImg: Array,
    outImg: Optional[Array] = None,
    *,
    progress: Optional[Progress] = None,
) -> Run[Array, Array]:
    """Draws spheres, such as those of houghSpheres3d, into a volume of labels.

    A voxel within the radius of a sphere gets the sphere's number, counted from 1 in the list's order; others are 0. Of several
    spheres that one has it in which it lies deepest, distance over radius, the earlier one where it lies as deep. Centres and
    radii are not rounded.

    Arguments:
        spheres: rows of x, y, z, radius and perhaps a value, or a structured array with such fields, as houghSpheres3d gives
            for one volume; for stacks a dict of them by (t, c, 0), as multiSlice_houghSpheres3d gives, exactly one for each
            volume. Parts outside the volume are cut off; a radius below 0 or NaN draws nothing but keeps its number.
        inImg: gives the shape, (z, y, x) to (t, c, z, y, x); its samples are not looked at.
        outImg: an array of that shape that the labels are written to, of uint8, uint16 or uint32, wide enough for the numbers
            of all spheres. Default: a new one, of the narrowest of these that is.
        progress: called with the fraction of the current stage that is done, or a bar of tqdm.

    Gives an array of that shape.

    Raises Error for shapes that differ, volumes without a list or lists without a volume, an outImg that cannot name all
    spheres; TypeError and ValueError for arguments that no image or list can be made of.
    """
    run: Run[Array, Array] = newRun("fd::HoughSpheres3dLabelImgLvl1", progress)
    lists = spheres if isinstance(spheres, Mapping) else {(0, 0, 0): spheres}
    fields = ("X", "Y", "Z", "Radius")
    run.setList("InPIHoughSpheres3dPpties", spheres={at: _rowsOf(rows, fields, "spheres") for at, rows in lists.items()})
    run.set("InImg", inImg=inImg)
    run.give("OutLabelImg", outImg=outImg)
    return run.returning("OutLabelImg")


houghSpheres3dImg = foreground(_houghSpheres3dImg)
houghSpheres3dImg_async = background(_houghSpheres3dImg)
houghSpheres3d = foreground(_houghSpheres3d)
houghSpheres3d_async = background(_houghSpheres3d)
multiSlice_houghSpheres3d = everyVolume(_houghSpheres3d)
multiSlice_houghSpheres3d_async = everyPlaneBackground(_houghSpheres3d)
computeBestSpheresRadiiFromGradMagImg3d = foreground(_computeBestSpheresRadiiFromGradMagImg3d)
computeBestSpheresRadiiFromGradMagImg3d_async = background(_computeBestSpheresRadiiFromGradMagImg3d)
houghSpheres3dLabelImg = foreground(_houghSpheres3dLabelImg)
houghSpheres3dLabelImg_async = background(_houghSpheres3dLabelImg)
