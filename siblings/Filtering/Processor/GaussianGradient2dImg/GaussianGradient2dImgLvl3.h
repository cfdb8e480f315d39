#pragma once

#include "siblings/Filtering/GaussianWeights.h"
#include "siblings/Filtering/Library.h"
#include "siblings/Filtering/SeparableStrips.h"

#include "frame/attr/Declarations.h"
#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace filter {

/// Level 3: one strip. The margin of its lines is the half-size along y and, below, g_nbLinesAtOnce - 1 more.
class ORVIK_API GaussianGradient2dImgLvl3
    : public ProcessingAlgorithm<GaussianGradient2dImgLvl3, attr::InKnlYStrip2d, attr::InStdDevX, attr::InStdDevY,
                                 attr::InGaussianCoverage, attr::OutOptGradXYStrip2d, attr::OutOptGradYYStrip2d>
{
    ORVIK_PROCESSOR(GaussianGradient2dImgLvl3, 2)

    typedef LineStripParserMode ParserMode;

    static constexpr unsigned long s_minStripLines = g_minStripLines;

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    processor::RulePtr createRule() const;

    GaussianWeights m_x, m_y;
    image::TypedOwnBuffer m_tile;  // a block of columns of all lines of the kernel, as double
    CombinedLines m_smooth;        // smoothed along y, for the gradient along x
    CombinedLines m_derivative;    // differentiated along y, for the gradient along y
};

}}}  // namespace orvik::imaproc::filter
