"""Feature detection in images: edges, corners, local extrema and lines.

Images are NumPy arrays of shape (y, x), (z, y, x), (c, z, y, x) or (t, c, z, y, x), of int8, uint8, int16, uint16, int32,
uint32, float32 or bool, which is the binary type; asLabel and asBinary mark integers as labels or binary. Inputs are not
copied where the samples of each line follow one another; results share the memory of the library's images. Lists of
features are structured arrays.

Every function but gaussianGradient2dImg has a form in the background, ..._async, which gives a Handle; those that list
features of one plane have another for all planes, multiSlice_.... Ctrl-C cancels what runs.

    import numpy, orvik_fd
    gx, gy = orvik_fd.gaussianGradient2dImg(picture, 1.5)
    edges = orvik_fd.cannyEdges2dImg(gx, gy, lowThreshold=5, highThreshold=15)
"""

from .calls import Handle
from .corners import (
    harrisCorner2d,
    harrisCorner2d_async,
    harrisCorner2dImg,
    harrisCorner2dImg_async,
    multiSlice_harrisCorner2d,
    multiSlice_harrisCorner2d_async,
)
from .edges import cannyEdges2dImg, cannyEdges2dImg_async
from .enumerations import (
    eCornerResponseType,
    eHoughLinesThresholdType,
    eInstructionSet,
    eLocalExtremumType,
    eProcessingOptimizationPolicy,
)
from .errors import CancelledError, Error
from .extrema import (
    extractLocalExtrema2d,
    extractLocalExtrema2d_async,
    multiSlice_extractLocalExtrema2d,
    multiSlice_extractLocalExtrema2d_async,
)
from .images import BinaryArray, LabelArray, asBinary, asLabel
from .kernels import forceInstructionSets, getNbThreads, instructionSets, releaseForcedInstructionSets, setNbThreads
from .lines import (
    houghLines2d,
    houghLines2d_async,
    houghLines2dImg,
    houghLines2dImg_async,
    multiSlice_houghLines2d,
    multiSlice_houghLines2d_async,
)
from .measures import gaussianGradient2dImg, maxL2Norm2Msr, maxL2Norm2Msr_async

__version__ = "0.1.0"

__all__ = [
    "BinaryArray",
    "CancelledError",
    "Error",
    "Handle",
    "LabelArray",
    "asBinary",
    "asLabel",
    "cannyEdges2dImg",
    "cannyEdges2dImg_async",
    "eCornerResponseType",
    "eHoughLinesThresholdType",
    "eInstructionSet",
    "eLocalExtremumType",
    "eProcessingOptimizationPolicy",
    "extractLocalExtrema2d",
    "extractLocalExtrema2d_async",
    "forceInstructionSets",
    "gaussianGradient2dImg",
    "getNbThreads",
    "harrisCorner2d",
    "harrisCorner2dImg",
    "harrisCorner2dImg_async",
    "harrisCorner2d_async",
    "houghLines2d",
    "houghLines2dImg",
    "houghLines2dImg_async",
    "houghLines2d_async",
    "instructionSets",
    "maxL2Norm2Msr",
    "maxL2Norm2Msr_async",
    "multiSlice_extractLocalExtrema2d",
    "multiSlice_extractLocalExtrema2d_async",
    "multiSlice_harrisCorner2d",
    "multiSlice_harrisCorner2d_async",
    "multiSlice_houghLines2d",
    "multiSlice_houghLines2d_async",
    "releaseForcedInstructionSets",
    "setNbThreads",
]
