#include "Processor/HoughLinesGradient2d/HoughLinesGradient2dLvl2.h"

#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl2.h"
#include "Processor/HoughLinesSearchStages.h"

#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughLinesGradient2dLvl2)

processor::RetrievalResult HoughLinesGradient2dLvl2::houghLines(const core::BasePriority& priority,
                                                                processor::ProviderPtr& provider)
{
    return delegate<HoughLinesGradient2dImgLvl2>(priority, provider, same(attribute<InSubGxImg2d>()),
                                                 same(attribute<InSubGyImg2d>()),
                                                 sameIfSet(attribute<InOptHoughLinesGradientImgParams>()),
                                                 sameIfSet(attribute<InOptHoughLinesOrientationTolerance>()),
                                                 same(attribute<OutRealImg>()));
}

}}}  // namespace orvik::imaproc::fd
