#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughLinesRowsMutexColl;
struct HoughLinesTables;

/// Level 3: one strip. Voters are gathered first, then all of them vote row by row, so that a row is in the cache while
/// they do, and its lock is taken once for many of them.
class ORVIK_API HoughLines2dImgLvl3
    : public ProcessingAlgorithm<HoughLines2dImgLvl3, attr::InYStrip2d, attr::InOptHoughLinesImgParams, attr::OutImg>
{
    ORVIK_PROCESSOR(HoughLines2dImgLvl3, 54)

    typedef LineStripParserMode ParserMode;

    /// The locks of the accumulator's rows, which other strips vote into as well.
    void setRowsMutexColl(const boost::shared_ptr<HoughLinesRowsMutexColl>& rowsMutexColl);

    processor::StageResult preProcess() override;
    /// Pixels are looked at one by one.
    unsigned long getRunGranularity() const override { return 1; }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    static constexpr unsigned int s_version = 2;

    /// Voters of one line, or of a part of it.
    struct Segment
    {
        float y;  // from the centre of the plane
        unsigned int begin, end;
    };

    template<class Sample, class Accum, core::eInstructionSet Set>
    BoolResult processFunction(const processor::ProcessingInfo& info);
    template<class Accum, core::eInstructionSet Set>
    void vote();

    boost::shared_ptr<HoughLinesRowsMutexColl> m_rowsMutexColl;
    Ptr<HoughLinesTables> m_tables;
    float m_threshold = 0;
    std::vector<float> m_positions, m_weights;  // of the voters: x from the centre of the plane, votes
    unsigned int m_nbVoters = 0;
    std::vector<Segment> m_segments;
};

}}}  // namespace orvik::imaproc::fd
