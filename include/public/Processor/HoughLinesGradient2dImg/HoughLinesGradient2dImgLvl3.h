#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughLinesRowsMutexColl;
struct GradientVoters;
struct HoughLinesTables;

/// Level 3: one strip. Voters of several lines are sorted by the angles that they vote for, then vote row by row, so that a
/// row is in the cache while they do, and its lock is taken once for many of them.
class ORVIK_API HoughLinesGradient2dImgLvl3
    : public ProcessingAlgorithm<HoughLinesGradient2dImgLvl3, attr::InGxYStrip2d, attr::InGyYStrip2d,
                                 attr::InOptHoughLinesGradientImgParams, attr::InOptHoughLinesOrientationTolerance,
                                 attr::OutRealImg>
{
    ORVIK_PROCESSOR(HoughLinesGradient2dImgLvl3, 60)

    typedef LineStripParserMode ParserMode;

    /// The locks of the accumulator's rows, which other strips vote into as well.
    void setRowsMutexColl(const boost::shared_ptr<HoughLinesRowsMutexColl>& rowsMutexColl);

    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    static constexpr unsigned int s_version = 2;

    template<core::eInstructionSet Set>
    void vote();

    boost::shared_ptr<HoughLinesRowsMutexColl> m_rowsMutexColl;
    Ptr<HoughLinesTables> m_tables;
    Ptr<GradientVoters> m_voters;
};

}}}  // namespace orvik::imaproc::fd
