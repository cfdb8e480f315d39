#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl1.h"

#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/PlanIndexedInitializers.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ExtractLocalExtrema3dLvl1)

processor::RulePtr ExtractLocalExtrema3dLvl1::createRule() const
{
    return matchImagePlans(attribute<OutPIVoxels3d>(), attribute<InImg3d>(), eIPMP_Volumes);
}

void ExtractLocalExtrema3dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutPIVoxels3d>(initializers, fromImageButVolume(attribute<OutPIVoxels3d>(), attribute<InImg3d>()));
}

processor::RetrievalResult ExtractLocalExtrema3dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    if (!attribute<InOptLocalExtremaConfig>()->hasValue())
        set<InOptLocalExtremaConfig>(createLocalExtremaConfig());
    return dispatch<ExtractLocalExtrema3dLvl2>(priority, provider,
                                               entryOfEachVolume<OutVoxels3d>(value<OutPIVoxels3d>(), *value<InImg3d>()),
                                               same<InLocalExtremaConfig>(value<InOptLocalExtremaConfig>()),
                                               same(attribute<InFeaturesDistX>()), same(attribute<InFeaturesDistY>()),
                                               same(attribute<InFeaturesDistZ>()), eachVolume<InSubImg3d>(value<InImg3d>()));
}

typedef FunctionForms<ExtractLocalExtrema3dLvl1, OutPIVoxels3d> Forms;

ORVIK_PLANE_FUNCTIONS(extractLocalExtrema3d, (const ConstImagePtr&, inImg3d)(unsigned int, inFeaturesDistX)(
                                                 unsigned int, inFeaturesDistY)(unsigned int, inFeaturesDistZ))
{
    processor.set<InImg3d>(inImg3d);
    processor.set<InFeaturesDistX>(inFeaturesDistX);
    processor.set<InFeaturesDistY>(inFeaturesDistY);
    processor.set<InFeaturesDistZ>(inFeaturesDistZ);
}

ORVIK_PLANE_FUNCTIONS(extractLocalExtrema3d,
                      (const ConstImagePtr&, inImg3d)(unsigned int, inFeaturesDistX)(unsigned int, inFeaturesDistY)(
                          unsigned int, inFeaturesDistZ)(const ConstPtr<LocalExtremaConfig>&, inOptLocalExtremaConfig))
{
    prepare(processor, inImg3d, inFeaturesDistX, inFeaturesDistY, inFeaturesDistZ);
    processor.set<InOptLocalExtremaConfig>(inOptLocalExtremaConfig);
}

ORVIK_PLANE_READERS

}}}  // namespace orvik::imaproc::fd
