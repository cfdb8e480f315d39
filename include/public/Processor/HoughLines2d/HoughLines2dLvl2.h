#pragma once

#include "Processor/HoughLinesSearch.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: the lines of one plane.
class ORVIK_API HoughLines2dLvl2
    : public HoughLinesSearchLvl2<HoughLines2dLvl2, attr::InSubImg2d, attr::InOptHoughLinesImgParams, attr::OutImg,
                                  attr::InSubImg2d, attr::InOptHoughLinesImgParams, attr::InOptHoughLinesExtractionParams,
                                  attr::OutImg, attr::OutHoughLines2dPpties>
{
    ORVIK_PROCESSOR(HoughLines2dLvl2, 56)

protected:
    processor::RetrievalResult houghLines(const core::BasePriority& priority, processor::ProviderPtr& provider) override;
};

}}}  // namespace orvik::imaproc::fd
