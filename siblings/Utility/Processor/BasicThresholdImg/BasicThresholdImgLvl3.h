#pragma once

#include "siblings/Utility/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace util {

/// Level 3: one strip, into a strip of any type.
class ORVIK_API BasicThresholdImgLvl3
    : public ProcessingAlgorithm<BasicThresholdImgLvl3, attr::InYStrip2d, attr::InThresholdMin, attr::InThresholdMax,
                                 attr::InOptOutside, attr::OutYStrip2d>
{
    ORVIK_PROCESSOR(BasicThresholdImgLvl3, 2)

    typedef RawStripParserMode ParserMode;

    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);
};

}}}  // namespace orvik::imaproc::util
