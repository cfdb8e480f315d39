#define ORVIK_UNIT_SSE2
#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgKernel.h"
