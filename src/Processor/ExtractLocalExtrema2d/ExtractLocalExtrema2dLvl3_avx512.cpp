#define ORVIK_UNIT_AVX512
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dKernel.h"
