#include "siblings/Filtering/SeparableStrips.h"

#include "siblings/Filtering/GaussianWeights.h"

#include "frame/processor/BaseDataParser.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace filter {

image::StripMargins makeGaussianMargins(image::eStripAxis axis, double stdDev, double coverage,
                                        const image::BaseImage& image)
{
    const unsigned long halfSize =
        std::min(static_cast<unsigned long>(getGaussianHalfSize(stdDev, coverage)), image::getNbElements(image, axis));
    image::StripMargins margins;
    (axis == image::eSA_Y ? margins.startY : margins.startZ) = halfSize;
    (axis == image::eSA_Y ? margins.endY : margins.endZ) = halfSize + g_nbLinesAtOnce - 1;
    return margins;
}

BoolResult checkGaussianMargins(const image::BaseImageFragment& strip, unsigned long halfSize)
{
    const image::StripMargins& margins = strip.getMargins();
    const image::eStripAxis axis = strip.getAxis();
    if (margins.getStart(axis) == halfSize && margins.getEnd(axis) == halfSize + g_nbLinesAtOnce - 1)
        return success();
    return failure("the margins of the strip do not fit the kernel, half-size " + std::to_string(halfSize));
}

void CombinedLines::init(eDataType type, unsigned long sizeX, unsigned long nbRows, unsigned long halfSize,
                         unsigned long nbElements)
{
    const unsigned long vector = 64;  // bytes of the widest set
    m_startX = processor::alignedCount(halfSize, vector / getDataTypeSize(type));
    m_lines.init(type, m_startX + sizeX + halfSize, nbElements * nbRows);
}

}}}  // namespace orvik::imaproc::filter
