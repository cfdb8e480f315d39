#pragma once

#include "siblings/Filtering/GaussianWeights.h"
#include "siblings/Filtering/Library.h"
#include "siblings/Filtering/SeparableStrips.h"

#include "frame/attr/Declarations.h"
#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

#include <vector>

namespace orvik { namespace imaproc { namespace filter {

/// What the passes of a strip of slices keep, in double.
struct GaussianVolumeBuffers
{
    GaussianWeights x, y, z;
    std::vector<const void*> lines;   // of the image, that the kernel across slices reads
    image::TypedOwnBuffer tile;       // a block of columns of all lines of a kernel
    CombinedLines smoothed, derived;  // across slices: one slice
    CombinedLines ofX, ofY, ofZ;      // across its lines as well: those that go together
};

/// Level 3: one strip of slices. Lines of other slices are read from the image itself, the nearest one outside.
class ORVIK_API GaussianGradient3dImgLvl3
    : public ProcessingAlgorithm<GaussianGradient3dImgLvl3, attr::InKnlZStrip3d, attr::InStdDevX, attr::InStdDevY,
                                 attr::InStdDevZ, attr::InGaussianCoverage, attr::OutOptGradXZStrip3d,
                                 attr::OutOptGradYZStrip3d, attr::OutOptGradZZStrip3d>
{
    ORVIK_PROCESSOR(GaussianGradient3dImgLvl3, 7)

    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    processor::RulePtr createRule() const;

    GaussianVolumeBuffers m_buffers;
};

}}}  // namespace orvik::imaproc::filter
