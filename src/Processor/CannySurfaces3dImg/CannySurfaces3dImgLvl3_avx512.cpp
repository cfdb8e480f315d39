#define ORVIK_UNIT_AVX512
#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgKernel.h"
