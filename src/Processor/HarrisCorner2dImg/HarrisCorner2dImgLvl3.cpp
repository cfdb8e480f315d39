#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl3.h"

#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(HarrisCorner2dImgLvl3)

processor::RulePtr HarrisCorner2dImgLvl3::createRule() const
{
    return matchSizeAndType(attribute<InXXYStrip2d>(), attribute<InXYYStrip2d>(), attribute<InYYYStrip2d>(),
                            attribute<OutYStrip2d>());
}

}}}  // namespace orvik::imaproc::fd
