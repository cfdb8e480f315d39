#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/PlanIndexedInitializers.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ExtractLocalExtrema2dLvl1)

processor::RulePtr ExtractLocalExtrema2dLvl1::createRule() const
{
    return matchImagePlans(attribute<OutPIPixels2d>(), attribute<InImg>(), eIPMP_Planes);
}

void ExtractLocalExtrema2dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutPIPixels2d>(initializers, fromImage(attribute<OutPIPixels2d>(), attribute<InImg>()));
}

processor::RetrievalResult ExtractLocalExtrema2dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    if (!attribute<InOptLocalExtremaConfig>()->hasValue())
        set<InOptLocalExtremaConfig>(createLocalExtremaConfig());
    return dispatch<ExtractLocalExtrema2dLvl2>(priority, provider,
                                               entryOfEachPlane<OutPixels2d>(value<OutPIPixels2d>(), *value<InImg>()),
                                               same<InLocalExtremaConfig>(value<InOptLocalExtremaConfig>()),
                                               same(attribute<InFeaturesDistX>()), same(attribute<InFeaturesDistY>()),
                                               eachPlane<InSubImg2d>(value<InImg>()));
}

typedef FunctionForms<ExtractLocalExtrema2dLvl1, OutPIPixels2d> Forms;

ORVIK_PLANE_FUNCTIONS(extractLocalExtrema2d,
                      (const ConstImagePtr&, inImg)(unsigned int, inFeaturesDistX)(unsigned int, inFeaturesDistY))
{
    processor.set<InImg>(inImg);
    processor.set<InFeaturesDistX>(inFeaturesDistX);
    processor.set<InFeaturesDistY>(inFeaturesDistY);
}

ORVIK_PLANE_FUNCTIONS(extractLocalExtrema2d,
                      (const ConstImagePtr&, inImg)(unsigned int, inFeaturesDistX)(unsigned int, inFeaturesDistY)(
                          const ConstPtr<LocalExtremaConfig>&, inOptLocalExtremaConfig))
{
    prepare(processor, inImg, inFeaturesDistX, inFeaturesDistY);
    processor.set<InOptLocalExtremaConfig>(inOptLocalExtremaConfig);
}

ORVIK_PLANE_READERS

}}}  // namespace orvik::imaproc::fd
