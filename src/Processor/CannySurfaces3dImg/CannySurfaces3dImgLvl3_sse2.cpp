#define ORVIK_UNIT_SSE2
#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgKernel.h"
