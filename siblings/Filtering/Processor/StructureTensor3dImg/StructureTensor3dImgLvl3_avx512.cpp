#define ORVIK_UNIT_AVX512
#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgKernel.h"
