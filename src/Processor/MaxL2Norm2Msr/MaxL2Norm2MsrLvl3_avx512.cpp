#define ORVIK_UNIT_AVX512
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrKernel.h"
