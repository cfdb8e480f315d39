#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl1.h"

#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl2.h"
#include "Processor/RadiusRange.h"
#include "Processor/ShellPlaces.h"
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

ORVIK_DEFINE_PROCESSOR(HoughSpheres3dImgLvl1)

processor::RulePtr HoughSpheres3dImgLvl1::createRule() const
{
    return matchSizeAndType(attribute<InGxGreyImg3d>(), attribute<InGyGreyImg3d>())
           && matchSizeAndType(attribute<InGxGreyImg3d>(), attribute<InGzGreyImg3d>())
           && matchSize(attribute<InGxGreyImg3d>(), attribute<OutRealImg>())
           && matchSize<HoughCirclesRadiusRange::MaxRadius, InOptHoughCirclesRadiusRange>(
               eMIST_MinXYZ, eMISS_Half, attribute<InGxGreyImg3d>(), attribute<InOptHoughCirclesRadiusRange>())
           && isReal(attribute<InGxGreyImg3d>(), attribute<OutRealImg>()) && imagesApart(*this);
}

void HoughSpheres3dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutRealImg>(initializers,
                               duplicateInOut(attribute<OutRealImg>(), attribute<InGxGreyImg3d>(), image::eIBT_Real32));
}

processor::RetrievalResult HoughSpheres3dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                   processor::ProviderPtr& provider)
{
    const ConstPtr<HoughCirclesRadiusRange> range =
        narrowedRangeOfVolume(value<InOptHoughCirclesRadiusRange>(), *value<InGxGreyImg3d>());
    const BoolResult fits = checkShellMemory(*range);
    if (!fits)
        return fits;
    return dispatch<HoughSpheres3dImgLvl2>(
        priority, provider, eachVolume<InSubGxImg3d>(value<InGxGreyImg3d>()),
        eachVolume<InSubGyImg3d>(value<InGyGreyImg3d>()), eachVolume<InSubGzImg3d>(value<InGzGreyImg3d>()),
        same<InCircleIntensityType>(value<InOptCircleIntensityType>()),
        same<InMaxAngleWithGradDir>(value<InOptMaxAngleWithGradDir>()), same<InHoughCirclesRadiusRange>(range),
        same<InHoughSpheresKernelXYZ>(makeKernelXYZ(*range, value<InOptNbMaxPtsPerCircle>())),
        eachVolume<OutRealImg>(value<OutRealImg>()));
}

typedef FunctionForms<HoughSpheres3dImgLvl1, OutRealImg> Forms;

ORVIK_FUNCTION(houghSpheres3dImg, (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(const ConstImagePtr&, inGz)(
                                      const ConstPtr<HoughCirclesRadiusRange>&, radiusRange))
{
    processor.set<InGxGreyImg3d>(inGx);
    processor.set<InGyGreyImg3d>(inGy);
    processor.set<InGzGreyImg3d>(inGz);
    processor.set<InOptHoughCirclesRadiusRange>(radiusRange);
}

ORVIK_PROCEDURE(houghSpheres3dImg,
                (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(const ConstImagePtr&, inGz)(
                    const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(const eCircleIntensityType&, circleIntensityType)(
                    double, maxAngleWithGradDir)(unsigned int, nbMaxPtsPerCircle)(const ImagePtr&, outImg))
{
    processor.set<InGxGreyImg3d>(inGx);
    processor.set<InGyGreyImg3d>(inGy);
    processor.set<InGzGreyImg3d>(inGz);
    processor.set<InOptCircleIntensityType>(circleIntensityType);
    processor.set<InOptMaxAngleWithGradDir>(maxAngleWithGradDir);
    processor.set<InOptNbMaxPtsPerCircle>(nbMaxPtsPerCircle);
    processor.set<InOptHoughCirclesRadiusRange>(radiusRange);
    processor.set<OutRealImg>(outImg);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
