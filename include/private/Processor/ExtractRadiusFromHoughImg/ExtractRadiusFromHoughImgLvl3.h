#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 3: one strip; reads one pixel for each of its centres.
class ORVIK_API ExtractRadiusFromHoughImgLvl3
    : public ProcessingAlgorithm<ExtractRadiusFromHoughImgLvl3, attr::InComplexRealKnlYStrip2d, attr::InComplexImKnlYStrip2d,
                                 attr::InHoughCircles2dCenters, attr::InHoughCirclesRadiusRange,
                                 attr::OutHoughCircles2dPpties>
{
    ORVIK_PROCESSOR(ExtractRadiusFromHoughImgLvl3, 30)

    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override { return processor::eSRT_Done; }
    unsigned long getRunGranularity() const override { return 1; }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);
};

}}}  // namespace orvik::imaproc::fd
