#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 3: the classes of one strip of slices: magnitude, suppression of what is no maximum, both thresholds, in one sweep.
class ORVIK_API CannySurfaces3dImgLvl3
    : public ProcessingAlgorithm<CannySurfaces3dImgLvl3, attr::InGxKnlZStrip3d, attr::InGyKnlZStrip3d, attr::InGzKnlZStrip3d,
                                 attr::InCannyThresholds, attr::OutZStrip3d>
{
    ORVIK_PROCESSOR(CannySurfaces3dImgLvl3, 5)

    typedef LineStripParserMode ParserMode;
    /// The magnitudes of the slices on both sides are computed anew for each strip.
    static constexpr unsigned long s_minStripMargins = 16;

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    template<class Sample, class Magnitude, core::eInstructionSet Set>
    BoolResult processFunction(const processor::ProcessingInfo& info);
    template<class Strip>
    void readZeroOutside() const;

    /// Squared magnitudes of the slices before, of, and after the current line, for each part of a line.
    image::FragHybridBuffer m_magnitudes[3];
};

}}}  // namespace orvik::imaproc::fd
