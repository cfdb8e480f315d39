#include "siblings/Filtering/SeparableStrips.h"

#include "siblings/Filtering/GaussianWeights.h"

#include "frame/processor/BaseDataParser.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace filter {

image::StripMargins makeGaussianMargins(double stdDev, double coverage, const image::BaseImage& plane)
{
    const unsigned long halfSize =
        std::min(static_cast<unsigned long>(getGaussianHalfSize(stdDev, coverage)), plane.getSizeY());
    image::StripMargins margins;
    margins.startY = halfSize;
    margins.endY = halfSize + g_nbLinesAtOnce - 1;
    return margins;
}

BoolResult checkGaussianMargins(const image::BaseImageFragment& strip, unsigned long halfSize)
{
    const image::StripMargins& margins = strip.getMargins();
    if (margins.startY == halfSize && margins.endY == halfSize + g_nbLinesAtOnce - 1)
        return success();
    return failure("the margins of the strip do not fit the kernel, half-size " + std::to_string(halfSize));
}

void CombinedLines::init(eDataType type, unsigned long sizeX, unsigned long halfSize, unsigned long nbLines)
{
    const unsigned long vector = 64;  // bytes of the widest set
    m_startX = processor::alignedCount(halfSize, vector / getDataTypeSize(type));
    m_lines.init(type, m_startX + sizeX + halfSize, nbLines);
}

}}}  // namespace orvik::imaproc::filter
