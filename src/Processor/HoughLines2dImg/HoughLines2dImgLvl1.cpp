#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"

#include "Processor/HoughLines2dImg/HoughLines2dImgLvl2.h"
#include "Rule/AccumulatorRule.h"
#include "Rule/HoughLines2dImgRuleUtils.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughLines2dImgLvl1)

processor::RulePtr HoughLines2dImgLvl1::createRule() const
{
    const boost::shared_ptr<InGreyImg2d>& in = attribute<InGreyImg2d>();
    const boost::shared_ptr<InOptHoughLinesImgParams>& params = attribute<InOptHoughLinesImgParams>();
    const boost::shared_ptr<OutImg>& out = attribute<OutImg>();
    return accumulatorFits(in, out, houghLines2dCheckOutImgSzXEquals(in, params),
                           houghLines2dCheckOutImgSzYEquals(in, params),
                           customImageProperty(out, houghLines2dCheckOutImgBufferType(in)))
           && accumulatorHasBins(in, outputHoughLines2dImg(in, params));
}

void HoughLines2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutImg>(initializers,
                           customOutput(attribute<OutImg>(), outputHoughLines2dImg(attribute<InGreyImg2d>(),
                                                                                   attribute<InOptHoughLinesImgParams>())));
}

processor::RetrievalResult HoughLines2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                 processor::ProviderPtr& provider)
{
    return dispatch<HoughLines2dImgLvl2>(priority, provider, eachPlane<OutImg>(value<OutImg>()),
                                         eachPlane<InSubImg2d>(value<InGreyImg2d>()),
                                         sameIfSet(attribute<InOptHoughLinesImgParams>()));
}

typedef FunctionForms<HoughLines2dImgLvl1, OutImg> Forms;

ORVIK_FUNCTION(houghLines2dImg, (const ConstImagePtr&, inGreyImg))
{
    processor.set<InGreyImg2d>(inGreyImg);
}

ORVIK_FUNCTION(houghLines2dImg,
               (const ConstImagePtr&, inGreyImg)(const ConstPtr<HoughLinesImgParams>&, inOptHoughLinesImgParams))
{
    prepare(processor, inGreyImg);
    processor.set<InOptHoughLinesImgParams>(inOptHoughLinesImgParams);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
