#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl3.h"

#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(ExtractLocalExtrema3dLvl3)

processor::StageResult ExtractLocalExtrema3dLvl3::preProcess()
{
    const image::InputImageZStrip3dWithKernel& strip = *value<InKnlZStrip3d>();
    const image::StripMargins& margins = strip.getMargins();
    const std::pair<unsigned long, unsigned long> sizes[] = {
        {margins.startX, margins.endX}, {margins.startY, margins.endY}, {margins.startZ, margins.endZ}};
    for (std::size_t axis = 0; axis < std::size(sizes); ++axis)
        if (sizes[axis].first != sizes[axis].second)
            return failure(getObjectName() + ": the margins of the strip differ, along " + "xyz"[axis] + " "
                           + std::to_string(sizes[axis].first) + " and " + std::to_string(sizes[axis].second));
    const bool lowest = isMinima(value<InLocalExtremaConfig>()->get<LocalExtremaConfig::LocalExtremumType>());
    setBorder<InKnlZStrip3d>(lowest ? image::valuedMaxBorder3d() : image::valuedMinBorder3d());
    readOnDemand<InKnlZStrip3d>();
    if (!m_buffers)
        m_buffers = boost::make_shared<VolumeExtremaBuffers>();
    const eDataType type = image::toDataType(strip.getBufferType());
    m_buffers->scratch.init(type, strip.getSizeX(), margins.startX);
    m_buffers->slice.init(type, strip.getSizeX(), margins.startX, margins.startY);
    if (m_buffers->windows.size() != strip.getSizeY())
        m_buffers->windows = std::vector<ExtremaBuffers>(strip.getSizeY());
    for (ExtremaBuffers& window : m_buffers->windows)
        window.init(type, strip.getSizeX(), margins.startZ);
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
