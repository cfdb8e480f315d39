#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"
#include "frame/serialization/DataItem.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 3: one strip, line by line; the moduli of three lines are kept.
class ORVIK_API ExtractHoughPeaks2dLvl3
    : public ProcessingAlgorithm<ExtractHoughPeaks2dLvl3, attr::InGxKnlYStrip2d, attr::InGyKnlYStrip2d, attr::InOptLowestMax,
                                 attr::OutPixels2d>
{
    ORVIK_PROCESSOR(ExtractHoughPeaks2dLvl3, 15)

    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override;
    /// A vector of the widest set.
    unsigned long getRunGranularity() const override { return 16; }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    image::FragHybridBuffer m_moduli;
    NodeSupply<attr::Pixel2d> m_nodes;
};

}}}  // namespace orvik::imaproc::fd
