#define ORVIK_UNIT_AVX2
#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgKernel.h"
