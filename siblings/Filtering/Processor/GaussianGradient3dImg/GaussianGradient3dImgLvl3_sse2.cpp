#define ORVIK_UNIT_SSE2
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgKernel.h"
