#define ORVIK_UNIT_AVX2
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgKernel.h"
