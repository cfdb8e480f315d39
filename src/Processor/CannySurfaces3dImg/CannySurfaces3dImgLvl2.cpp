#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl2.h"

#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(CannySurfaces3dImgLvl2)

processor::RulePtr CannySurfaces3dImgLvl2::createRule() const
{
    return matchSizeAndType(attribute<InSubGxImg3d>(), attribute<InSubGyImg3d>())
           && matchSizeAndType(attribute<InSubGxImg3d>(), attribute<InSubGzImg3d>())
           && matchSize(attribute<InSubGxImg3d>(), attribute<OutBinImg>());
}

processor::RetrievalResult CannySurfaces3dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                    processor::ProviderPtr& provider)
{
    return dispatch<CannySurfaces3dImgLvl3>(priority, provider, strips<OutZStrip3d>(value<OutBinImg>()),
                                            same(attribute<InCannyThresholds>()),
                                            stripsWithMargins<InGzKnlZStrip3d>(value<InSubGzImg3d>(), 1, 1, 1),
                                            stripsWithMargins<InGyKnlZStrip3d>(value<InSubGyImg3d>(), 1, 1, 1),
                                            stripsWithMargins<InGxKnlZStrip3d>(value<InSubGxImg3d>(), 1, 1, 1));
}

}}}  // namespace orvik::imaproc::fd
