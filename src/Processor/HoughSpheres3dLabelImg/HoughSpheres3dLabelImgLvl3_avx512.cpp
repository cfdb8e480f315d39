#define ORVIK_UNIT_AVX512
#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgKernel.h"
