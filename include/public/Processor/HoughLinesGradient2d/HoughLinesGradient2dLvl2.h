#pragma once

#include "Processor/HoughLinesSearch.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: the lines of one plane of a gradient.
class ORVIK_API HoughLinesGradient2dLvl2
    : public HoughLinesSearchLvl2<HoughLinesGradient2dLvl2, attr::InSubGxImg2d, attr::InOptHoughLinesGradientImgParams,
                                  attr::OutRealImg, attr::InSubGxImg2d, attr::InSubGyImg2d,
                                  attr::InOptHoughLinesGradientImgParams, attr::InOptHoughLinesOrientationTolerance,
                                  attr::InOptHoughLinesExtractionParams, attr::OutRealImg, attr::OutHoughLines2dPpties>
{
    ORVIK_PROCESSOR(HoughLinesGradient2dLvl2, 62)

protected:
    processor::RetrievalResult houghLines(const core::BasePriority& priority, processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::fd
