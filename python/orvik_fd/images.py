"""Arrays whose samples are more than numbers."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Tuple, Type, TypeVar

import numpy

__all__ = ["BinaryArray", "LabelArray", "asBinary", "asLabel"]

if TYPE_CHECKING:
    from numpy.typing import NDArray

    Array = NDArray[Any]
else:
    Array = numpy.ndarray  # the precise type takes long to import


class _MarkedArray(numpy.ndarray):
    """An array whose slices, copies and changes in place stay marked; what is computed from it does not."""

    kind = ""
    dtypes: Tuple[str, ...] = ()

    @property
    def sampleKind(self) -> str:
        """What the samples are, read where an array becomes an image; nothing once they have another type."""
        return self.kind if self.dtype.name in self.dtypes else ""

    def __array_wrap__(self, array: Any, context: Any = None, return_scalar: bool = False) -> Any:
        if array is self:
            return self
        plain = numpy.asarray(array)
        return plain[()] if plain.ndim == 0 else plain


Marked = TypeVar("Marked", bound=_MarkedArray)


class LabelArray(_MarkedArray):
    """An array of labels: see asLabel."""

    kind = "label"
    dtypes = ("uint8", "uint16", "uint32")


class BinaryArray(_MarkedArray):
    """An array of bytes that are 0 or not: see asBinary."""

    kind = "binary"
    dtypes = ("uint8", "bool")


def asLabel(array: Array) -> LabelArray:
    """Marks an array of uint8, uint16 or uint32 as labels of regions; 0 is the background.

    The result shares the array's memory. Whether samples are labels or numbers decides the sample type of some results:
    votes of 8-bit labels, as an example, are counted in floats.
    """
    return _mark(array, LabelArray)


def asBinary(array: Array) -> BinaryArray:
    """Marks an array of uint8 as a binary image. Arrays of bool are binary images as they are.

    The result shares the array's memory; its values stay what they are.
    """
    return _mark(array, BinaryArray)


def _mark(array: Any, marked: Type[Marked]) -> Marked:
    if not isinstance(array, numpy.ndarray):
        raise TypeError(f"array: an array is expected, not {type(array).__name__}")
    if array.dtype.name not in marked.dtypes or not array.dtype.isnative:
        raise TypeError(f"array: samples of type {array.dtype} can't be {marked.kind} samples; {', '.join(marked.dtypes)} can")
    view: Marked = array.view(marked)
    return view
