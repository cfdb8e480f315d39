#define ORVIK_UNIT_AVX2
#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgKernel.h"
