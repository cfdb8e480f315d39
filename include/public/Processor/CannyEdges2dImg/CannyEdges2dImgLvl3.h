#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 3: the classes of one strip: magnitude, suppression of what is no maximum, both thresholds, in one sweep.
class ORVIK_API CannyEdges2dImgLvl3
    : public ProcessingAlgorithm<CannyEdges2dImgLvl3, attr::InGxKnlYStrip2d, attr::InGyKnlYStrip2d, attr::InCannyThresholds,
                                 attr::OutYStrip2d>
{
    ORVIK_PROCESSOR(CannyEdges2dImgLvl3, 2)

    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    template<class Sample, class Magnitude, core::eInstructionSet Set>
    BoolResult processFunction(const processor::ProcessingInfo& info);

    /// Squared magnitudes of the lines above, at and below the current one, for each part of a line.
    image::FragHybridBuffer m_magnitudes[3];
};

}}}  // namespace orvik::imaproc::fd
