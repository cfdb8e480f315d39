#define ORVIK_UNIT_SSE2
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dKernel.h"
