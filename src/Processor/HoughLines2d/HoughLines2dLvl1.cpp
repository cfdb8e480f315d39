#include "Processor/HoughLines2d/HoughLines2dLvl1.h"

#include "Processor/HoughLines2d/HoughLines2dLvl2.h"
#include "Processor/HoughLinesLists.h"
#include "Rule/AccumulatorRule.h"
#include "Rule/HoughLines2dImgRuleUtils.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/PlanIndexedInitializers.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughLines2dLvl1)

processor::RulePtr HoughLines2dLvl1::createRule() const
{
    const boost::shared_ptr<InGreyImg2d>& in = attribute<InGreyImg2d>();
    const boost::shared_ptr<InOptHoughLinesImgParams>& params = attribute<InOptHoughLinesImgParams>();
    const boost::shared_ptr<InOptHoughLinesExtractionParams>& extraction = attribute<InOptHoughLinesExtractionParams>();
    const boost::shared_ptr<OutOptImg>& out = attribute<OutOptImg>();
    return If(processor::isSet(out),
              accumulatorFits(in, out, houghLines2dCheckOutImgSzXEquals(in, params),
                              houghLines2dCheckOutImgSzYEquals(in, params, extraction),
                              customImageProperty(out, houghLines2dCheckOutImgBufferType(in))),
              processor::none())
           && accumulatorHasBins(in, outputHoughLines2d(in, params, extraction));
}

void HoughLines2dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutPIHoughLines2dPpties>(initializers,
                                            fromImage(attribute<OutPIHoughLines2dPpties>(), attribute<InGreyImg2d>()));
}

processor::RetrievalResult HoughLines2dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                              processor::ProviderPtr& provider)
{
    const BoolResult made = prepareLines(attribute<OutPIHoughLines2dPpties>(), attribute<InGreyImg2d>(),
                                         attribute<OutOptImg>(),
                                         outputHoughLines2d(attribute<InGreyImg2d>(), attribute<InOptHoughLinesImgParams>(),
                                                            attribute<InOptHoughLinesExtractionParams>()));
    if (!made)
        return made;
    return dispatch<HoughLines2dLvl2>(
        priority, provider, entryOfEachPlane<OutHoughLines2dPpties>(value<OutPIHoughLines2dPpties>(), *value<InGreyImg2d>()),
        eachPlane<OutImg>(value<OutOptImg>()), sameIfSet(attribute<InOptHoughLinesImgParams>()),
        sameIfSet(attribute<InOptHoughLinesExtractionParams>()), eachPlane<InSubImg2d>(value<InGreyImg2d>()));
}

typedef FunctionForms<HoughLines2dLvl1, OutPIHoughLines2dPpties, OutOptImg> Forms;

ORVIK_PLANE_FUNCTIONS(houghLines2d, (const ConstImagePtr&, inGreyImg))
{
    processor.set<InGreyImg2d>(inGreyImg);
}

ORVIK_PLANE_FUNCTIONS(houghLines2d,
                      (const ConstImagePtr&, inGreyImg)(const ConstPtr<HoughLinesImgParams>&, inOptHoughLinesImgParams)(
                          const ConstPtr<HoughLinesExtractionParams>&, inOptHoughLinesExtractionParams))
{
    prepare(processor, inGreyImg);
    processor.set<InOptHoughLinesImgParams>(inOptHoughLinesImgParams);
    processor.set<InOptHoughLinesExtractionParams>(inOptHoughLinesExtractionParams);
}

ORVIK_PLANE_READERS

}}}  // namespace orvik::imaproc::fd
