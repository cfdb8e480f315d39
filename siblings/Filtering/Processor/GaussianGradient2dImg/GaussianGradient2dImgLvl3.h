#pragma once

#include "siblings/Filtering/GaussianWeights.h"
#include "siblings/Filtering/Library.h"

#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc {

namespace attr {
struct InKnlYStrip2d;
struct InStdDevX;
struct InStdDevY;
struct InGaussianCoverage;
struct OutOptGradXYStrip2d;
struct OutOptGradYYStrip2d;
}  // namespace attr

namespace filter {

/// Level 3: one strip. The margin of its lines is the half-size along y and, below, s_nbLinesAtOnce - 1 more.
class ORVIK_API GaussianGradient2dImgLvl3
    : public processor::ProcessingAlgorithm<GaussianGradient2dImgLvl3, attr::InKnlYStrip2d, attr::InStdDevX,
                                            attr::InStdDevY, attr::InGaussianCoverage, attr::OutOptGradXYStrip2d,
                                            attr::OutOptGradYYStrip2d>
{
    ORVIK_PROCESSOR(GaussianGradient2dImgLvl3, 2)

    typedef LineStripParserMode ParserMode;

    /// Lines that go through the column pass together: each line that they share is made double once.
    static constexpr unsigned long s_nbLinesAtOnce = 8;
    static constexpr unsigned long s_minStripLines = 4 * s_nbLinesAtOnce;

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    processor::RulePtr createRule() const;
    /// Column pass of the line and those that go with it.
    template<core::eInstructionSet Set, class Parser>
    void combineLines(const Parser& lines, const processor::ProcessingInfo& info);
    /// Row pass of a combined line; false when the output has no sample type.
    template<class Attribute, core::eInstructionSet Set>
    bool writeLine(const double* line, unsigned long n);

    double* smoothLine(unsigned long i) const { return static_cast<double*>(m_smooth.getDataPtr(i, m_startX)); }
    double* derivativeLine(unsigned long i) const { return static_cast<double*>(m_derivative.getDataPtr(i, m_startX)); }

    GaussianWeights m_x, m_y;
    unsigned long m_startX = 0;  // of column 0 in a combined line
    image::TypedOwnBuffer m_tile;  // a block of columns of all lines of the kernel, as double
    // Combined lines, with margins; without fragments where they are not wanted.
    image::FragHybridBuffer m_smooth;  // smoothed along y, for the gradient along x
    image::FragHybridBuffer m_derivative;  // differentiated along y, for the gradient along y
};

}  // namespace filter
}}  // namespace orvik::imaproc
