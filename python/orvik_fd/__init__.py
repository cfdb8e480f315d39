"""Feature detection in images: edges, corners, local extrema, lines, circles and spheres.

Images are NumPy arrays of shape (y, x), (z, y, x), (c, z, y, x) or (t, c, z, y, x), of int8, uint8, int16, uint16, int32,
uint32, float32 or bool, which is the binary type; asLabel and asBinary mark integers as labels or binary. Inputs are not
copied where the samples of each line follow one another; results share the memory of the library's images. Lists of
features are structured arrays.

Every function but the gradients has a form in the background, ..._async, which gives a Handle; those that list
features of one plane have another for all planes, multiSlice_.... Ctrl-C cancels what runs.

    import numpy, orvik_fd
    gx, gy = orvik_fd.gaussianGradient2dImg(picture, 1.5)
    edges = orvik_fd.cannyEdges2dImg(gx, gy, lowThreshold=5, highThreshold=15)
"""

from .calls import *
from .circles import *
from .corners import *
from .edges import *
from .enumerations import *
from .errors import *
from .extrema import *
from .images import *
from .kernels import *
from .lines import *
from .measures import *
from .spheres import *

__version__ = "0.1.0"

__all__ = [name for name in dir() if name[0] != "_" and hasattr(globals()[name], "__module__")]  # functions and classes
