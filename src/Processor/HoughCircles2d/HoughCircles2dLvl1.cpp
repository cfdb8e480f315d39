#include "Processor/HoughCircles2d/HoughCircles2dLvl1.h"

#include "Processor/AccumulatorSearch.h"
#include "Processor/HoughCircles2d/HoughCircles2dLvl2.h"
#include "Processor/RadiusRange.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughCircles2dLvl1)

template<class In>
static processor::RulePtr radiusFits(const boost::shared_ptr<In>& in,
                                     const boost::shared_ptr<InOptHoughCirclesRadiusRange>& range)
{
    return matchSize<HoughCirclesRadiusRange::MaxRadius, InOptHoughCirclesRadiusRange>(eMIST_MinXY, eMISS_Half, in, range);
}

processor::RulePtr HoughCircles2dLvl1::createRule() const
{
    const auto& grey = attribute<InOptGreyImg2d>();
    const auto& gx = attribute<InOptGxGreyImg2d>();
    const auto& gy = attribute<InOptGyGreyImg2d>();
    const auto& range = attribute<InOptHoughCirclesRadiusRange>();
    const processor::RulePtr ofGrey = Not(processor::isSet(gx)) && Not(processor::isSet(gy)) && radiusFits(grey, range)
                                      && fitsIfSet(grey, attribute<OutOptGxGreyImg2d>())
                                      && fitsIfSet(grey, attribute<OutOptGyGreyImg2d>())
                                      && fitsIfSet(grey, attribute<OutOptRealImg1>())
                                      && fitsIfSet(grey, attribute<OutOptRealImg2>());
    const processor::RulePtr ofGradients = processor::isSet(gx) && processor::isSet(gy) && matchSizeAndType(gx, gy)
                                           && radiusFits(gx, range) && fitsIfSet(gx, attribute<OutOptRealImg1>())
                                           && fitsIfSet(gx, attribute<OutOptRealImg2>());
    return If(processor::isSet(grey), ofGrey, ofGradients) && imagesApart(*this);
}

void HoughCircles2dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutPIHoughCircles2dPpties>(initializers, newRecord(attribute<OutPIHoughCircles2dPpties>()));
}

bool HoughCircles2dLvl1::isPhaseCoded() const
{
    return value<InOptHoughCircles2dAlgoMethod>() == eHCAM_PhaseCoded;
}

template<class In>
BoolResult HoughCircles2dLvl1::makeScores() const
{
    const BoolResult made =
        duplicateInOut(attribute<OutOptRealImg1>(), attribute<In>(), image::eIBT_Real32)->initOutputAttribute();
    if (!made || !isPhaseCoded())
        return made;
    return duplicateInOut(attribute<OutOptRealImg2>(), attribute<In>(), image::eIBT_Real32)->initOutputAttribute();
}

processor::RetrievalResult HoughCircles2dLvl1::retrieveFirstProvider(const core::BasePriority& priority,
                                                                     processor::ProviderPtr& provider)
{
    if (!attribute<InOptGreyImg2d>()->hasValue())
        return makeScores<InOptGxGreyImg2d>();
    BoolResult made = makeScores<InOptGreyImg2d>();
    if (made)
        made = promoteUnary(attribute<OutOptGxGreyImg2d>(), attribute<InOptGreyImg2d>())->initOutputAttribute();
    if (made)
        made = promoteUnary(attribute<OutOptGyGreyImg2d>(), attribute<InOptGreyImg2d>())->initOutputAttribute();
    if (!made)
        return made;
    return delegate<filter::GaussianGradient2dImgLvl1>(priority, provider, same<InImg>(value<InOptGreyImg2d>()),
                                                       same<InStdDevX>(1.0f), same<InStdDevY>(1.0f),
                                                       same<OutOptGradXImg>(value<OutOptGxGreyImg2d>()),
                                                       same<OutOptGradYImg>(value<OutOptGyGreyImg2d>()));
}

