#define ORVIK_UNIT_AVX512
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgKernel.h"
