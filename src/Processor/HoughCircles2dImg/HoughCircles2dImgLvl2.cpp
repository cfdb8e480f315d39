#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl2.h"

#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl3.h"
#include "Processor/RingRecords.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughCircles2dImgLvl2)

processor::RetrievalResult HoughCircles2dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                   processor::ProviderPtr& provider)
{
    ConstPtr<Rings<1>> rings;
    const BoolResult made = makeRingsOnce(*value<InHoughCirclesKernelXY>(), *value<InHoughCirclesRadiusRange>(),
                                          value<InCircleIntensityType>(), value<InMaxAngleWithGradDir>(), rings);
    if (!made)
        return made;
    const unsigned long reach = static_cast<unsigned long>(rings->getMaxRadius());
    return dispatch<HoughCircles2dImgLvl3>(
        priority, provider, strips<OutYStrip2d>(value<OutRealImg>()),
        stripsWithMargins<InGyKnlYStrip2d>(value<InSubGyImg2d>(), reach, reach),
        stripsWithMargins<InGxKnlYStrip2d>(value<InSubGxImg2d>(), reach, reach), same(attribute<InCircleIntensityType>()),
        same(attribute<InMaxAngleWithGradDir>()), same(attribute<InHoughCirclesRadiusRange>()),
        same(attribute<InHoughCirclesKernelXY>()), passedOn(&HoughCircles2dImgLvl3::setRings, rings));
}

}}}  // namespace orvik::imaproc::fd