processor::RetrievalResult HoughCircles2dLvl1::retrieveSecondProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    const bool isGrey = attribute<InOptGreyImg2d>()->hasValue();
    const Ptr<PlanIndexedHoughCircles2dPpties>& lists = value<OutPIHoughCircles2dPpties>();
    m_gx = planesOf(*lists, isGrey ? ConstImagePtr(value<OutOptGxGreyImg2d>()) : value<InOptGxGreyImg2d>());
    m_gy = planesOf(*lists, isGrey ? ConstImagePtr(value<OutOptGyGreyImg2d>()) : value<InOptGyGreyImg2d>());
    const ImagePtr imaginary = isPhaseCoded() ? planesOf(*lists, value<OutOptRealImg2>()) : ImagePtr();
    return dispatch<HoughCircles2dLvl2>(
        priority, provider, eachPlane<InSubGxImg2d>(m_gx), eachPlane<InSubGyImg2d>(m_gy),
        same<InHoughCircles2dAlgoMethod>(value<InOptHoughCircles2dAlgoMethod>()),
        same<InCircleIntensityType>(value<InOptCircleIntensityType>()),
        same<InMaxAngleWithGradDir>(value<InOptMaxAngleWithGradDir>()),
        same<InNbMaxPtsPerCircle>(value<InOptNbMaxPtsPerCircle>()),
        same<InHoughCirclesRadiusRange>(narrowedRangeOfPlane(value<InOptHoughCirclesRadiusRange>(), *m_gx)),
        same<InAccumIntensityThreshold>(value<InOptAccumIntensityThreshold>()),
        same<InRemoveTooCloseCirclesParams>(value<InOptRemoveTooCloseCirclesParams>()),
        eachPlane<OutRealImg1>(planesOf(*lists, value<OutOptRealImg1>())), ifSet(eachPlane<OutOptRealImg2>(imaginary)),
        entryOfEachPlane<OutHoughCircles2dPpties>(lists, *m_gx));
}

void HoughCircles2dLvl1::clearIntermediateData() noexcept
{
    m_gx.reset();
    m_gy.reset();
}

typedef FunctionForms<HoughCircles2dLvl1, OutPIHoughCircles2dPpties> Forms;

ORVIK_PLANE_FUNCTIONS(houghCircles2d, (const ConstImagePtr&, inImg)(const ConstPtr<HoughCirclesRadiusRange>&, radiusRange))
{
    processor.set<InOptGreyImg2d>(inImg);
    processor.set<InOptHoughCirclesRadiusRange>(radiusRange);
}

ORVIK_PLANE_FUNCTIONS(houghCircles2d, (const ConstImagePtr&, inImg)(const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(
                                          const eCircleIntensityType&, circleIntensityType)(unsigned int, nbMaxPtsPerCircle)(
                                          const ConstPtr<AccumIntensityThreshold>&, accumIntensityThreshold)(
                                          const ConstPtr<RemoveTooCloseCirclesParams>&, removeTooCloseCirclesParams))
{
    prepare(processor, inImg, radiusRange);
    processor.set<InOptCircleIntensityType>(circleIntensityType);
    processor.set<InOptNbMaxPtsPerCircle>(nbMaxPtsPerCircle);
    processor.set<InOptAccumIntensityThreshold>(accumIntensityThreshold);
    processor.set<InOptRemoveTooCloseCirclesParams>(removeTooCloseCirclesParams);
}

ORVIK_PLANE_FUNCTIONS(houghCircles2d, (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(
                                          const ConstPtr<HoughCirclesRadiusRange>&, radiusRange))
{
    processor.set<InOptGxGreyImg2d>(inGx);
    processor.set<InOptGyGreyImg2d>(inGy);
    processor.set<InOptHoughCirclesRadiusRange>(radiusRange);
}

ORVIK_PLANE_FUNCTIONS(
    houghCircles2d,
    (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(const ConstPtr<HoughCirclesRadiusRange>&,
                                                             radiusRange)(const eHoughCircles2dAlgoMethod&, algoMethod)(
        const eCircleIntensityType&, circleIntensityType)(double, maxAngleWithGradDir)(unsigned int, nbMaxPtsPerCircle)(
        const ConstPtr<AccumIntensityThreshold>&,
        accumIntensityThreshold)(const ConstPtr<RemoveTooCloseCirclesParams>&,
                                 removeTooCloseCirclesParams)(const ImagePtr&, outImg1)(const ImagePtr&, outImg2))
{
    prepare(processor, inGx, inGy, radiusRange);
    processor.set<InOptHoughCircles2dAlgoMethod>(algoMethod);
    processor.set<InOptCircleIntensityType>(circleIntensityType);
    processor.set<InOptMaxAngleWithGradDir>(maxAngleWithGradDir);
    processor.set<InOptNbMaxPtsPerCircle>(nbMaxPtsPerCircle);
    processor.set<InOptAccumIntensityThreshold>(accumIntensityThreshold);
    processor.set<InOptRemoveTooCloseCirclesParams>(removeTooCloseCirclesParams);
    processor.set<OutOptRealImg1>(outImg1);
    processor.set<OutOptRealImg2>(outImg2);
}

ORVIK_PLANE_READERS

}}}  // namespace orvik::imaproc::fd
