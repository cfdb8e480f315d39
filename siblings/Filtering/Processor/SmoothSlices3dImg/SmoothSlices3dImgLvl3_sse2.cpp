#define ORVIK_UNIT_SSE2
#include "siblings/Filtering/Processor/SmoothSlices3dImg/SmoothSlices3dImgKernel.h"
