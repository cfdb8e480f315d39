#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"

#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Filtering/GaussianRules.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HarrisCorner2dImgLvl1)

processor::RulePtr HarrisCorner2dImgLvl1::createRule() const
{
    const WeakImage in = attribute<InImg>(), out = attribute<OutImg>();
    const WeakImage wk1 = attribute<OutWk1Img>(), wk2 = attribute<OutWk2Img>(), wk3 = attribute<OutWk3Img>();
    return matchSize(in, wk1) && matchSizeAndType(wk1, out) && matchSizeAndType(wk1, wk2, wk3)
           && filter::makesGaussian(attribute<InOptGradStdDev>(), attribute<InOptGradientGaussianCoverage>())
           && imagesApart(*this, mayBeSame<InImg, OutImg>, mayBeSame<InImg, OutWk3Img>, mayBeSame<OutWk1Img, OutImg>,
                          mayBeSame<OutWk2Img, OutImg>, mayBeSame<OutWk3Img, OutImg>);
}

void HarrisCorner2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    promoteEach(initializers, attribute<InImg>(), attribute<OutWk1Img>(), attribute<OutWk2Img>(), attribute<OutWk3Img>(),
                attribute<OutImg>());
}

processor::RetrievalResult HarrisCorner2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                   processor::ProviderPtr& provider)
{
    return dispatch<HarrisCorner2dImgLvl2>(
        priority, provider, eachPlane<OutImg>(value<OutImg>()), eachPlane<OutWk3Img>(value<OutWk3Img>()),
        eachPlane<OutWk2Img>(value<OutWk2Img>()), eachPlane<OutWk1Img>(value<OutWk1Img>()),
        same<InCornerDetectionParams>(value<InOptCornerDetectionParams2d>()),
        same<InGaussianCoverage>(value<InOptGradientGaussianCoverage>()), same<InGradStdDev>(value<InOptGradStdDev>()),
        eachPlane<InSubImg2d>(value<InImg>()));
}

typedef FunctionForms<HarrisCorner2dImgLvl1, OutImg> Forms;

ORVIK_FUNCTION(harrisCorner2dImg, (const ConstImagePtr&, inImg))
{
    processor.set<InImg>(inImg);
}

ORVIK_FUNCTION(harrisCorner2dImg, (const ConstImagePtr&, inImg)(float, inOptGradStdDev))
{
    prepare(processor, inImg);
    processor.set<InOptGradStdDev>(inOptGradStdDev);
}

ORVIK_PROCEDURE(harrisCorner2dImg,
                (const ConstImagePtr&, inImg)(float, inOptGradStdDev)(const ConstPtr<GaussianCoverage>&,
                                                                      inOptGradientGaussianCoverage)(
                    const ConstPtr<CornerDetectionParams>&, inOptCornerDetectionParams)(const ImagePtr&, outImg))
{
    prepare(processor, inImg, inOptGradStdDev);
    processor.set<InOptGradientGaussianCoverage>(inOptGradientGaussianCoverage);
    processor.set<InOptCornerDetectionParams2d>(inOptCornerDetectionParams);
    processor.set<OutImg>(outImg);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
