#define ORVIK_UNIT_AVX
#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgKernel.h"
