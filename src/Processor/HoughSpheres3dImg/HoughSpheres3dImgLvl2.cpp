#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl2.h"

#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl3.h"
#include "Processor/Shells.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughSpheres3dImgLvl2)

processor::RetrievalResult HoughSpheres3dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                   processor::ProviderPtr& provider)
{
    ConstPtr<Shells> shells;
    const BoolResult made = makeShellsOnce(*value<InHoughSpheresKernelXYZ>(), *value<InHoughCirclesRadiusRange>(),
                                           value<InCircleIntensityType>(), value<InMaxAngleWithGradDir>(), shells);
    if (!made)
        return made;
    const unsigned long reach = static_cast<unsigned long>(shells->getMaxRadius());
    return dispatch<HoughSpheres3dImgLvl3>(priority, provider, strips<OutZStrip3d>(value<OutRealImg>()),
                                           stripsWithMargins<InGxKnlZStrip3d>(value<InSubGxImg3d>(), reach, reach, reach),
                                           stripsWithMargins<InGyKnlZStrip3d>(value<InSubGyImg3d>(), reach, reach, reach),
                                           stripsWithMargins<InGzKnlZStrip3d>(value<InSubGzImg3d>(), reach, reach, reach),
                                           same(attribute<InCircleIntensityType>()),
                                           same(attribute<InMaxAngleWithGradDir>()),
                                           same(attribute<InHoughCirclesRadiusRange>()),
                                           same(attribute<InHoughSpheresKernelXYZ>()),
                                           passedOn(&HoughSpheres3dImgLvl3::setShells, shells));
}

}}}  // namespace orvik::imaproc::fd
