#define ORVIK_UNIT_SSE2
#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dKernel.h"
