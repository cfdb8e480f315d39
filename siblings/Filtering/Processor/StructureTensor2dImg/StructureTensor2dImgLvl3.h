#pragma once

#include "siblings/Filtering/Library.h"
#include "siblings/Filtering/TensorBuffers.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace filter {

/// Level 3: one strip. The margin of its lines is the half-size and, below, g_nbLinesAtOnce - 1 more.
class ORVIK_API StructureTensor2dImgLvl3
    : public ProcessingAlgorithm<StructureTensor2dImgLvl3, attr::InGxKnlYStrip2d, attr::InGyKnlYStrip2d,
                                 attr::InSmoothingStdDev, attr::InGaussianCoverage, attr::OutGxGxYStrip2d,
                                 attr::OutGyGyYStrip2d, attr::OutGxGyYStrip2d>
{
    ORVIK_PROCESSOR(StructureTensor2dImgLvl3, 4)

    typedef LineStripParserMode ParserMode;

    static constexpr unsigned long s_minStripLines = g_minStripLines;

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    processor::RulePtr createRule() const;

    TensorBuffers m_buffers;
};

}}}  // namespace orvik::imaproc::filter
