#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl1.h"

#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl2.h"
#include "Processor/RadiusRange.h"
#include "Processor/RingRecords.h"
#include "Rule/RealImageRule.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughCircles2dImgLvl1)

processor::RulePtr HoughCircles2dImgLvl1::createRule() const
{
    return matchSizeAndType(attribute<InGxGreyImg2d>(), attribute<InGyGreyImg2d>())
           && matchSize(attribute<InGxGreyImg2d>(), attribute<OutRealImg>())
           && matchSize<HoughCirclesRadiusRange::MaxRadius, InOptHoughCirclesRadiusRange>(
               eMIST_MinXY, eMISS_Half, attribute<InGxGreyImg2d>(), attribute<InOptHoughCirclesRadiusRange>())
           && isReal(attribute<InGxGreyImg2d>(), attribute<OutRealImg>()) && imagesApart(*this);
}

void HoughCircles2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutRealImg>(initializers,
                               duplicateInOut(attribute<OutRealImg>(), attribute<InGxGreyImg2d>(), image::eIBT_Real32));
}

processor::RetrievalResult HoughCircles2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                   processor::ProviderPtr& provider)
{
    const ConstPtr<HoughCirclesRadiusRange> range =
        narrowedRangeOfPlane(value<InOptHoughCirclesRadiusRange>(), *value<InGxGreyImg2d>());
    const BoolResult fits = checkRingMemory(*range);
    if (!fits)
        return fits;
    return dispatch<HoughCircles2dImgLvl2>(
        priority, provider, eachPlane<InSubGxImg2d>(value<InGxGreyImg2d>()), eachPlane<InSubGyImg2d>(value<InGyGreyImg2d>()),
        same<InCircleIntensityType>(value<InOptCircleIntensityType>()),
        same<InMaxAngleWithGradDir>(value<InOptMaxAngleWithGradDir>()), same<InHoughCirclesRadiusRange>(range),
        same<InHoughCirclesKernelXY>(makeKernelXY(*range, value<InOptNbMaxPtsPerCircle>())),
        eachPlane<OutRealImg>(value<OutRealImg>()));
}

typedef FunctionForms<HoughCircles2dImgLvl1, OutRealImg> Forms;

ORVIK_FUNCTION(houghCircles2dImg, (const ConstImagePtr&, inGx)(const ConstImagePtr&,
                                                               inGy)(const ConstPtr<HoughCirclesRadiusRange>&, radiusRange))
{
    processor.set<InGxGreyImg2d>(inGx);
    processor.set<InGyGreyImg2d>(inGy);
    processor.set<InOptHoughCirclesRadiusRange>(radiusRange);
}

ORVIK_PROCEDURE(houghCircles2dImg,
                (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(
                    const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(const eCircleIntensityType&, circleIntensityType)(
                    double, maxAngleWithGradDir)(unsigned int, nbMaxPtsPerCircle)(const ImagePtr&, outImg))
{
    processor.set<InGxGreyImg2d>(inGx);
    processor.set<InGyGreyImg2d>(inGy);
    processor.set<InOptCircleIntensityType>(circleIntensityType);
    processor.set<InOptMaxAngleWithGradDir>(maxAngleWithGradDir);
    processor.set<InOptNbMaxPtsPerCircle>(nbMaxPtsPerCircle);
    processor.set<InOptHoughCirclesRadiusRange>(radiusRange);
    processor.set<OutRealImg>(outImg);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
