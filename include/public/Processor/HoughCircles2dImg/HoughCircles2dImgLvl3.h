#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

enum eRingForm : unsigned int;
struct RingBuffers;
template<unsigned int NbWeights>
class Rings;

/// Level 3: one strip of the accumulator of real values, line by line.
class ORVIK_API HoughCircles2dImgLvl3
    : public ProcessingAlgorithm<HoughCircles2dImgLvl3, attr::InGxKnlYStrip2d, attr::InGyKnlYStrip2d,
                                 attr::InCircleIntensityType, attr::InMaxAngleWithGradDir, attr::InHoughCirclesRadiusRange,
                                 attr::InHoughCirclesKernelXY, attr::OutYStrip2d>
{
    ORVIK_PROCESSOR(HoughCircles2dImgLvl3, 45)

    typedef LineStripParserMode ParserMode;
    static constexpr unsigned long s_minStripMargins = 8;

    /// What the strips of a plane share; made from the attributes where it is not given.
    void setRings(const ConstPtr<Rings<1>>& rings);
    /// For measuring and tests: both forms give the same bits.
    static void forceForm(eRingForm form);

    processor::StageResult preProcess() override;
    /// A vector of the widest set.
    unsigned long getRunGranularity() const override { return 16; }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    static eRingForm s_form;

    ConstPtr<Rings<1>> m_rings;
    Ptr<RingBuffers> m_buffers;
};

}}}  // namespace orvik::imaproc::fd
