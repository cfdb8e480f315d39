#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenGeneric.h"
#include "ExtractLocalExtrema2dKernel.h"
#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(ExtractLocalExtrema2dLvl3)
ORVIK_REGISTER_KERNELS(ExtractLocalExtrema2dLvl3, AllKernelTypes, core::eIS_Generic)

ExtractLocalExtrema2dLvl3::ExtractLocalExtrema2dLvl3() = default;
ExtractLocalExtrema2dLvl3::~ExtractLocalExtrema2dLvl3() = default;

processor::RulePtr ExtractLocalExtrema2dLvl3::createRule() const
{
    return processor::none();
}

processor::StageResult ExtractLocalExtrema2dLvl3::preProcess()
{
    const image::InputImageYStrip2dWithKernel& strip = *value<InKnlYStrip2d>();
    const image::StripMargins& margins = strip.getMargins();
    if (margins.startX != margins.endX || margins.startY != margins.endY)
        return processor::StageResult(processor::eSRT_Failed,
                                      getObjectName() + ": the margins of the strip differ, along x "
                                          + std::to_string(margins.startX) + " and " + std::to_string(margins.endX)
                                          + ", along y " + std::to_string(margins.startY) + " and "
                                          + std::to_string(margins.endY));
    const bool lowest = isMinima(value<InLocalExtremaConfig>()->get<LocalExtremaConfig::LocalExtremumType>());
    borderParser<InKnlYStrip2d, KernelYStrip2dParser>().setBorder2dPolicy(lowest ? image::valuedMaxBorder2d()
                                                                                 : image::valuedMinBorder2d());
    m_distX = margins.startX;
    m_distY = margins.startY;
    const eDataType type = image::toDataType(strip.getBufferType());
    // Whole vectors of any set, and as many again beyond the margins.
    const unsigned long vectors = 256, sizeX = processor::alignedCount(strip.getSizeX(), vectors);
    const unsigned long lineSize = sizeX + 2 * m_distX + vectors;
    const auto initLowest = [&](image::TypedOwnBuffer& buffer, unsigned long size) {
        buffer.init(size, type);
        image::fillBorder(image::valuedMinBorder2d(), type, buffer.getDataPtr(), size);
    };
    initLowest(m_lowest, lineSize);
    initLowest(m_row, lineSize + vectors);  // some of it before the line
    initLowest(m_side, lineSize + m_distX);
    initLowest(m_prefix, sizeX);
    initLowest(m_fold, sizeX);
    m_lines.init(type, sizeX, m_distY);
    for (unsigned long i = 0; i < m_distY; ++i)
        image::fillBorder(image::valuedMinBorder2d(), type, m_lines.getDataPtr(i), sizeX);
    const unsigned long wordBits = 64;
    m_nbWords = sizeX / wordBits;
    m_open.assign(m_nbWords * (m_distY + 1), 0);
    return processor::StageResult(processor::eSRT_Done);
}

}}}  // namespace orvik::imaproc::fd
