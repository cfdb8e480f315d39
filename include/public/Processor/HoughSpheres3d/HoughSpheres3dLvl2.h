#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one volume. Scores centres, measures the scores where the threshold asks for that, finds their peaks, finds a
/// radius for each, and removes spheres that are too close to stronger ones.
class ORVIK_API HoughSpheres3dLvl2
    : public processor::Processor<HoughSpheres3dLvl2, processor::BaseRepeatedAsync1Processor, attr::InSubGxImg3d,
                                  attr::InSubGyImg3d, attr::InSubGzImg3d, attr::InCircleIntensityType, attr::InNbCircles,
                                  attr::InMaxAngleWithGradDir, attr::InNbMaxPtsPerCircle, attr::InHoughCirclesRadiusRange,
                                  attr::InAccumIntensityThreshold, attr::InRemoveTooCloseCirclesParams, attr::OutRealImg1,
                                  attr::OutOptRealImg2, attr::OutHoughSpheres3dPpties>
{
    ORVIK_PROCESSOR(HoughSpheres3dLvl2, 70)

    using BaseRepeatedAsync1Processor::retrieveProvider;
    processor::StageResult preProcess() override;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int iterationNumber,
                                                processor::ProviderPtr& provider) override;
    void clearIntermediateData() noexcept override;

private:
    typedef processor::RetrievalResult (HoughSpheres3dLvl2::*Stage)(const core::BasePriority&, processor::ProviderPtr&);

    processor::RetrievalResult houghCircle(const core::BasePriority& priority, processor::ProviderPtr& provider);
    processor::RetrievalResult statsMsr(const core::BasePriority& priority, processor::ProviderPtr& provider);
    processor::RetrievalResult localExtrema(const core::BasePriority& priority, processor::ProviderPtr& provider);
    processor::RetrievalResult computeBestCirclesRadiiFromGradMag(const core::BasePriority& priority,
                                                                  processor::ProviderPtr& provider);
    processor::RetrievalResult removeTooClose() const;

    std::vector<Stage> m_stages;
    Ptr<attr::StatsResult> m_stats;
    Ptr<attr::Voxels3d> m_centers;
};

}}}  // namespace orvik::imaproc::fd
