"""What a type checker must make of calls; checked, not run."""

from typing import Any, Dict, Tuple

import numpy
import orvik_fd
from numpy.typing import NDArray
from typing_extensions import assert_type

ListOfEach = Dict[Tuple[int, int, int], NDArray[Any]]

picture: NDArray[Any] = numpy.zeros((10, 10), numpy.uint8)
assert_type(orvik_fd.cannyEdges2dImg(picture, picture, lowThreshold=1, highThreshold=2), NDArray[Any])
assert_type(orvik_fd.harrisCorner2dImg_async(picture), orvik_fd.Handle[NDArray[Any]])
assert_type(orvik_fd.multiSlice_extractLocalExtrema2d(picture, 1, 1), ListOfEach)
assert_type(orvik_fd.multiSlice_houghLines2d_async(picture).result(), Tuple[ListOfEach, NDArray[Any]])
assert_type(orvik_fd.maxL2Norm2Msr(picture, picture), float)
orvik_fd.extractLocalExtrema2d(picture, "1", 1, maximum=3)  # type: ignore[call-arg, arg-type]
