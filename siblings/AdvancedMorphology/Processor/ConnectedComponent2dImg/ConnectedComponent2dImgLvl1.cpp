#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl1.h"

#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace advmorpho {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ConnectedComponent2dImgLvl1)

processor::RulePtr ConnectedComponent2dImgLvl1::createRule() const
{
    return matchSize(attribute<InBinLabImg>(), attribute<OutLabelImg>())
           && imagesApart(*this, mayBeSame<InBinLabImg, OutLabelImg>);
}

void ConnectedComponent2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutLabelImg>(initializers,
                                duplicateInOut(attribute<OutLabelImg>(), attribute<InBinLabImg>(), image::eIBT_Label32));
}

processor::RetrievalResult ConnectedComponent2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                         processor::ProviderPtr& provider)
{
    return dispatch<ConnectedComponent2dImgLvl2>(priority, provider, eachPlane<InSubImg2d>(value<InBinLabImg>()),
                                                 same<InNeighborhood2d>(value<InOptNeighborhood2d>()),
                                                 resultOfEach<OutPlaneComponents>(m_components));
}

processor::StageResult ConnectedComponent2dImgLvl1::postProcess()
{
    return writeLabels(*m_components, 1, *value<OutLabelImg>(), attribute<OutMaxLabel>()->accessValue());
}

void ConnectedComponent2dImgLvl1::clearIntermediateData() noexcept
{
    m_components->clear();
}

}}}  // namespace orvik::imaproc::advmorpho
