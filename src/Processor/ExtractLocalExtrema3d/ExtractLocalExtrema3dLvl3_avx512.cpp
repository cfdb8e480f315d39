#define ORVIK_UNIT_AVX512
#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dKernel.h"
