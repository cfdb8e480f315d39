#define ORVIK_UNIT_AVX512
#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dKernel.h"
