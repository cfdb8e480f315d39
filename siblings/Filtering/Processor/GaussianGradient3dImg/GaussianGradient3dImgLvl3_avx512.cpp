#define ORVIK_UNIT_AVX512
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgKernel.h"
