#include "siblings/Filtering/TensorBuffers.h"

#include "frame/simd/Simd.h"

namespace orvik { namespace imaproc { namespace filter {

void TensorBuffers::init(image::eImageBufferType type, double stdDev, double coverage, unsigned long sizeX,
                         unsigned long sizeY, unsigned long alignedSizeX, unsigned long nbProducts)
{
    doubleWeights.x = makeGaussianWeights(stdDev, coverage, sizeX);
    doubleWeights.y = makeGaussianWeights(stdDev, coverage, sizeY);
    floatWeights.x = toFloat(doubleWeights.x);
    floatWeights.y = toFloat(doubleWeights.y);
    const eDataType sum = image::toDataType(type) == eDT_Real32 ? eDT_Real32 : eDT_Real64;
    tile.init(nbProducts * kBlock * (2 * doubleWeights.y.halfSize() + g_nbLinesAtOnce), sum);
    for (unsigned long i = 0; i < nbProducts; ++i)
        combined[i].init(sum, alignedSizeX, doubleWeights.x.halfSize());
}

}}}  // namespace orvik::imaproc::filter
