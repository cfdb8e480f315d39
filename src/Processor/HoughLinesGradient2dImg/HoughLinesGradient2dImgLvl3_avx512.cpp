#define ORVIK_UNIT_AVX512
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgKernel.h"
