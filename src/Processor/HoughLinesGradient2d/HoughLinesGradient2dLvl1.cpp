#include "Processor/HoughLinesGradient2d/HoughLinesGradient2dLvl1.h"

#include "Processor/HoughLinesGradient2d/HoughLinesGradient2dLvl2.h"
#include "Processor/HoughLinesLists.h"
#include "Rule/AccumulatorRule.h"
#include "Rule/HoughLines2dImgRuleUtils.h"
#include "Rule/RealImageRule.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/PlanIndexedInitializers.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughLinesGradient2dLvl1)

processor::RulePtr HoughLinesGradient2dLvl1::createRule() const
{
    const auto& gx = attribute<InGxGreyImg2d>();
    const auto& params = attribute<InOptHoughLinesGradientImgParams>();
    const auto& extraction = attribute<InOptHoughLinesExtractionParams>();
    const auto& out = attribute<OutOptRealImg>();
    return matchSizeAndType(gx, attribute<InGyGreyImg2d>())
           && If(processor::isSet(out),
                 accumulatorFits(gx, out, houghLines2dCheckOutImgSzXEquals(gx, params),
                                 houghLines2dCheckOutImgSzYEquals(gx, params, extraction), isReal(gx, out)),
                 processor::none())
           && accumulatorHasBins(gx, outputHoughLinesGradient2d(gx, params, extraction))
           && toleranceIsNumber(attribute<InOptHoughLinesOrientationTolerance>()) && imagesApart(*this);
}

void HoughLinesGradient2dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutPIHoughLines2dPpties>(initializers,
                                            fromImage(attribute<OutPIHoughLines2dPpties>(), attribute<InGxGreyImg2d>()));
}

processor::RetrievalResult HoughLinesGradient2dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    const BoolResult made =
        prepareLines(attribute<OutPIHoughLines2dPpties>(), attribute<InGxGreyImg2d>(), attribute<OutOptRealImg>(),
                     outputHoughLinesGradient2d(attribute<InGxGreyImg2d>(), attribute<InOptHoughLinesGradientImgParams>(),
                                                attribute<InOptHoughLinesExtractionParams>()));
    if (!made)
        return made;
    return dispatch<HoughLinesGradient2dLvl2>(
        priority, provider,
        entryOfEachPlane<OutHoughLines2dPpties>(value<OutPIHoughLines2dPpties>(), *value<InGxGreyImg2d>()),
        eachPlane<OutRealImg>(value<OutOptRealImg>()), sameIfSet(attribute<InOptHoughLinesGradientImgParams>()),
        sameIfSet(attribute<InOptHoughLinesOrientationTolerance>()), sameIfSet(attribute<InOptHoughLinesExtractionParams>()),
        eachPlane<InSubGxImg2d>(value<InGxGreyImg2d>()), eachPlane<InSubGyImg2d>(value<InGyGreyImg2d>()));
}

typedef FunctionForms<HoughLinesGradient2dLvl1, OutPIHoughLines2dPpties, OutOptRealImg> Forms;

ORVIK_PLANE_FUNCTIONS(houghLinesGradient2d, (const ConstImagePtr&, gx)(const ConstImagePtr&, gy))
{
    processor.set<InGxGreyImg2d>(gx);
    processor.set<InGyGreyImg2d>(gy);
}

ORVIK_PLANE_FUNCTIONS(houghLinesGradient2d, (const ConstImagePtr&, gx)(const ConstImagePtr&, gy)(
                                                const ConstPtr<HoughLinesGradientImgParams>&, imgParams)(
                                                const ConstPtr<HoughLinesExtractionParams>&, extrParams)(float, tolerance))
{
    prepare(processor, gx, gy);
    processor.set<InOptHoughLinesGradientImgParams>(imgParams);
    processor.set<InOptHoughLinesExtractionParams>(extrParams);
    processor.set<InOptHoughLinesOrientationTolerance>(tolerance);
}

ORVIK_PLANE_READERS

}}}  // namespace orvik::imaproc::fd
