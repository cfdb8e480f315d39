#define ORVIK_UNIT_AVX2
#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dKernel.h"
