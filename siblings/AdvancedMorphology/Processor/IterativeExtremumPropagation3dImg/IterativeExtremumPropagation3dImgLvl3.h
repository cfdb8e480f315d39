#pragma once

#include "siblings/AdvancedMorphology/Library.h"
#include "siblings/AdvancedMorphology/Processor/WeakSpreader.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 3: one strip of unsigned bytes, in place; only its own lines are looked at, Level 2 joins the strips. `Max` of
/// the result is the largest value of the strip: above 2 there is more to do than this class does.
class ORVIK_API IterativeExtremumPropagation3dImgLvl3
    : public ProcessingAlgorithm<IterativeExtremumPropagation3dImgLvl3, attr::OutZStrip3d, attr::OutStatsResult>
{
    ORVIK_PROCESSOR(IterativeExtremumPropagation3dImgLvl3, 9)

    typedef LineStripParserMode ParserMode;

    /// None: the kernel goes back and forth over the strip, and is called once for all of it.
    void initDataParserColl(processor::DataParserColl& coll) override { coll.clear(); }
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);
};

}}}  // namespace orvik::imaproc::advmorpho
