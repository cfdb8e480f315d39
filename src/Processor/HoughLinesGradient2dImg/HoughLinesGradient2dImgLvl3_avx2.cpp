#define ORVIK_UNIT_AVX2
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgKernel.h"
