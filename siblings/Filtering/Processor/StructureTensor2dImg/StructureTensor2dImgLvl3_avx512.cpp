#define ORVIK_UNIT_AVX512
#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgKernel.h"
