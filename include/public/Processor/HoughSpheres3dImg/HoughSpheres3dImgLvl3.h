#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

enum eRingForm : unsigned int;
struct ShellBuffers;
class Shells;

/// Level 3: one strip of slices of the accumulator, line by line.
class ORVIK_API HoughSpheres3dImgLvl3
    : public ProcessingAlgorithm<HoughSpheres3dImgLvl3, attr::InGxKnlZStrip3d, attr::InGyKnlZStrip3d, attr::InGzKnlZStrip3d,
                                 attr::InCircleIntensityType, attr::InMaxAngleWithGradDir, attr::InHoughCirclesRadiusRange,
                                 attr::InHoughSpheresKernelXYZ, attr::OutZStrip3d>
{
    ORVIK_PROCESSOR(HoughSpheres3dImgLvl3, 68)

    typedef LineStripParserMode ParserMode;
    static constexpr unsigned long s_minStripMargins = 3;
    /// Of slices beyond the strip only what votes for it is looked at.
    static constexpr bool s_areMarginsCheap = true;

    /// What the strips of a volume share; made from the attributes where it is not given.
    void setShells(const ConstPtr<Shells>& shells);
    /// For measuring and tests: both forms give the same bits.
    static void forceForm(eRingForm form);

    processor::StageResult preProcess() override;
    /// A vector of the widest set.
    unsigned long getRunGranularity() const override { return 16; }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    static eRingForm s_form;

    ConstPtr<Shells> m_shells;
    Ptr<ShellBuffers> m_buffers;
};

}}}  // namespace orvik::imaproc::fd
