#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one plane. Scores centres, measures the scores where the threshold asks for that, finds their peaks, finds a
/// radius for each, and removes circles that are too close to stronger ones. Where the stronger ones alone tell that a circle
/// goes, its radius is not looked for: radii are found for some centres at a time, the strongest first.
class ORVIK_API HoughCircles2dLvl2
    : public processor::Processor<HoughCircles2dLvl2, processor::BaseRepeatedAsync1Processor, attr::InSubGxImg2d,
                                  attr::InSubGyImg2d, attr::InHoughCircles2dAlgoMethod, attr::InCircleIntensityType,
                                  attr::InMaxAngleWithGradDir, attr::InNbMaxPtsPerCircle, attr::InHoughCirclesRadiusRange,
                                  attr::InAccumIntensityThreshold, attr::InRemoveTooCloseCirclesParams, attr::OutRealImg1,
                                  attr::OutOptRealImg2, attr::OutHoughCircles2dPpties>
{
    ORVIK_PROCESSOR(HoughCircles2dLvl2, 47)

    using BaseRepeatedAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int iterationNumber,
                                                processor::ProviderPtr& provider) override;
    void clearIntermediateData() noexcept override;

private:
    bool isPhaseCoded() const;
    processor::RetrievalResult houghCircle(const core::BasePriority& priority, processor::ProviderPtr& provider);
    processor::RetrievalResult houghCirclePhaseCoded(const core::BasePriority& priority, processor::ProviderPtr& provider);
    processor::RetrievalResult statsMsr(const core::BasePriority& priority, processor::ProviderPtr& provider);
    processor::RetrievalResult maxL2Norm(const core::BasePriority& priority, processor::ProviderPtr& provider);
    double getThreshold() const;
    processor::RetrievalResult localExtrema(const core::BasePriority& priority, processor::ProviderPtr& provider);
    processor::RetrievalResult houghPeaks(const core::BasePriority& priority, processor::ProviderPtr& provider);
    processor::RetrievalResult nextRadii(const core::BasePriority& priority, processor::ProviderPtr& provider);
    processor::RetrievalResult computeBestCirclesRadiiFromGradMag(const core::BasePriority& priority,
                                                                  processor::ProviderPtr& provider);
    processor::RetrievalResult extractRadiusFromHough(const core::BasePriority& priority, processor::ProviderPtr& provider);

    Ptr<attr::StatsResult> m_stats;
    Ptr<attr::Pixels2d> m_centers;
    struct Rounds;
    Ptr<Rounds> m_rounds;
};

}}}  // namespace orvik::imaproc::fd
