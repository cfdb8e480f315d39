#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/simd/KernelUnit.h"
#include "frame/util/NumericLimits.h"

#include "frame/simd/OpenGeneric.h"
#include "MaxL2Norm2MsrKernel.h"
#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(MaxL2Norm2MsrLvl3)
ORVIK_REGISTER_KERNELS(MaxL2Norm2MsrLvl3, AllKernelTypes, core::eIS_Generic)

MaxL2Norm2MsrLvl3::MaxL2Norm2MsrLvl3() = default;
MaxL2Norm2MsrLvl3::~MaxL2Norm2MsrLvl3() = default;

processor::RulePtr MaxL2Norm2MsrLvl3::createRule() const
{
    return matchSize(attribute<InYStrip2d1>(), attribute<InYStrip2d2>())
           && matchBufferType(attribute<InYStrip2d1>(), attribute<InYStrip2d2>());
}

processor::StageResult MaxL2Norm2MsrLvl3::preProcess()
{
    value<OutStatsResult>()->set<StatsResult::Max>(NumericLimits<double>::s_min);
    return processor::StageResult(processor::eSRT_Done);
}

}}}  // namespace orvik::imaproc::fd
