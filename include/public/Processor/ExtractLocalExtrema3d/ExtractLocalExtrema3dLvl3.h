#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"
#include "frame/serialization/DataItem.h"

namespace orvik { namespace imaproc { namespace fd {

struct VolumeExtremaBuffers;

/// Level 3: one strip, line by line. A line is folded along x and the lines about it along y, by running extrema, when its slice
/// enters the window. Along z each line of the slices has a window of its own, as lines of planes have along y.
class ORVIK_API ExtractLocalExtrema3dLvl3 : public ProcessingAlgorithm<ExtractLocalExtrema3dLvl3, attr::InKnlZStrip3d,
                                                                       attr::InLocalExtremaConfig, attr::OutVoxels3d>
{
    ORVIK_PROCESSOR(ExtractLocalExtrema3dLvl3, 27)

    typedef LineStripParserMode ParserMode;
    /// Slices of margins are folded as the others are.
    static constexpr unsigned long s_minStripMargins = 32;

    processor::StageResult preProcess() override;
    /// Four vectors of the widest set, of the smallest samples.
    unsigned long getRunGranularity() const override { return 256; }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    Ptr<VolumeExtremaBuffers> m_buffers;
    NodeSupply<attr::Voxel3d> m_nodes;
};

}}}  // namespace orvik::imaproc::fd
