#define ORVIK_UNIT_SSE2
#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgKernel.h"
