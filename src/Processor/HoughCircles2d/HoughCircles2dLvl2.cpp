#include "Processor/HoughCircles2d/HoughCircles2dLvl2.h"

#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dLvl1.h"
#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl2.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgLvl1.h"
#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl1.h"
#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl2.h"
#include "Processor/TooCloseFeatures.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/GlobalMeasure/Processor/StatsMsr/StatsMsrLvl2.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughCircles2dLvl2)

bool HoughCircles2dLvl2::isPhaseCoded() const
{
    return value<InHoughCircles2dAlgoMethod>() == eHCAM_PhaseCoded;
}

processor::RetrievalResult HoughCircles2dLvl2::retrieveProvider(
    const core::BasePriority& priority, unsigned int iterationNumber, processor::ProviderPtr& provider)
{
    const unsigned int last = 4;
    if (iterationNumber > last)
        return invalidIteration(last);
    const bool isCoded = isPhaseCoded();
    switch (iterationNumber) {
    case 0: return isCoded ? houghCirclePhaseCoded(priority, provider) : houghCircle(priority, provider);
    case 1: return isCoded ? maxL2Norm(priority, provider) : statsMsr(priority, provider);
    case 2: return isCoded ? houghPeaks(priority, provider) : localExtrema(priority, provider);
    case 3:
        return isCoded ? extractRadiusFromHough(priority, provider) : computeBestCirclesRadiiFromGradMag(priority, provider);
    default: break;
    }
    const BoolResult removed = removeTooClose(*value<InRemoveTooCloseCirclesParams>(), *value<OutHoughCircles2dPpties>(),
                                              [&] { return getOrigin().isCancellationRequested(); });
    return removed ? processor::RetrievalResult(processor::eRRT_NoMoreProvider) : processor::RetrievalResult(removed);
}

processor::RetrievalResult HoughCircles2dLvl2::houghCircle(const core::BasePriority& priority,
                                                           processor::ProviderPtr& provider)
{
    return delegate<HoughCircles2dImgLvl1>(priority, provider, same<InGxGreyImg2d>(value<InSubGxImg2d>()),
                                           same<InGyGreyImg2d>(value<InSubGyImg2d>()),
                                           same<InOptCircleIntensityType>(value<InCircleIntensityType>()),
                                           same<InOptMaxAngleWithGradDir>(value<InMaxAngleWithGradDir>()),
                                           same<InOptNbMaxPtsPerCircle>(value<InNbMaxPtsPerCircle>()),
                                           same<InOptHoughCirclesRadiusRange>(value<InHoughCirclesRadiusRange>()),
                                           same<OutRealImg>(value<OutRealImg1>()));
}

processor::RetrievalResult HoughCircles2dLvl2::houghCirclePhaseCoded(const core::BasePriority& priority,
                                                                     processor::ProviderPtr& provider)
{
    return delegate<HoughCirclesPhaseCoded2dImgLvl1>(priority, provider, same<InGxGreyImg2d>(value<InSubGxImg2d>()),
                                                     same<InGyGreyImg2d>(value<InSubGyImg2d>()),
                                                     same<InOptCircleIntensityType>(value<InCircleIntensityType>()),
                                                     same<InOptMaxAngleWithGradDir>(value<InMaxAngleWithGradDir>()),
                                                     same<InOptNbMaxPtsPerCircle>(value<InNbMaxPtsPerCircle>()),
                                                     same<InOptHoughCirclesRadiusRange>(value<InHoughCirclesRadiusRange>()),
                                                     same<OutComplexRealImg>(value<OutRealImg1>()),
                                                     same<OutComplexImImg>(value<OutOptRealImg2>()));
}

double HoughCircles2dLvl2::ratioOfMax() const
{
    return value<InAccumIntensityThreshold>()->get<AccumIntensityThreshold::RatioOfMax>();
}

// A ratio that is none asks for no measure: written so that NaN is none.
static bool isMeasured(double ratioOfMax)
{
    return ratioOfMax > NumericLimits<double>::s_eps;
}

