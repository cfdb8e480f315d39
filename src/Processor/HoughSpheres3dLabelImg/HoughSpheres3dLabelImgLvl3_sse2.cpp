#define ORVIK_UNIT_SSE2
#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgKernel.h"
