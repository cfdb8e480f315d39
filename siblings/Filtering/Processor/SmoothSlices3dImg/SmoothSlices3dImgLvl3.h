#pragma once

#include "siblings/Filtering/GaussianWeights.h"
#include "siblings/Filtering/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace filter {

/// Level 3: floats of a volume smoothed across its slices by a Gaussian, the edge sample repeated. Strips are those of the view
/// along Z: what lies one above the other in all slices is read as a whole before it is written, so that strips have no margins
/// and the result may be the volume itself.
class ORVIK_API SmoothSlices3dImgLvl3
    : public ProcessingAlgorithm<SmoothSlices3dImgLvl3, attr::InZStrip3d, attr::InSmoothingStdDev, attr::InGaussianCoverage,
                                 attr::OutZStrip3d>
{
    ORVIK_PROCESSOR(SmoothSlices3dImgLvl3, 10)

    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    /// The lines of all slices that lie where this one does, with those that repeat the first and the last.
    void readLines(unsigned long line);

    TypedGaussianWeights<float> m_weights;
    image::FragHybridBuffer m_lines;
};

}}}  // namespace orvik::imaproc::filter
