#define ORVIK_UNIT_SSE2
#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dKernel.h"
