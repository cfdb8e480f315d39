#define ORVIK_UNIT_SSE2
#include "Processor/CannyEdges2dImg/CannyEdges2dImgKernel.h"
