#define ORVIK_UNIT_SSE2
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgKernel.h"
