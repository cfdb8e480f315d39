#pragma once

#include "siblings/Filtering/GaussianWeights.h"
#include "siblings/Filtering/Library.h"
#include "siblings/Filtering/SeparableStrips.h"

#include "frame/attr/Declarations.h"
#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace filter {

/// What products of gradients are summed in.
template<class Sum>
struct TensorKernels
{
    TypedGaussianWeights<Sum> x, y;
};

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
    template<class Sum>
    const TensorKernels<Sum>& kernels() const;

    TensorKernels<float> m_floatKernels;
    TensorKernels<double> m_doubleKernels;
    image::TypedOwnBuffer m_tile;  // the three products in a block of columns of all lines of the kernel
    CombinedLines m_combined[3];   // smoothed along y: xx, yy, xy
};

template<>
const TensorKernels<float>& StructureTensor2dImgLvl3::kernels<float>() const;
template<>
const TensorKernels<double>& StructureTensor2dImgLvl3::kernels<double>() const;

}}}  // namespace orvik::imaproc::filter
