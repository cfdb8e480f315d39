#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl3.h"

#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(HarrisCorner3dImgLvl3)

processor::RulePtr HarrisCorner3dImgLvl3::createRule() const
{
    return matchSizeAndType(attribute<InXXZStrip3d>(), attribute<InXYZStrip3d>(), attribute<InXZZStrip3d>(),
                            attribute<InYYZStrip3d>(), attribute<InYZZStrip3d>(), attribute<InZZZStrip3d>(),
                            attribute<OutZStrip3d>());
}

}}}  // namespace orvik::imaproc::fd
