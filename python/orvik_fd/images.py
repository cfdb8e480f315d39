"""Arrays whose samples are more than numbers."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Tuple, Type, TypeVar

import numpy

if TYPE_CHECKING:
    from numpy.typing import NDArray

    Array = NDArray[Any]
else:
    Array = numpy.ndarray  # the precise type takes long to import


class _MarkedArray(numpy.ndarray):
    """An array whose slices and copies stay marked; what is computed from it does not."""

    sampleKind = ""

    def __array_wrap__(self, array: Any, context: Any = None, return_scalar: bool = False) -> Any:
        plain = numpy.asarray(array)
        return plain[()] if plain.ndim == 0 else plain


Marked = TypeVar("Marked", bound=_MarkedArray)


class LabelArray(_MarkedArray):
    """An array of labels: see asLabel."""

    sampleKind = "label"


class BinaryArray(_MarkedArray):
    """An array of bytes that are 0 or not: see asBinary."""

    sampleKind = "binary"


def asLabel(array: Array) -> LabelArray:
    """Marks an array of uint8, uint16 or uint32 as labels of regions; 0 is the background.

    The result shares the array's memory. Whether samples are labels or numbers decides the sample type of some results:
    votes of 8-bit labels, as an example, are counted in floats.
    """
    return _mark(array, LabelArray, ("uint8", "uint16", "uint32"))


def asBinary(array: Array) -> BinaryArray:
    """Marks an array of uint8 as a binary image. Arrays of bool are binary images as they are.

    The result shares the array's memory; its values stay what they are.
    """
    return _mark(array, BinaryArray, ("uint8", "bool"))


def _mark(array: Any, marked: Type[Marked], dtypes: Tuple[str, ...]) -> Marked:
    if not isinstance(array, numpy.ndarray):
        raise TypeError(f"array: an array is expected, not {type(array).__name__}")
    if array.dtype.name not in dtypes or not array.dtype.isnative:
        raise TypeError(f"array: samples of type {array.dtype} can't be {marked.sampleKind} samples; {', '.join(dtypes)} can")
    view: Marked = array.view(marked)
    return view
