#include "Processor/HarrisCorner3d/HarrisCorner3dLvl1.h"

#include "Processor/HarrisCorner3d/HarrisCorner3dLvl2.h"

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

ORVIK_DEFINE_PROCESSOR(HarrisCorner3dLvl1)

processor::RulePtr HarrisCorner3dLvl1::createRule() const
{
    const WeakImage in = attribute<InImg3d>(), wk1 = attribute<OutWk1Img>();
    return matchImagePlans(attribute<OutPIVoxels3d>(), in, eIPMP_Volumes) && matchSize(in, wk1)
           && matchSizeAndType(wk1, attribute<OutWk2Img>(), attribute<OutWk3Img>(), attribute<OutWk4Img>(),
                               attribute<OutWk5Img>(), attribute<OutWk6Img>())
           && filter::makesGaussian(attribute<InOptGradStdDev>(), attribute<InOptGradientGaussianCoverage>())
           && imagesApart(*this, mayBeSame<InImg3d, OutWk4Img>, mayBeSame<InImg3d, OutWk5Img>,
                          mayBeSame<InImg3d, OutWk6Img>);
}

void HarrisCorner3dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    promoteEach(initializers, attribute<InImg3d>(), attribute<OutWk1Img>(), attribute<OutWk2Img>(), attribute<OutWk3Img>(),
                attribute<OutWk4Img>(), attribute<OutWk5Img>(), attribute<OutWk6Img>());
    addInitializer<OutPIVoxels3d>(initializers, fromImageButVolume(attribute<OutPIVoxels3d>(), attribute<InImg3d>()));
}

processor::RetrievalResult HarrisCorner3dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                processor::ProviderPtr& provider)
{
    return dispatch<HarrisCorner3dLvl2>(
        priority, provider, entryOfEachVolume<OutVoxels3d>(value<OutPIVoxels3d>(), *value<InImg3d>()),
        eachVolume(attribute<OutWk6Img>()), eachVolume(attribute<OutWk5Img>()), eachVolume(attribute<OutWk4Img>()),
        eachVolume(attribute<OutWk3Img>()), eachVolume(attribute<OutWk2Img>()), eachVolume(attribute<OutWk1Img>()),
        eachVolume<InSubImg3d>(value<InImg3d>()), same(attribute<InFeaturesDistZ>()), same(attribute<InFeaturesDistY>()),
        same(attribute<InFeaturesDistX>()), same(attribute<InLocalExtremaConfig>()),
        same<InCornerDetectionParams>(value<InOptCornerDetectionParams3d>()),
        same<InGaussianCoverage>(value<InOptGradientGaussianCoverage>()), same<InGradStdDev>(value<InOptGradStdDev>()));
}

typedef FunctionForms<HarrisCorner3dLvl1, OutPIVoxels3d> Forms;

static void prepare(Forms::Processor& processor, const ConstImagePtr& inImg3d, const ConstPtr<LocalExtremaConfig>& config,
                    unsigned int featuresDistX, unsigned int featuresDistY, unsigned int featuresDistZ)
{
    processor.set<InImg3d>(inImg3d);
    processor.set<InLocalExtremaConfig>(config);
    processor.set<InFeaturesDistX>(featuresDistX);
    processor.set<InFeaturesDistY>(featuresDistY);
    processor.set<InFeaturesDistZ>(featuresDistZ);
}

ORVIK_PLANE_FUNCTIONS(harrisCorner3d,
                      (const ConstImagePtr&, inImg3d)(unsigned long, maxNbCorners)(unsigned int, featuresDist))
{
    prepare(processor, inImg3d, createLocalExtremaConfig(maxNbCorners), featuresDist, featuresDist, featuresDist);
}

ORVIK_PLANE_FUNCTIONS(harrisCorner3d, (const ConstImagePtr&, inImg3d)(float, inOptGradStdDev)(unsigned long, maxNbCorners)(
                                          unsigned int, featuresDist))
{
    prepare(processor, inImg3d, maxNbCorners, featuresDist);
    processor.set<InOptGradStdDev>(inOptGradStdDev);
}

ORVIK_PLANE_FUNCTIONS(harrisCorner3d,
                      (const ConstImagePtr&, inImg3d)(float, inOptGradStdDev)(const ConstPtr<GaussianCoverage>&,
                                                                              inOptGradientGaussianCoverage)(
                          const ConstPtr<CornerDetectionParams>&, inOptCornerDetectionParams)(unsigned long, maxNbCorners)(
                          double, threshold)(unsigned int, featuresDistX)(unsigned int, featuresDistY)(unsigned int,
                                                                                                       featuresDistZ))
{
    prepare(processor, inImg3d, createLocalExtremaConfig(threshold, maxNbCorners), featuresDistX, featuresDistY,
            featuresDistZ);
    processor.set<InOptGradStdDev>(inOptGradStdDev);
    processor.set<InOptGradientGaussianCoverage>(inOptGradientGaussianCoverage);
    processor.set<InOptCornerDetectionParams3d>(inOptCornerDetectionParams);
}

ORVIK_PLANE_READERS

}}}  // namespace orvik::imaproc::fd
