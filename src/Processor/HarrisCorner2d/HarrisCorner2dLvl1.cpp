#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"

#include "Processor/HarrisCorner2d/HarrisCorner2dLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/PlanIndexedInitializers.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Filtering/GaussianRules.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HarrisCorner2dLvl1)

processor::RulePtr HarrisCorner2dLvl1::createRule() const
{
    const WeakImage in = attribute<InImg>();
    const WeakImage wk1 = attribute<OutWk1Img>(), wk2 = attribute<OutWk2Img>(), wk3 = attribute<OutWk3Img>();
    return matchImagePlans(attribute<OutPIPixels2d>(), in, eIPMP_Planes) && matchSize(in, wk1)
           && matchSizeAndType(wk1, wk2, wk3)
           && filter::makesGaussian(attribute<InOptGradStdDev>(), attribute<InOptGradientGaussianCoverage>())
           && imagesApart(*this, mayBeSame<InImg, OutWk3Img>);
}

void HarrisCorner2dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    promoteEach(initializers, attribute<InImg>(), attribute<OutWk1Img>(), attribute<OutWk2Img>(), attribute<OutWk3Img>());
    addInitializer<OutPIPixels2d>(initializers, fromImage(attribute<OutPIPixels2d>(), attribute<InImg>()));
}

processor::RetrievalResult HarrisCorner2dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                processor::ProviderPtr& provider)
{
    return dispatch<HarrisCorner2dLvl2>(priority, provider,
                                        entryOfEachPlane<OutPixels2d>(value<OutPIPixels2d>(), *value<InImg>()),
                                        eachPlane<OutWk3Img>(value<OutWk3Img>()), eachPlane<OutWk2Img>(value<OutWk2Img>()),
                                        eachPlane<OutWk1Img>(value<OutWk1Img>()), same(attribute<InFeaturesDistY>()),
                                        same(attribute<InFeaturesDistX>()), same(attribute<InLocalExtremaConfig>()),
                                        same<InCornerDetectionParams>(value<InOptCornerDetectionParams2d>()),
                                        same<InGaussianCoverage>(value<InOptGradientGaussianCoverage>()),
                                        same<InGradStdDev>(value<InOptGradStdDev>()), eachPlane<InSubImg2d>(value<InImg>()));
}

typedef FunctionForms<HarrisCorner2dLvl1, OutPIPixels2d> Forms;

static void prepare(Forms::Processor& processor, const ConstImagePtr& inImg, const ConstPtr<LocalExtremaConfig>& config,
                    unsigned int featuresDistX, unsigned int featuresDistY)
{
    processor.set<InImg>(inImg);
    processor.set<InLocalExtremaConfig>(config);
    processor.set<InFeaturesDistX>(featuresDistX);
    processor.set<InFeaturesDistY>(featuresDistY);
}

ORVIK_PLANE_FUNCTIONS(harrisCorner2d, (const ConstImagePtr&, inImg)(unsigned long, maxNbCorners)(unsigned int, featuresDist))
{
    prepare(processor, inImg, createLocalExtremaConfig(maxNbCorners), featuresDist, featuresDist);
}

ORVIK_PLANE_FUNCTIONS(harrisCorner2d, (const ConstImagePtr&, inImg)(float, inOptGradStdDev)(unsigned long, maxNbCorners)(
                                          unsigned int, featuresDist))
{
    prepare(processor, inImg, maxNbCorners, featuresDist);
    processor.set<InOptGradStdDev>(inOptGradStdDev);
}

ORVIK_PLANE_FUNCTIONS(harrisCorner2d,
                      (const ConstImagePtr&, inImg)(float, inOptGradStdDev)(const ConstPtr<GaussianCoverage>&,
                                                                            inOptGradientGaussianCoverage)(
                          const ConstPtr<CornerDetectionParams>&, inOptCornerDetectionParams)(unsigned long, maxNbCorners)(
                          double, threshold)(unsigned int, featuresDistX)(unsigned int, featuresDistY))
{
    prepare(processor, inImg, createLocalExtremaConfig(threshold, maxNbCorners), featuresDistX, featuresDistY);
    processor.set<InOptGradStdDev>(inOptGradStdDev);
    processor.set<InOptGradientGaussianCoverage>(inOptGradientGaussianCoverage);
    processor.set<InOptCornerDetectionParams2d>(inOptCornerDetectionParams);
}

ORVIK_PLANE_READERS

}}}  // namespace orvik::imaproc::fd
