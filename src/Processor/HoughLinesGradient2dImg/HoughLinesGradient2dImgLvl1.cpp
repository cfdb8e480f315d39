#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl1.h"

#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl2.h"
#include "Rule/AccumulatorRule.h"
#include "Rule/HoughLines2dImgRuleUtils.h"
#include "Rule/RealImageRule.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughLinesGradient2dImgLvl1)

processor::RulePtr HoughLinesGradient2dImgLvl1::createRule() const
{
    const auto& gx = attribute<InGxGreyImg2d>();
    const auto& params = attribute<InOptHoughLinesGradientImgParams>();
    const auto& out = attribute<OutRealImg>();
    return matchSizeAndType(gx, attribute<InGyGreyImg2d>())
           && accumulatorFits(gx, out, houghLines2dCheckOutImgSzXEquals(gx, params),
                              houghLines2dCheckOutImgSzYEquals(gx, params), isReal(gx, out))
           && accumulatorHasBins(gx, outputHoughLinesGradient2dImg(gx, params))
           && toleranceIsNumber(attribute<InOptHoughLinesOrientationTolerance>()) && imagesApart(*this);
}

void HoughLinesGradient2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutRealImg>(initializers,
                               customOutput(attribute<OutRealImg>(),
                                            outputHoughLinesGradient2dImg(attribute<InGxGreyImg2d>(),
                                                                          attribute<InOptHoughLinesGradientImgParams>())));
}

processor::RetrievalResult HoughLinesGradient2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                         processor::ProviderPtr& provider)
{
    return dispatch<HoughLinesGradient2dImgLvl2>(priority, provider, eachPlane<OutRealImg>(value<OutRealImg>()),
                                                 eachPlane<InSubGxImg2d>(value<InGxGreyImg2d>()),
                                                 eachPlane<InSubGyImg2d>(value<InGyGreyImg2d>()),
                                                 sameIfSet(attribute<InOptHoughLinesGradientImgParams>()),
                                                 sameIfSet(attribute<InOptHoughLinesOrientationTolerance>()));
}

typedef FunctionForms<HoughLinesGradient2dImgLvl1, OutRealImg> Forms;

ORVIK_FUNCTION(houghLinesGradient2dImg, (const ConstImagePtr&, gx)(const ConstImagePtr&, gy))
{
    processor.set<InGxGreyImg2d>(gx);
    processor.set<InGyGreyImg2d>(gy);
}

ORVIK_FUNCTION(houghLinesGradient2dImg, (const ConstImagePtr&, gx)(const ConstImagePtr&, gy)(
                                            const ConstPtr<HoughLinesGradientImgParams>&, params)(float, tolerance))
{
    prepare(processor, gx, gy);
    processor.set<InOptHoughLinesGradientImgParams>(params);
    processor.set<InOptHoughLinesOrientationTolerance>(tolerance);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
