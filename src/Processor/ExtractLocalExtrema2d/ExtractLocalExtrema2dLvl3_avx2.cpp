#define ORVIK_UNIT_AVX2
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dKernel.h"
