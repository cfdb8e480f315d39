#pragma once

#include "siblings/Filtering/GaussianWeights.h"
#include "siblings/Filtering/Library.h"

#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc {

namespace attr {
struct InGxKnlYStrip2d;
struct InGyKnlYStrip2d;
struct InSmoothingStdDev;
struct InGaussianCoverage;
struct OutGxGxYStrip2d;
struct OutGyGyYStrip2d;
struct OutGxGyYStrip2d;
}  // namespace attr

namespace filter {

/// What products of gradients are summed in.
template<class Sum>
struct TensorKernels
{
    TypedGaussianWeights<Sum> x, y;
};

/// Level 3: one strip. The margin of its lines is the half-size and, below, s_nbLinesAtOnce - 1 more.
class ORVIK_API StructureTensor2dImgLvl3
    : public processor::ProcessingAlgorithm<StructureTensor2dImgLvl3, attr::InGxKnlYStrip2d, attr::InGyKnlYStrip2d,
                                            attr::InSmoothingStdDev, attr::InGaussianCoverage, attr::OutGxGxYStrip2d,
                                            attr::OutGyGyYStrip2d, attr::OutGxGyYStrip2d>
{
    ORVIK_PROCESSOR(StructureTensor2dImgLvl3, 4)

    typedef LineStripParserMode ParserMode;

    /// Lines that go through the column pass together: the products that they share are formed once.
    static constexpr unsigned long s_nbLinesAtOnce = 8;
    static constexpr unsigned long s_minStripLines = 4 * s_nbLinesAtOnce;

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    processor::RulePtr createRule() const;
    template<class Sum>
    const TensorKernels<Sum>& kernels() const;
    template<class Sum>
    Sum* combinedLine(unsigned long product, unsigned long i) const
    {
        return static_cast<Sum*>(m_combined[product].getDataPtr(i, m_startX));
    }
    /// Products, and column pass of the line and those that go with it.
    template<core::eInstructionSet Set, class Sum, class Parser>
    void combineLines(const Parser& gx, const Parser& gy, const processor::ProcessingInfo& info);
    /// Row pass of a combined line; false when the output has no sample type.
    template<class Attribute, core::eInstructionSet Set, class Sum>
    bool writeLine(const Sum* line, unsigned long n);

    TensorKernels<float> m_floatKernels;
    TensorKernels<double> m_doubleKernels;
    unsigned long m_startX = 0;  // of column 0 in a combined line
    image::TypedOwnBuffer m_tile;  // the three products in a block of columns of all lines of the kernel
    image::FragHybridBuffer m_combined[3];  // lines smoothed along y, with margins: xx, yy, xy
};

}  // namespace filter
}}  // namespace orvik::imaproc
