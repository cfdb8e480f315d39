#pragma once

#include "siblings/Filtering/Library.h"
#include "siblings/Filtering/TensorBuffers.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace filter {

/// Level 3: one strip of slices, each for itself: the products that are wanted, smoothed along y and x. The margin of lines is
/// the half-size. A product may be a gradient: the parsers have copied its slice before.
class ORVIK_API StructureTensor3dImgLvl3
    : public ProcessingAlgorithm<StructureTensor3dImgLvl3, attr::InGxKnlZStrip3d, attr::InGyKnlZStrip3d,
                                 attr::InGzKnlZStrip3d, attr::InSmoothingStdDev, attr::InGaussianCoverage,
                                 attr::OutOptGxGxZStrip3d, attr::OutOptGyGyZStrip3d, attr::OutOptGzGzZStrip3d,
                                 attr::OutOptGxGyZStrip3d, attr::OutOptGxGzZStrip3d, attr::OutOptGyGzZStrip3d>
{
    ORVIK_PROCESSOR(StructureTensor3dImgLvl3, 9)

    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    TensorBuffers m_buffers;
};

}}}  // namespace orvik::imaproc::filter
