#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl1.h"

#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/PlanIndexedInitializers.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ExtractHoughPeaks2dLvl1)

void ExtractHoughPeaks2dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutPIPixels2d>(initializers, fromImage(attribute<OutPIPixels2d>(), attribute<InGxGreyImg2d>()));
}

processor::RetrievalResult ExtractHoughPeaks2dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                     processor::ProviderPtr& provider)
{
    const Ptr<PlanIndexedPixels2d>& lists = value<OutPIPixels2d>();
    const ConstImagePtr gx = planesOf(*lists, value<InGxGreyImg2d>()), gy = planesOf(*lists, value<InGyGreyImg2d>());
    return dispatch<ExtractHoughPeaks2dLvl2>(priority, provider, entryOfEachPlane<OutPixels2d>(lists, *gx),
                                             same(attribute<InOptLowestMax>()), eachPlane<InSubGxImg2d>(gx),
                                             eachPlane<InSubGyImg2d>(gy));
}

typedef FunctionForms<ExtractHoughPeaks2dLvl1, OutPIPixels2d> Forms;

ORVIK_PLANE_FUNCTIONS(extractHoughPeaks2d, (const ConstImagePtr&, gx)(const ConstImagePtr&, gy)(const double&, lowestMax))
{
    processor.set<InGxGreyImg2d>(gx);
    processor.set<InGyGreyImg2d>(gy);
    processor.set<InOptLowestMax>(lowestMax);
}

ORVIK_PLANE_READERS

}}}  // namespace orvik::imaproc::fd
