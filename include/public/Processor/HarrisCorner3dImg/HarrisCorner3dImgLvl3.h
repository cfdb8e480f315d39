#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 3: the response of one strip of slices, each voxel for itself. Its kernels have two sets of instructions: the same one
/// twice, or AVX2 with fused operations.
class ORVIK_API HarrisCorner3dImgLvl3
    : public ProcessingAlgorithm<HarrisCorner3dImgLvl3, attr::InXXZStrip3d, attr::InXYZStrip3d, attr::InXZZStrip3d,
                                 attr::InYYZStrip3d, attr::InYZZStrip3d, attr::InZZZStrip3d, attr::InCornerDetectionParams,
                                 attr::OutZStrip3d>
{
    ORVIK_PROCESSOR(HarrisCorner3dImgLvl3, 39)

    typedef RawStripParserMode ParserMode;
    typedef attr::OutZStrip3d KeyStrip;

    template<class Sample, core::eInstructionSet Set1, core::eInstructionSet Set2>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::fd
