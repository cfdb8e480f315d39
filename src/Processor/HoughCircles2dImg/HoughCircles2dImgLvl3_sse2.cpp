#define ORVIK_UNIT_SSE2
#include "Processor/HoughCircles2dImg/HoughCircles2dImgKernel.h"
