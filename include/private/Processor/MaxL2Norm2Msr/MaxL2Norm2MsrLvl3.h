#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 3: one strip of each plane.
class ORVIK_API MaxL2Norm2MsrLvl3
    : public ProcessingAlgorithm<MaxL2Norm2MsrLvl3, attr::InYStrip2d1, attr::InYStrip2d2, attr::OutStatsResult>
{
    ORVIK_PROCESSOR(MaxL2Norm2MsrLvl3, 77)

    typedef RawStripParserMode ParserMode;

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::fd
