#define ORVIK_UNIT_AVX2
#include "Processor/HoughCircles2dImg/HoughCircles2dImgKernel.h"
