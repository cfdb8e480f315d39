#include "Processor/HoughCircles2d/HoughCircles2dLvl2.h"

#include "Processor/AccumulatorSearch.h"
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
    const bool isCoded = isPhaseCoded();
    switch (iterationNumber) {
    case 0: return isCoded ? houghCirclePhaseCoded(priority, provider) : houghCircle(priority, provider);
    case 1: return isCoded ? maxL2Norm(priority, provider) : statsMsr(priority, provider);
    case 2: return isCoded ? houghPeaks(priority, provider) : localExtrema(priority, provider);
    default: return nextRadii(priority, provider);
    }
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

processor::RetrievalResult HoughCircles2dLvl2::statsMsr(const core::BasePriority& priority, processor::ProviderPtr& provider)
{
    m_stats = StatsResult::createNode();
    if (!isMaxNeeded(*value<InAccumIntensityThreshold>()))
        return processor::eRRT_ProviderRetrieved;
    return delegate<glbmsr::StatsMsrLvl2>(priority, provider, same<InSubImg2d>(value<OutRealImg1>()),
                                          same<OutStatsResult>(m_stats));
}

processor::RetrievalResult HoughCircles2dLvl2::maxL2Norm(const core::BasePriority& priority,
                                                         processor::ProviderPtr& provider)
{
    m_stats = StatsResult::createNode();
    if (!isMaxNeeded(*value<InAccumIntensityThreshold>()))
        return processor::eRRT_ProviderRetrieved;
    return delegate<MaxL2Norm2MsrLvl2>(priority, provider, same<InSubImg2d1>(value<OutRealImg1>()),
                                       same<InSubImg2d2>(value<OutOptRealImg2>()), same<OutStatsResult>(m_stats));
}

double HoughCircles2dLvl2::getThreshold() const
{
    return lowestPeak(*value<InAccumIntensityThreshold>(), *m_stats);
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

/// The centres whose radii are looked for at a time, and the circles that stay so far.
struct HoughCircles2dLvl2::Rounds
{
    FeaturesThatStay<HoughCircle2dPpties> stay;
    Ptr<Pixels2d> centers;
    Ptr<HoughCircles2dPpties> circles;
    std::size_t nbDecided = 0;  // of the plane's centres
};

processor::RetrievalResult HoughCircles2dLvl2::nextRadii(const core::BasePriority& priority,
                                                         processor::ProviderPtr& provider)
{
    const auto& all = m_centers->get<Pixels2d::Coll>().getNodes();
    if (!m_rounds) {
        m_rounds = boost::make_shared<Rounds>();
        m_rounds->stay.init(*value<InRemoveTooCloseCirclesParams>());
    } else {
        for (const auto& circle : m_rounds->circles->get<HoughCircles2dPpties::Coll>().getNodes()) {
            if (getOrigin().isCancellationRequested())
                return failure(core::getCancelledText());
            m_rounds->stay.add(circle);
        }
    }

    const double leastRadius =
        static_cast<double>(value<InHoughCirclesRadiusRange>()->get<HoughCirclesRadiusRange::MinRadius>());
    // Phases are read at once, and circles that keep less distance when they grow can't be told without their radii.
    const bool isInRounds = !isPhaseCoded() && leastRadius >= 0 && m_rounds->stay.growsWithRadii();
    // A round makes the rings again, so there should be few: each looks at more.
    const std::size_t leastPerRound = 64;
    const std::size_t most = isInRounds ? std::max(leastPerRound, m_rounds->nbDecided / 4) : all.size();
    m_rounds->centers = Pixels2d::createNode();
    m_rounds->circles = HoughCircles2dPpties::createNode();
    auto& centers = m_rounds->centers->access<Pixels2d::Coll>().accessNodes();
    for (; m_rounds->nbDecided < all.size() && centers.size() < most; ++m_rounds->nbDecided) {
        const boost::shared_ptr<Pixel2d>& center = all[m_rounds->nbDecided];
        const std::size_t often = 1024;
        if (m_rounds->nbDecided % often == 0 && getOrigin().isCancellationRequested())
            return failure(core::getCancelledText());
        if (!isInRounds || !m_rounds->stay.isTooClose(centerOf(*center), leastRadius))
            centers.push_back(center);
    }
    if (!centers.empty())
        return isPhaseCoded() ? extractRadiusFromHough(priority, provider)
                              : computeBestCirclesRadiiFromGradMag(priority, provider);
    value<OutHoughCircles2dPpties>()->access<HoughCircles2dPpties::Coll>().accessNodes() = m_rounds->stay.getNodes();
    return processor::eRRT_NoMoreProvider;
}

processor::RetrievalResult HoughCircles2dLvl2::computeBestCirclesRadiiFromGradMag(const core::BasePriority& priority,
                                                                                  processor::ProviderPtr& provider)
{
    return delegate<ComputeBestCirclesRadiiFromGradMagImg2dLvl1>(
        priority, provider, same<InGxSingleGreyImg2d>(value<InSubGxImg2d>()),
        same<InGySingleGreyImg2d>(value<InSubGyImg2d>()), same<InOptCircleIntensityType>(value<InCircleIntensityType>()),
        same(attribute<InHoughCirclesRadiusRange>()), same(attribute<InMaxAngleWithGradDir>()),
        same(attribute<InNbMaxPtsPerCircle>()), same<InHoughCircles2dCenters>(m_rounds->centers),
        same<OutHoughCircles2dPpties>(m_rounds->circles));
}

processor::RetrievalResult HoughCircles2dLvl2::extractRadiusFromHough(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    return delegate<ExtractRadiusFromHoughImgLvl1>(
        priority, provider, same<InSingleGreyComplexRealImg2d>(value<OutRealImg1>()),
        same<InSingleGreyComplexImImg2d>(value<OutOptRealImg2>()), same<InHoughCircles2dCenters>(m_rounds->centers),
        same(attribute<InHoughCirclesRadiusRange>()), same<OutHoughCircles2dPpties>(m_rounds->circles));
}

void HoughCircles2dLvl2::clearIntermediateData() noexcept
{
    m_stats.reset();
    m_centers.reset();
    m_rounds.reset();
}

}}}  // namespace orvik::imaproc::fd
