#pragma once

#include "siblings/AdvancedMorphology/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

#include <functional>

namespace orvik { namespace imaproc { namespace advmorpho {

/// Spreads 2 over the 1 that hang together with it, eight neighbours, within some lines of a plane.
class WeakSpreader
{
public:
    typedef std::function<unsigned char*(unsigned long)> LineAccess;

    /// Lines firstLine to endLine - 1 are read and written.
    WeakSpreader(unsigned long sizeX, unsigned long firstLine, unsigned long endLine, const LineAccess& access)
        : m_sizeX(sizeX), m_firstLine(firstLine), m_endLine(endLine), m_access(access)
    {
    }

    /// Makes 2 of pixel (x, y), if it is 1, and of all that hang together with it.
    void spreadFrom(unsigned long x, unsigned long y);
    /// Spreads from line y - 1 to line y and back.
    void spreadAcross(unsigned long y);

private:
    struct Seed
    {
        unsigned int x, y;
    };
    void seedLine(unsigned long y, unsigned long start, unsigned long end);

    unsigned long m_sizeX, m_firstLine, m_endLine;
    LineAccess m_access;
    std::vector<Seed> m_seeds;  // one per run of pixels whose turn has not come
};

/// Level 3: one strip of unsigned bytes, in place; only its own lines are looked at, Level 2 joins the strips. `Max` of
/// the result is the largest value of the strip: above 2 there is more to do than this class does.
class ORVIK_API IterativeExtremumPropagation2dImgLvl3
    : public ProcessingAlgorithm<IterativeExtremumPropagation2dImgLvl3, attr::OutYStrip2d, attr::OutStatsResult>
{
    ORVIK_PROCESSOR(IterativeExtremumPropagation2dImgLvl3, 3)

    typedef LineStripParserMode ParserMode;

    /// None: the kernel goes back and forth over the strip, and is called once for all of it.
    void initDataParserColl(processor::DataParserColl& coll) override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);
};

}}}  // namespace orvik::imaproc::advmorpho
