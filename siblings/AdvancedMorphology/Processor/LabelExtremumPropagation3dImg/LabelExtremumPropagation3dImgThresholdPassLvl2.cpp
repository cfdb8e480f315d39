#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation3dImg/LabelExtremumPropagation3dImgThresholdPassLvl2.h"

#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgThresholdPassLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelPropagationStages.h"

#include "frame/imaproc/Stages.h"

namespace orvik { namespace imaproc { namespace advmorpho {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(LabelExtremumPropagation3dImgThresholdPassLvl2)

processor::RetrievalResult LabelExtremumPropagation3dImgThresholdPassLvl2::retrieveProvider(
    const core::BasePriority& priority, processor::ProviderPtr& provider)
{
    return dispatch<LabelExtremumPropagation2dImgThresholdPassLvl2>(
        priority, provider, eachPlane<InSubImg2d>(value<InSubImg3d>()), eachPlane<OutBinImg>(value<OutBinImg>()));
}

}}}  // namespace orvik::imaproc::advmorpho
