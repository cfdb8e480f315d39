#define ORVIK_UNIT_AVX2
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgKernel.h"
