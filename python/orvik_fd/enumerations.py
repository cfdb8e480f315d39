"""Enumerations of the library, with its names and values."""

from enum import IntEnum
from typing import Any, Dict, Optional, Type

__all__ = [
    "eCircleIntensityType",
    "eCornerResponseType",
    "eHoughCircles2dAlgoMethod",
    "eHoughLinesThresholdType",
    "eInstructionSet",
    "eLocalExtremumType",
    "eProcessingOptimizationPolicy",
]


class eProcessingOptimizationPolicy(IntEnum):
    """How an algorithm that has two ways to the same result chooses between memory and passes."""

    ePOP_Labels = 0  #: a fixed number of passes over further images
    ePOP_Iterative = 1  #: in place


class eLocalExtremumType(IntEnum):
    """Which extrema are meant."""

    eLET_Maxima = 0  #: above all neighbours before them in scan order, not below any after them
    eLET_Minima = 1  #: below all neighbours before them in scan order, not above any after them
    eLET_StrictMaxima = 2  #: above all neighbours
    eLET_StrictMinima = 3  #: below all neighbours


class eHoughLinesThresholdType(IntEnum):
    """What the threshold of a search for lines means."""

    eHLTT_Absolute = 0  #: votes of a bin
    eHLTT_Ratio = 1  #: share of the votes of the bin that has most
    eHLTT_Quantile = 2  #: share of the bins, 0 to 1, that have at most as many votes


class eCircleIntensityType(IntEnum):
    """Which gradient counts on a circle."""

    eCIT_Outward = 0  #: pointing from the centre to the rim: dark objects
    eCIT_Inward = 1  #: pointing from the rim to the centre: bright objects
    eCIT_Both = 2  #: either


class eHoughCircles2dAlgoMethod(IntEnum):
    """How radii of circles are found."""

    eHCAM_Standard = 0  #: one accumulator of all radii, then each whole radius is tried about each centre
    eHCAM_PhaseCoded = 1  #: an accumulator of complex numbers whose angle tells the radius


class eCornerResponseType(IntEnum):
    """What is measured at a corner."""

    eCRT_MinEigenvalue = 0
    eCRT_Harris = 1


class eInstructionSet(IntEnum):
    """Sets of instructions that kernels are compiled for."""

    eIS_Generic = 0
    eIS_Sse2 = 1
    eIS_Avx = 5
    eIS_Fma = 6
    eIS_Avx2 = 7
    eIS_Avx512 = 8


def memberOf(enumeration: Type[IntEnum], **argument: Any) -> Dict[str, Optional[int]]:
    """The argument, by its name, when it is a member of the enumeration or the number of one, or None."""
    ((name, value),) = argument.items()
    if value is None:
        return {name: None}
    if isinstance(value, IntEnum) and not isinstance(value, enumeration):
        raise TypeError(f"{name}: {value!r} is no {enumeration.__name__}")
    try:
        return {name: enumeration(value)}
    except ValueError:
        members = ", ".join(member.name for member in enumeration)
        raise ValueError(f"{name}: {value!r} is no {enumeration.__name__}: {members}") from None
