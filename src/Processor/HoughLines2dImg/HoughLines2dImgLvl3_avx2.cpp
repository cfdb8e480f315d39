#define ORVIK_UNIT_AVX2
#include "Processor/HoughLines2dImg/HoughLines2dImgKernel.h"
