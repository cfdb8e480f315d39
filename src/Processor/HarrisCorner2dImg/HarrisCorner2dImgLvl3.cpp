#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenGeneric.h"
#include "HarrisCorner2dImgKernel.h"
#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(HarrisCorner2dImgLvl3)
ORVIK_REGISTER_KERNELS(HarrisCorner2dImgLvl3, AllKernelTypes, core::eIS_Generic)

HarrisCorner2dImgLvl3::HarrisCorner2dImgLvl3() = default;
HarrisCorner2dImgLvl3::~HarrisCorner2dImgLvl3() = default;

processor::RulePtr HarrisCorner2dImgLvl3::createRule() const
{
    return matchSizeAndType(attribute<InXXYStrip2d>(), attribute<InXYYStrip2d>(), attribute<InYYYStrip2d>(),
                            attribute<OutYStrip2d>());
}

}}}  // namespace orvik::imaproc::fd
