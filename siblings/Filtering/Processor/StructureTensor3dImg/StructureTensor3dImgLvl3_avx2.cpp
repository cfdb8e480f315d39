#define ORVIK_UNIT_AVX2
#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgKernel.h"
