#define ORVIK_UNIT_AVX512
#include "Processor/HoughLines2dImg/HoughLines2dImgKernel.h"
