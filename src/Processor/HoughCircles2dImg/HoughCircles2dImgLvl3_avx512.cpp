#define ORVIK_UNIT_AVX512
#include "Processor/HoughCircles2dImg/HoughCircles2dImgKernel.h"
