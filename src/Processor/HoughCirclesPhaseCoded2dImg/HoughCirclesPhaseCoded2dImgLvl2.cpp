#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl2.h"

#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl3.h"
#include "Processor/RingRecords.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughCirclesPhaseCoded2dImgLvl2)

processor::RetrievalResult HoughCirclesPhaseCoded2dImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                             processor::ProviderPtr& provider)
{
    ConstPtr<Rings<2>> rings;
    const BoolResult made = makeRingsOnce(*value<InHoughCirclesPhaseCodedKernelXY>(), *value<InHoughCirclesRadiusRange>(),
                                          value<InCircleIntensityType>(), value<InMaxAngleWithGradDir>(), rings);
    if (!made)
        return made;
    const unsigned long reach = static_cast<unsigned long>(rings->getMaxRadius());
    return dispatch<HoughCirclesPhaseCoded2dImgLvl3>(
        priority, provider, strips<OutComplexRealYStrip2d>(value<OutComplexRealImg>()),
        strips<OutComplexImYStrip2d>(value<OutComplexImImg>()),
        stripsWithMargins<InGyKnlYStrip2d>(value<InSubGyImg2d>(), reach, reach),
        stripsWithMargins<InGxKnlYStrip2d>(value<InSubGxImg2d>(), reach, reach), same(attribute<InCircleIntensityType>()),
        same(attribute<InMaxAngleWithGradDir>()), same(attribute<InHoughCirclesRadiusRange>()),
        same(attribute<InHoughCirclesPhaseCodedKernelXY>()), passedOn(&HoughCirclesPhaseCoded2dImgLvl3::setRings, rings));
}

}}}  // namespace orvik::imaproc::fd
