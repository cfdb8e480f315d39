#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgLutBuildPassLvl2.h"

#include "siblings/AdvancedMorphology/Processor/ExtremumPropagation.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace advmorpho {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(LabelExtremumPropagation2dImgLutBuildPassLvl2)

processor::RulePtr LabelExtremumPropagation2dImgLutBuildPassLvl2::createRule() const
{
    return matchSize(attribute<InSubImg2d>(), attribute<InSubLabelImg2d>())
           && matchSize(attribute<InSubImg2d>(), attribute<OutImg>())
           && imagesApart(*this, mayBeSame<InSubImg2d, OutImg>, mayBeSame<InSubLabelImg2d, OutImg>);
}

BoolResult LabelExtremumPropagation2dImgLutBuildPassLvl2::runDerived()
{
    return spreadExtremaOfLabels(*value<InSubImg2d>(), *value<InSubLabelImg2d>(), value<InNbLabels>(),
                                 value<InLocalExtremumType>(), *value<OutImg>());
}

}}}  // namespace orvik::imaproc::advmorpho
