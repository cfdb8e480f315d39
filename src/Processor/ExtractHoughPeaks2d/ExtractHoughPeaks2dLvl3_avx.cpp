#define ORVIK_UNIT_AVX
#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dKernel.h"
