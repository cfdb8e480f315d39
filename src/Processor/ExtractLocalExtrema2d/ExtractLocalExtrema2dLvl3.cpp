#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl3.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(ExtractLocalExtrema2dLvl3)

processor::StageResult ExtractLocalExtrema2dLvl3::preProcess()
{
    const image::InputImageYStrip2dWithKernel& strip = *value<InKnlYStrip2d>();
    const image::StripMargins& margins = strip.getMargins();
    if (margins.startX != margins.endX || margins.startY != margins.endY)
        return failure(getObjectName() + ": the margins of the strip differ, along x " + std::to_string(margins.startX)
                       + " and " + std::to_string(margins.endX) + ", along y " + std::to_string(margins.startY) + " and "
                       + std::to_string(margins.endY));
    const bool lowest = isMinima(value<InLocalExtremaConfig>()->get<LocalExtremaConfig::LocalExtremumType>());
    setBorder<InKnlYStrip2d>(lowest ? image::valuedMaxBorder2d() : image::valuedMinBorder2d());
    if (!m_buffers)
        m_buffers = boost::make_shared<PlaneExtremaBuffers>();
    const eDataType type = image::toDataType(strip.getBufferType());
    m_buffers->scratch.init(type, strip.getSizeX(), margins.startX);
    m_buffers->window.init(type, strip.getSizeX(), margins.startY);
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
