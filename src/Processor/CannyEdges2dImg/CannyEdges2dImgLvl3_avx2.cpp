#define ORVIK_UNIT_AVX2
#include "Processor/CannyEdges2dImg/CannyEdges2dImgKernel.h"
