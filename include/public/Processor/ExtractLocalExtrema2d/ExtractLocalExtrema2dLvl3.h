#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"
#include "frame/serialization/DataItem.h"

namespace orvik { namespace imaproc { namespace fd {

struct PlaneExtremaBuffers;

/// Level 3: one strip, line by line. A line is folded along x once, when it enters the window from below; the lines of
/// half a window are folded by running extrema, of blocks of lines as high as half a window. Pixels that beat their line
/// and the lines above are remembered until the lines below them are there.
class ORVIK_API ExtractLocalExtrema2dLvl3 : public ProcessingAlgorithm<ExtractLocalExtrema2dLvl3, attr::InKnlYStrip2d,
                                                                       attr::InLocalExtremaConfig, attr::OutPixels2d>
{
    ORVIK_PROCESSOR(ExtractLocalExtrema2dLvl3, 24)

    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override;
    /// Four vectors of the widest set, of the smallest samples.
    unsigned long getRunGranularity() const override { return 256; }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    Ptr<PlaneExtremaBuffers> m_buffers;
    NodeSupply<attr::Pixel2d> m_nodes;
};

}}}  // namespace orvik::imaproc::fd
