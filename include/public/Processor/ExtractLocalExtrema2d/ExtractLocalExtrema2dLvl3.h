#pragma once

#include "Library.h"

#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"
#include "frame/serialization/DataItem.h"

namespace orvik { namespace imaproc {

namespace attr {
struct InKnlYStrip2d;
struct InLocalExtremaConfig;
struct OutPixels2d;
class Pixel2d;
}  // namespace attr

namespace fd {

/// Level 3: one strip, line by line. A line is folded along x once, when it enters the window from below; the lines of
/// half a window are folded by running extrema, of blocks of lines as high as half a window. Pixels that beat their line
/// and the lines above are remembered until the lines below them are there.
class ORVIK_API ExtractLocalExtrema2dLvl3
    : public processor::ProcessingAlgorithm<ExtractLocalExtrema2dLvl3, attr::InKnlYStrip2d, attr::InLocalExtremaConfig,
                                            attr::OutPixels2d>
{
    ORVIK_PROCESSOR(ExtractLocalExtrema2dLvl3, 24)

    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override;
    /// Four vectors of the widest set, of the smallest samples.
    unsigned long getRunGranularity() const override { return 256; }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    processor::RulePtr createRule() const;

    unsigned long m_distX = 0, m_distY = 0;
    // Values are kept so that the extreme ones are the highest, whatever is looked for.
    image::TypedOwnBuffer m_lowest;    // lowest values, for what is not there
    image::TypedOwnBuffer m_row;       // the line that enters the window, with margins
    image::TypedOwnBuffer m_side;      // its extrema over the half-width of the window, by first column
    image::TypedOwnBuffer m_prefix;    // of the lines of the current block so far, folded along x
    image::TypedOwnBuffer m_fold;      // of as many lines as half a window, up to the one that entered last
    // The lines of half a window, folded along x; when they are many, those of a whole block hold the extrema from each to
    // the block's end.
    image::FragHybridBuffer m_lines;
    // For each line of half a window, a bit per column that was not beaten so far.
    std::vector<unsigned long> m_open;
    unsigned long m_nbWords = 0;  // of one line
    NodeSupply<attr::Pixel2d> m_nodes;
};

}  // namespace fd
}}  // namespace orvik::imaproc
