#define ORVIK_UNIT_AVX2
#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dKernel.h"
