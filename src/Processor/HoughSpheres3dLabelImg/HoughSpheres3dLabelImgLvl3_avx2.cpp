#define ORVIK_UNIT_AVX2
#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgKernel.h"
