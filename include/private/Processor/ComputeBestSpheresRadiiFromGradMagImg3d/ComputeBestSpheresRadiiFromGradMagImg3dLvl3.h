#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

struct ShellScores;

/// Level 3: one strip. Gradients are looked at about the centres of the strip alone.
class ORVIK_API ComputeBestSpheresRadiiFromGradMagImg3dLvl3
    : public ProcessingAlgorithm<ComputeBestSpheresRadiiFromGradMagImg3dLvl3, attr::InGxKnlZStrip3d, attr::InGyKnlZStrip3d,
                                 attr::InGzKnlZStrip3d, attr::InCircleIntensityType, attr::InMaxAngleWithGradDir,
                                 attr::InHoughSpheres3dCenters, attr::InHoughCirclesRadiusRange,
                                 attr::InHoughSpheresKernelXYZ, attr::OutHoughSpheres3dPpties>
{
    ORVIK_PROCESSOR(ComputeBestSpheresRadiiFromGradMagImg3dLvl3, 12)

    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override;
    unsigned long getRunGranularity() const override { return 1; }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    Ptr<ShellScores> m_scores;
};

}}}  // namespace orvik::imaproc::fd
