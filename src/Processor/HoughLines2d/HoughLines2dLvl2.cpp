#include "Processor/HoughLines2d/HoughLines2dLvl2.h"

#include "Processor/HoughLines2dImg/HoughLines2dImgLvl2.h"
#include "Processor/HoughLinesSearchStages.h"

#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughLines2dLvl2)

processor::RetrievalResult HoughLines2dLvl2::houghLines(const core::BasePriority& priority, processor::ProviderPtr& provider)
{
    return delegate<HoughLines2dImgLvl2>(priority, provider, same(attribute<InSubImg2d>()),
                                         sameIfSet(attribute<InOptHoughLinesImgParams>()), same(attribute<OutImg>()));
}

}}}  // namespace orvik::imaproc::fd
