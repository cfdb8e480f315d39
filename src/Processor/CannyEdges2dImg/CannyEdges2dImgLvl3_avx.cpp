#define ORVIK_UNIT_AVX
#include "Processor/CannyEdges2dImg/CannyEdges2dImgKernel.h"
