#define ORVIK_UNIT_SSE2
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgKernel.h"
