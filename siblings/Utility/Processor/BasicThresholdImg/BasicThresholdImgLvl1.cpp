#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl1.h"

#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace util {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(BasicThresholdImgLvl1)

processor::RulePtr BasicThresholdImgLvl1::createRule() const
{
    return matchSize(attribute<InImg>(), attribute<OutBinImg>()) && imagesApart(*this, mayBeSame<InImg, OutBinImg>);
}

void BasicThresholdImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutBinImg>(initializers, duplicateInOut(attribute<OutBinImg>(), attribute<InImg>(), image::eIBT_Binary));
}

processor::RetrievalResult BasicThresholdImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                   processor::ProviderPtr& provider)
{
    return dispatch<BasicThresholdImgLvl2>(priority, provider, eachPlane<InSubImg2d>(value<InImg>()),
                                           same(attribute<InThresholdMin>()), same(attribute<InThresholdMax>()),
                                           eachPlane<OutBinImg>(value<OutBinImg>()));
}

}}}  // namespace orvik::imaproc::util