processor::RetrievalResult HoughCircles2dLvl2::statsMsr(const core::BasePriority& priority, processor::ProviderPtr& provider)
{
    m_stats = StatsResult::createNode();
    if (!isMeasured(ratioOfMax()))
        return processor::eRRT_ProviderRetrieved;
    return delegate<glbmsr::StatsMsrLvl2>(priority, provider, same<InSubImg2d>(value<OutRealImg1>()),
                                          same<OutStatsResult>(m_stats));
}

processor::RetrievalResult HoughCircles2dLvl2::maxL2Norm(const core::BasePriority& priority,
                                                         processor::ProviderPtr& provider)
{
    m_stats = StatsResult::createNode();
    if (!isMeasured(ratioOfMax()))
        return processor::eRRT_ProviderRetrieved;
    return delegate<MaxL2Norm2MsrLvl2>(priority, provider, same<InSubImg2d1>(value<OutRealImg1>()),
                                       same<InSubImg2d2>(value<OutOptRealImg2>()), same<OutStatsResult>(m_stats));
}

double HoughCircles2dLvl2::getThreshold() const
{
    const double absolute = value<InAccumIntensityThreshold>()->get<AccumIntensityThreshold::AbsoluteThreshold>();
    if (!isMeasured(ratioOfMax()))
        return absolute;
    const double relative = ratioOfMax() * m_stats->get<StatsResult::Max>();
    return relative > absolute ? relative : absolute;
}

processor::RetrievalResult HoughCircles2dLvl2::localExtrema(const core::BasePriority& priority,
                                                            processor::ProviderPtr& provider)
{
    m_centers = Pixels2d::createNode();
    return delegate<ExtractLocalExtrema2dLvl2>(
        priority, provider, same<InSubImg2d>(value<OutRealImg1>()), same<InFeaturesDistX>(1u), same<InFeaturesDistY>(1u),
        same<InLocalExtremaConfig>(createLocalExtremaConfig(eLET_StrictMaxima, getThreshold())),
        same<OutPixels2d>(m_centers));
}

processor::RetrievalResult HoughCircles2dLvl2::houghPeaks(const core::BasePriority& priority,
                                                          processor::ProviderPtr& provider)
{
    m_centers = Pixels2d::createNode();
    return delegate<ExtractHoughPeaks2dLvl2>(priority, provider, same<InSubGxImg2d>(value<OutRealImg1>()),
                                             same<InSubGyImg2d>(value<OutOptRealImg2>()),
                                             same<InOptLowestMax>(getThreshold()), same<OutPixels2d>(m_centers));
}

processor::RetrievalResult HoughCircles2dLvl2::computeBestCirclesRadiiFromGradMag(const core::BasePriority& priority,
                                                                                  processor::ProviderPtr& provider)
{
    return delegate<ComputeBestCirclesRadiiFromGradMagImg2dLvl1>(
        priority, provider, same<InGxSingleGreyImg2d>(value<InSubGxImg2d>()),
        same<InGySingleGreyImg2d>(value<InSubGyImg2d>()), same<InOptCircleIntensityType>(value<InCircleIntensityType>()),
        same(attribute<InHoughCirclesRadiusRange>()), same(attribute<InMaxAngleWithGradDir>()),
        same(attribute<InNbMaxPtsPerCircle>()), same<InHoughCircles2dCenters>(m_centers),
        same(attribute<OutHoughCircles2dPpties>()));
}

processor::RetrievalResult HoughCircles2dLvl2::extractRadiusFromHough(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    return delegate<ExtractRadiusFromHoughImgLvl1>(
        priority, provider, same<InSingleGreyComplexRealImg2d>(value<OutRealImg1>()),
        same<InSingleGreyComplexImImg2d>(value<OutOptRealImg2>()), same<InHoughCircles2dCenters>(m_centers),
        same(attribute<InHoughCirclesRadiusRange>()), same(attribute<OutHoughCircles2dPpties>()));
}

void HoughCircles2dLvl2::clearIntermediateData() noexcept
{
    m_stats.reset();
    m_centers.reset();
}

}}}  // namespace orvik::imaproc::fd
