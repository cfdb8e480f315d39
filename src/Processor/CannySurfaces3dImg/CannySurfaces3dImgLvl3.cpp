#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl3.h"

#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(CannySurfaces3dImgLvl3)

template<class Strip>
void CannySurfaces3dImgLvl3::readZeroOutside() const
{
    setBorder<Strip>(image::valuedBorder3d(0.0));
    readOnDemand<Strip>();
}

processor::StageResult CannySurfaces3dImgLvl3::preProcess()
{
    readZeroOutside<InGxKnlZStrip3d>();
    readZeroOutside<InGyKnlZStrip3d>();
    readZeroOutside<InGzKnlZStrip3d>();
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
