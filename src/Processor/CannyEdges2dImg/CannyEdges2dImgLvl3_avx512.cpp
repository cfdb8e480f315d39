#define ORVIK_UNIT_AVX512
#include "Processor/CannyEdges2dImg/CannyEdges2dImgKernel.h"
