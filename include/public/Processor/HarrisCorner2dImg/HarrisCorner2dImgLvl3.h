#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 3: the response of one strip, each pixel for itself.
class ORVIK_API HarrisCorner2dImgLvl3
    : public ProcessingAlgorithm<HarrisCorner2dImgLvl3, attr::InXXYStrip2d, attr::InXYYStrip2d, attr::InYYYStrip2d,
                                 attr::InCornerDetectionParams, attr::OutYStrip2d>
{
    ORVIK_PROCESSOR(HarrisCorner2dImgLvl3, 33)

    typedef RawStripParserMode ParserMode;
    typedef attr::OutYStrip2d KeyStrip;

    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::fd
