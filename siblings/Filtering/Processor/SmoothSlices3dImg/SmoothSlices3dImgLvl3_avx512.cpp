#define ORVIK_UNIT_AVX512
#include "siblings/Filtering/Processor/SmoothSlices3dImg/SmoothSlices3dImgKernel.h"
