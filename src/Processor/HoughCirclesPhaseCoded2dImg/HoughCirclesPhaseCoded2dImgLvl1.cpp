#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl1.h"

#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl2.h"
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

ORVIK_DEFINE_PROCESSOR(HoughCirclesPhaseCoded2dImgLvl1)

processor::RulePtr HoughCirclesPhaseCoded2dImgLvl1::createRule() const
{
    return matchSizeAndType(attribute<InGxGreyImg2d>(), attribute<InGyGreyImg2d>())
           && matchSize(attribute<InGxGreyImg2d>(), attribute<OutComplexRealImg>(), attribute<OutComplexImImg>())
           && matchSizeAndType(attribute<OutComplexRealImg>(), attribute<OutComplexImImg>())
           && matchSize<HoughCirclesRadiusRange::MaxRadius, InOptHoughCirclesRadiusRange>(
               eMIST_MinXY, eMISS_Half, attribute<InGxGreyImg2d>(), attribute<InOptHoughCirclesRadiusRange>())
           && isReal(attribute<InGxGreyImg2d>(), attribute<OutComplexRealImg>()) && imagesApart(*this);
}

void HoughCirclesPhaseCoded2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutComplexRealImg>(initializers, duplicateInOut(attribute<OutComplexRealImg>(),
                                                                   attribute<InGxGreyImg2d>(), image::eIBT_Real32));
    addInitializer<OutComplexImImg>(initializers, duplicateInOut(attribute<OutComplexImImg>(), attribute<InGxGreyImg2d>(),
                                                                 image::eIBT_Real32));
}

static Ptr<HoughCirclesPhaseCodedKernelXY> makePhaseCodedKernelXY(const HoughCirclesRadiusRange& range,
                                                                  unsigned int nbMaxPts)
{
    typedef HoughCirclesPhaseCodedKernelXYElt E;
    const long least = range.get<HoughCirclesRadiusRange::MinRadius>();
    const double span = static_cast<double>(range.get<HoughCirclesRadiusRange::MaxRadius>()) - static_cast<double>(least);
    return placeRecords<HoughCirclesPhaseCodedKernelXY>(ringPlaces(range, nbMaxPts), [=](const RingPlace& place, E& node) {
        setPlace(place, node);
        const double wholeTurn = 6.283185307179586;
        const double phase = static_cast<double>(place.radius - static_cast<float>(least)) * wholeTurn / span;
        double sine, cosine;
        sincos(phase, &sine, &cosine);
        node.set<E::PhaseRe>(static_cast<float>(cosine / static_cast<double>(place.nbPts)));
        node.set<E::PhaseIm>(static_cast<float>(sine / static_cast<double>(place.nbPts)));
    });
}

processor::RetrievalResult HoughCirclesPhaseCoded2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                             processor::ProviderPtr& provider)
{
    const ConstPtr<HoughCirclesRadiusRange> range =
        narrowedRangeOfPlane(value<InOptHoughCirclesRadiusRange>(), *value<InGxGreyImg2d>());
    const BoolResult fits = checkRingMemory(*range);
    if (!fits)
        return fits;
    return dispatch<HoughCirclesPhaseCoded2dImgLvl2>(
        priority, provider, eachPlane<InSubGxImg2d>(value<InGxGreyImg2d>()), eachPlane<InSubGyImg2d>(value<InGyGreyImg2d>()),
        same<InCircleIntensityType>(value<InOptCircleIntensityType>()),
        same<InMaxAngleWithGradDir>(value<InOptMaxAngleWithGradDir>()), same<InHoughCirclesRadiusRange>(range),
        same<InHoughCirclesPhaseCodedKernelXY>(makePhaseCodedKernelXY(*range, value<InOptNbMaxPtsPerCircle>())),
        eachPlane<OutComplexRealImg>(value<OutComplexRealImg>()), eachPlane<OutComplexImImg>(value<OutComplexImImg>()));
}

typedef FunctionForms<HoughCirclesPhaseCoded2dImgLvl1, OutComplexRealImg, OutComplexImImg> Forms;

ORVIK_FUNCTION(houghCirclesPhaseCoded2dImg, (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(
                                                const ConstPtr<HoughCirclesRadiusRange>&, radiusRange))
{
    processor.set<InGxGreyImg2d>(inGx);
    processor.set<InGyGreyImg2d>(inGy);
    processor.set<InOptHoughCirclesRadiusRange>(radiusRange);
}

ORVIK_PROCEDURE(houghCirclesPhaseCoded2dImg,
                (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(
                    const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(const eCircleIntensityType&, circleIntensityType)(
                    double, maxAngleWithGradDir)(unsigned int, nbMaxPtsPerCircle)(const ImagePtr&,
                                                                                  outRealImg)(const ImagePtr&, outImImg))
{
    processor.set<InGxGreyImg2d>(inGx);
    processor.set<InGyGreyImg2d>(inGy);
    processor.set<InOptCircleIntensityType>(circleIntensityType);
    processor.set<InOptMaxAngleWithGradDir>(maxAngleWithGradDir);
    processor.set<InOptNbMaxPtsPerCircle>(nbMaxPtsPerCircle);
    processor.set<InOptHoughCirclesRadiusRange>(radiusRange);
    processor.set<OutComplexRealImg>(outRealImg);
    processor.set<OutComplexImImg>(outImImg);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
