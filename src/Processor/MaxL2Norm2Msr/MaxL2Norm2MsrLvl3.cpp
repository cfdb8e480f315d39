#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl3.h"

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/util/NumericLimits.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(MaxL2Norm2MsrLvl3)

processor::RulePtr MaxL2Norm2MsrLvl3::createRule() const
{
    return matchSize(attribute<InYStrip2d1>(), attribute<InYStrip2d2>())
           && matchBufferType(attribute<InYStrip2d1>(), attribute<InYStrip2d2>());
}

processor::StageResult MaxL2Norm2MsrLvl3::preProcess()
{
    value<OutStatsResult>()->set<StatsResult::Max>(NumericLimits<double>::s_min);
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
