#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"

#include "Processor/ExtractLocalExtrema2d/ExtremaSelection.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ExtractLocalExtrema2dLvl2)

// The orders of lists: of maxima, and of minima. Nothing but the value counts.
static constexpr auto isGreater2d = [](const auto& a, const auto& b) { return a.value > b.value; };
static constexpr auto isLower2d = [](const auto& a, const auto& b) { return a.value < b.value; };

processor::RetrievalResult ExtractLocalExtrema2dLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    // There is nothing to see beyond the image, which hinders nothing.
    const image::BaseImage& plane = *value<InSubImg2d>();
    const unsigned long distX = std::min<unsigned long>(value<InFeaturesDistX>(), plane.getSizeX());
    const unsigned long distY = std::min<unsigned long>(value<InFeaturesDistY>(), plane.getSizeY());
    return dispatch<ExtractLocalExtrema2dLvl3>(priority, provider, resultOfEach<OutPixels2d>(m_results),
                                               same(attribute<InLocalExtremaConfig>()),
                                               stripsWithMargins<InKnlYStrip2d>(value<InSubImg2d>(), distX, distY));
}

processor::StageResult ExtractLocalExtrema2dLvl2::postProcess()
{
    value<OutPixels2d>()->access<Pixels2d::Coll>().accessNodes() =
        joinExtrema<Pixels2d>(*m_results, *value<InLocalExtremaConfig>(),
                              image::toDataType(value<InSubImg2d>()->getBufferType()), isGreater2d, isLower2d);
    return processor::eSRT_Done;
}

void ExtractLocalExtrema2dLvl2::clearIntermediateData() noexcept
{
    m_results->clear();
}

}}}  // namespace orvik::imaproc::fd
