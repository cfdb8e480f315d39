#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl1.h"

#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl2.h"

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

ORVIK_DEFINE_PROCESSOR(HarrisCorner3dImgLvl1)

processor::RulePtr HarrisCorner3dImgLvl1::createRule() const
{
    const WeakImage in = attribute<InImg3d>(), out = attribute<OutImg>(), wk1 = attribute<OutWk1Img>();
    return matchSize(in, wk1) && matchSizeAndType(wk1, out)
           && matchSizeAndType(wk1, attribute<OutWk2Img>(), attribute<OutWk3Img>(), attribute<OutWk4Img>(),
                               attribute<OutWk5Img>(), attribute<OutWk6Img>())
           && filter::makesGaussian(attribute<InOptGradStdDev>(), attribute<InOptGradientGaussianCoverage>())
           && imagesApart(*this, mayBeSame<InImg3d, OutImg>, mayBeSame<InImg3d, OutWk4Img>, mayBeSame<InImg3d, OutWk5Img>,
                          mayBeSame<InImg3d, OutWk6Img>, mayBeSame<OutWk1Img, OutImg>, mayBeSame<OutWk2Img, OutImg>,
                          mayBeSame<OutWk3Img, OutImg>, mayBeSame<OutWk4Img, OutImg>, mayBeSame<OutWk5Img, OutImg>,
                          mayBeSame<OutWk6Img, OutImg>);
}

void HarrisCorner3dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    promoteEach(initializers, attribute<InImg3d>(), attribute<OutWk1Img>(), attribute<OutWk2Img>(), attribute<OutWk3Img>(),
                attribute<OutWk4Img>(), attribute<OutWk5Img>(), attribute<OutWk6Img>(), attribute<OutImg>());
}

processor::RetrievalResult HarrisCorner3dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                   processor::ProviderPtr& provider)
{
    return dispatch<HarrisCorner3dImgLvl2>(priority, provider, eachVolume(attribute<OutImg>()),
                                           eachVolume(attribute<OutWk6Img>()), eachVolume(attribute<OutWk5Img>()),
                                           eachVolume(attribute<OutWk4Img>()), eachVolume(attribute<OutWk3Img>()),
                                           eachVolume(attribute<OutWk2Img>()), eachVolume(attribute<OutWk1Img>()),
                                           same<InCornerDetectionParams>(value<InOptCornerDetectionParams3d>()),
                                           same<InGaussianCoverage>(value<InOptGradientGaussianCoverage>()),
                                           same<InGradStdDev>(value<InOptGradStdDev>()),
                                           eachVolume<InSubImg3d>(value<InImg3d>()));
}

typedef FunctionForms<HarrisCorner3dImgLvl1, OutImg> Forms;

ORVIK_FUNCTION(harrisCorner3dImg, (const ConstImagePtr&, inImg3d))
{
    processor.set<InImg3d>(inImg3d);
}

ORVIK_FUNCTION(harrisCorner3dImg, (const ConstImagePtr&, inImg3d)(float, inOptGradStdDev))
{
    prepare(processor, inImg3d);
    processor.set<InOptGradStdDev>(inOptGradStdDev);
}

ORVIK_PROCEDURE(harrisCorner3dImg,
                (const ConstImagePtr&, inImg3d)(float, inOptGradStdDev)(const ConstPtr<GaussianCoverage>&,
                                                                        inOptGradientGaussianCoverage)(
                    const ConstPtr<CornerDetectionParams>&, inOptCornerDetectionParams)(const ImagePtr&, outImg))
{
    prepare(processor, inImg3d, inOptGradStdDev);
    processor.set<InOptGradientGaussianCoverage>(inOptGradientGaussianCoverage);
    processor.set<InOptCornerDetectionParams3d>(inOptCornerDetectionParams);
    processor.set<OutImg>(outImg);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
