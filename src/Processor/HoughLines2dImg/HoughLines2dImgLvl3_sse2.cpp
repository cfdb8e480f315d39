#define ORVIK_UNIT_SSE2
#include "Processor/HoughLines2dImg/HoughLines2dImgKernel.h"
