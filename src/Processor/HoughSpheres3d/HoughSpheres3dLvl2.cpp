#include "Processor/HoughSpheres3d/HoughSpheres3dLvl2.h"

#include "Processor/AccumulatorSearch.h"
#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ComputeBestSpheresRadiiFromGradMagImg3dLvl1.h"
#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl2.h"
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl1.h"
#include "Processor/TooCloseFeatures.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/GlobalMeasure/Processor/StatsMsr/StatsMsrLvl1.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughSpheres3dLvl2)

processor::StageResult HoughSpheres3dLvl2::preProcess()
{
    m_stages = {&HoughSpheres3dLvl2::houghCircle, &HoughSpheres3dLvl2::statsMsr, &HoughSpheres3dLvl2::localExtrema,
                &HoughSpheres3dLvl2::computeBestCirclesRadiiFromGradMag};
    return processor::eSRT_Done;
}

processor::RetrievalResult HoughSpheres3dLvl2::retrieveProvider(
    const core::BasePriority& priority, unsigned int iterationNumber, processor::ProviderPtr& provider)
{
    return iterationNumber < m_stages.size() ? (this->*m_stages[iterationNumber])(priority, provider) : removeTooClose();
}

processor::RetrievalResult HoughSpheres3dLvl2::houghCircle(const core::BasePriority& priority,
                                                           processor::ProviderPtr& provider)
{
    return delegate<HoughSpheres3dImgLvl1>(
        priority, provider, same<InGxGreyImg3d>(value<InSubGxImg3d>()), same<InGyGreyImg3d>(value<InSubGyImg3d>()),
        same<InGzGreyImg3d>(value<InSubGzImg3d>()), same<InOptCircleIntensityType>(value<InCircleIntensityType>()),
        same<InOptMaxAngleWithGradDir>(value<InMaxAngleWithGradDir>()),
        same<InOptNbMaxPtsPerCircle>(value<InNbMaxPtsPerCircle>()),
        same<InOptHoughCirclesRadiusRange>(value<InHoughCirclesRadiusRange>()), same<OutRealImg>(value<OutRealImg1>()));
}

processor::RetrievalResult HoughSpheres3dLvl2::statsMsr(const core::BasePriority& priority, processor::ProviderPtr& provider)
{
    m_stats = StatsResult::createNode();
    if (!isMaxNeeded(*value<InAccumIntensityThreshold>()))
        return processor::eRRT_ProviderRetrieved;
    return delegate<glbmsr::StatsMsrLvl1>(priority, provider, same<InImg>(value<OutRealImg1>()),
                                          same<OutStatsResult>(m_stats));
}

processor::RetrievalResult HoughSpheres3dLvl2::localExtrema(const core::BasePriority& priority,
                                                            processor::ProviderPtr& provider)
{
    m_centers = Voxels3d::createNode();
    const double threshold = lowestPeak(*value<InAccumIntensityThreshold>(), *m_stats);
    return delegate<ExtractLocalExtrema3dLvl2>(
        priority, provider, same<InSubImg3d>(value<OutRealImg1>()), same<InFeaturesDistX>(1u), same<InFeaturesDistY>(1u),
        same<InFeaturesDistZ>(1u), same<InLocalExtremaConfig>(createLocalExtremaConfig(eLET_StrictMaxima, threshold)),
        same<OutVoxels3d>(m_centers));
}

processor::RetrievalResult HoughSpheres3dLvl2::computeBestCirclesRadiiFromGradMag(const core::BasePriority& priority,
                                                                                  processor::ProviderPtr& provider)
{
    return delegate<ComputeBestSpheresRadiiFromGradMagImg3dLvl1>(
        priority, provider, same<InGxGreyImg3d>(value<InSubGxImg3d>()), same<InGyGreyImg3d>(value<InSubGyImg3d>()),
        same<InGzGreyImg3d>(value<InSubGzImg3d>()), same<InOptCircleIntensityType>(value<InCircleIntensityType>()),
        same(attribute<InNbCircles>()), same(attribute<InHoughCirclesRadiusRange>()),
        same(attribute<InMaxAngleWithGradDir>()), same(attribute<InNbMaxPtsPerCircle>()),
        same<InHoughSpheres3dCenters>(m_centers), same(attribute<OutHoughSpheres3dPpties>()));
}

processor::RetrievalResult HoughSpheres3dLvl2::removeTooClose() const
{
    auto& spheres = value<OutHoughSpheres3dPpties>()->access<HoughSpheres3dPpties::Coll>().accessNodes();
    FeaturesThatStay<HoughSphere3dPpties> stay;
    stay.init(*value<InRemoveTooCloseCirclesParams>());
    for (const boost::shared_ptr<HoughSphere3dPpties>& sphere : spheres) {
        if (getOrigin().isCancellationRequested())
            return failure(core::getCancelledText());
        stay.add(sphere);
    }
    spheres = stay.getNodes();
    return processor::eRRT_NoMoreProvider;
}

void HoughSpheres3dLvl2::clearIntermediateData() noexcept
{
    m_stats.reset();
    m_centers.reset();
}

}}}  // namespace orvik::imaproc::fd
