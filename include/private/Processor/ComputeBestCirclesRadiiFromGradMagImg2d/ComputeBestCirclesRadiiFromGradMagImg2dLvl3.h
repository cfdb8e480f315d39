#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

struct RadiusScores;

/// Level 3: one strip. Gradients are looked at about the centres of the strip alone.
class ORVIK_API ComputeBestCirclesRadiiFromGradMagImg2dLvl3
    : public ProcessingAlgorithm<ComputeBestCirclesRadiiFromGradMagImg2dLvl3, attr::InGxKnlYStrip2d, attr::InGyKnlYStrip2d,
                                 attr::InCircleIntensityType, attr::InMaxAngleWithGradDir, attr::InHoughCircles2dCenters,
                                 attr::InHoughCirclesRadiusRange, attr::InHoughCirclesKernelXY,
                                 attr::OutHoughCircles2dPpties>
{
    ORVIK_PROCESSOR(ComputeBestCirclesRadiiFromGradMagImg2dLvl3, 8)

    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override;
    unsigned long getRunGranularity() const override { return 1; }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    Ptr<RadiusScores> m_scores;
};

}}}  // namespace orvik::imaproc::fd
