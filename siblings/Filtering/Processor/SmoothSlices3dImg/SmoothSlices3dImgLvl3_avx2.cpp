#define ORVIK_UNIT_AVX2
#include "siblings/Filtering/Processor/SmoothSlices3dImg/SmoothSlices3dImgKernel.h"
