#pragma once

#include "siblings/Filtering/Library.h"
#include "siblings/Filtering/TensorBuffers.h"

#include "frame/attr/Declarations.h"
#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace filter {

/// Level 3: one strip of slices, each for itself: the products that are wanted, smoothed along y and x. A product may be a
/// gradient: its lines are copied before those of the product are written that the kernel reads them for.
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
    /// Where line `y` of a slice begins those that go together, the lines that the kernel reads for them and had not read yet.
    void readLines(unsigned long line);
    /// Line of a gradient that the kernel reads, from the first one for line `y` on.
    const void* getLine(unsigned long gradient, unsigned long y, unsigned long line) const
    {
        return m_lines[gradient].getDataPtr((y + line) % m_lines[gradient].getNbFragments());
    }

    TensorBuffers m_buffers;
    image::FragHybridBuffer m_lines[3];  // of each gradient those that the kernel reads, in turn
};

}}}  // namespace orvik::imaproc::filter
