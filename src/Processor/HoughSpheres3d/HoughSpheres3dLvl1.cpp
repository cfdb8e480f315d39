#include "Processor/HoughSpheres3d/HoughSpheres3dLvl1.h"

#include "Processor/AccumulatorSearch.h"
#include "Processor/HoughSpheres3d/HoughSpheres3dLvl2.h"
#include "Processor/RadiusRange.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughSpheres3dLvl1)

template<class In>
static processor::RulePtr radiusFitsVolume(const boost::shared_ptr<In>& in,
                                           const boost::shared_ptr<InOptHoughCirclesRadiusRange>& range)
{
    return matchSize<HoughCirclesRadiusRange::MaxRadius, InOptHoughCirclesRadiusRange>(eMIST_MinXYZ, eMISS_Half, in, range);
}

processor::RulePtr HoughSpheres3dLvl1::createRule() const
{
    const auto& grey = attribute<InOptGreyImg3d>();
    const auto& gx = attribute<InOptGxGreyImg3d>();
    const auto& gy = attribute<InOptGyGreyImg3d>();
    const auto& gz = attribute<InOptGzGreyImg3d>();
    const auto& range = attribute<InOptHoughCirclesRadiusRange>();
    const auto unwritten = [this](const auto& in) {  // of the second result nothing but the size is looked at
        return If(processor::isSet(attribute<OutOptRealImg2>()), matchSize(in, attribute<OutOptRealImg2>()));
    };
    const processor::RulePtr ofGrey = Not(processor::isSet(gx)) && Not(processor::isSet(gy)) && Not(processor::isSet(gz))
                                      && radiusFitsVolume(grey, range) && fitsIfSet(grey, attribute<OutOptGradXImg3d>())
                                      && fitsIfSet(grey, attribute<OutOptGradYImg3d>())
                                      && fitsIfSet(grey, attribute<OutOptGradZImg3d>())
                                      && fitsIfSet(grey, attribute<OutOptRealImg1>()) && unwritten(grey);
    const processor::RulePtr ofGradients = processor::isSet(gx) && processor::isSet(gy) && processor::isSet(gz)
                                           && matchSizeAndType(gx, gy) && matchSizeAndType(gx, gz)
                                           && radiusFitsVolume(gx, range) && fitsIfSet(gx, attribute<OutOptRealImg1>())
                                           && unwritten(gx);
    return If(processor::isSet(grey), ofGrey, ofGradients) && imagesApart(*this);
}

void HoughSpheres3dLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutPIHoughSpheres3dPpties>(initializers, newRecord(attribute<OutPIHoughSpheres3dPpties>()));
}

processor::RetrievalResult HoughSpheres3dLvl1::retrieveFirstProvider(const core::BasePriority& priority,
                                                                     processor::ProviderPtr& provider)
{
    const auto& scores = attribute<OutOptRealImg1>();
    const auto& grey = attribute<InOptGreyImg3d>();
    if (!grey->hasValue())
        return duplicateInOut(scores, attribute<InOptGxGreyImg3d>(), image::eIBT_Real32)->initOutputAttribute();
    BoolResult made = duplicateInOut(scores, grey, image::eIBT_Real32)->initOutputAttribute();
    if (made)
        made = promoteUnary(attribute<OutOptGradXImg3d>(), grey)->initOutputAttribute();
    if (made)
        made = promoteUnary(attribute<OutOptGradYImg3d>(), grey)->initOutputAttribute();
    if (made)
        made = promoteUnary(attribute<OutOptGradZImg3d>(), grey)->initOutputAttribute();
    if (!made)
        return made;
    return delegate<filter::GaussianGradient3dImgLvl1>(priority, provider, same<InImg3d>(grey->getStorage()),
                                                       same<InStdDevX>(1.0f), same<InStdDevY>(1.0f), same<InStdDevZ>(1.0f),
                                                       same(attribute<OutOptGradXImg3d>()),
                                                       same(attribute<OutOptGradYImg3d>()),
                                                       same(attribute<OutOptGradZImg3d>()));
}

processor::RetrievalResult HoughSpheres3dLvl1::retrieveSecondProvider(const core::BasePriority& priority,
                                                                      processor::ProviderPtr& provider)
{
    const bool isGrey = attribute<InOptGreyImg3d>()->hasValue();
    const Ptr<PlanIndexedHoughSpheres3dPpties>& lists = value<OutPIHoughSpheres3dPpties>();
    m_gx = volumesOf(*lists, isGrey ? ConstImagePtr(value<OutOptGradXImg3d>()) : value<InOptGxGreyImg3d>());
    m_gy = volumesOf(*lists, isGrey ? ConstImagePtr(value<OutOptGradYImg3d>()) : value<InOptGyGreyImg3d>());
    m_gz = volumesOf(*lists, isGrey ? ConstImagePtr(value<OutOptGradZImg3d>()) : value<InOptGzGreyImg3d>());
    return dispatch<HoughSpheres3dLvl2>(
        priority, provider, eachVolume<InSubGxImg3d>(m_gx), eachVolume<InSubGyImg3d>(m_gy), eachVolume<InSubGzImg3d>(m_gz),
        same<InCircleIntensityType>(value<InOptCircleIntensityType>()), same<InNbCircles>(value<InOptNbCircles>()),
        same<InMaxAngleWithGradDir>(value<InOptMaxAngleWithGradDir>()),
        same<InNbMaxPtsPerCircle>(value<InOptNbMaxPtsPerCircle>()),
        same<InHoughCirclesRadiusRange>(narrowedRangeOfVolume(value<InOptHoughCirclesRadiusRange>(), *m_gx)),
        same<InAccumIntensityThreshold>(value<InOptAccumIntensityThreshold>()),
        same<InRemoveTooCloseCirclesParams>(value<InOptRemoveTooCloseCirclesParams>()),
        eachVolume<OutRealImg1>(volumesOf(*lists, value<OutOptRealImg1>())),
        entryOfEachVolume<OutHoughSpheres3dPpties>(lists, *m_gx));
}

void HoughSpheres3dLvl1::clearIntermediateData() noexcept
{
    m_gx.reset();
    m_gy.reset();
    m_gz.reset();
}

typedef FunctionForms<HoughSpheres3dLvl1, OutPIHoughSpheres3dPpties> Forms;

ORVIK_PLANE_FUNCTIONS(houghSpheres3d, (const ConstImagePtr&, inImg)(const ConstPtr<HoughCirclesRadiusRange>&, radiusRange))
{
    processor.set<InOptGreyImg3d>(inImg);
    processor.set<InOptHoughCirclesRadiusRange>(radiusRange);
}

ORVIK_PLANE_FUNCTIONS(houghSpheres3d, (const ConstImagePtr&, inImg)(const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(
                                          const eCircleIntensityType&, circleIntensityType))
{
    prepare(processor, inImg, radiusRange);
    processor.set<InOptCircleIntensityType>(circleIntensityType);
}

ORVIK_PLANE_FUNCTIONS(houghSpheres3d, (const ConstImagePtr&, inImg)(const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(
                                          const eCircleIntensityType&, circleIntensityType)(unsigned long, nbCircles))
{
    prepare(processor, inImg, radiusRange, circleIntensityType);
    processor.set<InOptNbCircles>(nbCircles);
}

ORVIK_PLANE_FUNCTIONS(houghSpheres3d, (const ConstImagePtr&, inImg)(const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(
                                          const eCircleIntensityType&, circleIntensityType)(unsigned int, nbMaxPtsPerCircle)(
                                          const ConstPtr<AccumIntensityThreshold>&, accumIntensityThreshold)(
                                          const ConstPtr<RemoveTooCloseCirclesParams>&, removeTooCloseCirclesParams))
{
    prepare(processor, inImg, radiusRange, circleIntensityType);
    processor.set<InOptNbMaxPtsPerCircle>(nbMaxPtsPerCircle);
    processor.set<InOptAccumIntensityThreshold>(accumIntensityThreshold);
    processor.set<InOptRemoveTooCloseCirclesParams>(removeTooCloseCirclesParams);
}

ORVIK_PLANE_FUNCTIONS(houghSpheres3d, (const ConstImagePtr&, inImg)(const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(
                                          const eCircleIntensityType&, circleIntensityType)(unsigned long, nbCircles)(
                                          unsigned int, nbMaxPtsPerCircle)(const ConstPtr<AccumIntensityThreshold>&,
                                                                           accumIntensityThreshold)(
                                          const ConstPtr<RemoveTooCloseCirclesParams>&, removeTooCloseCirclesParams))
{
    prepare(processor, inImg, radiusRange, circleIntensityType, nbCircles);
    processor.set<InOptNbMaxPtsPerCircle>(nbMaxPtsPerCircle);
    processor.set<InOptAccumIntensityThreshold>(accumIntensityThreshold);
    processor.set<InOptRemoveTooCloseCirclesParams>(removeTooCloseCirclesParams);
}

ORVIK_PLANE_FUNCTIONS(houghSpheres3d, (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(const ConstImagePtr&, inGz)(
                                          const ConstPtr<HoughCirclesRadiusRange>&, radiusRange))
{
    processor.set<InOptGxGreyImg3d>(inGx);
    processor.set<InOptGyGreyImg3d>(inGy);
    processor.set<InOptGzGreyImg3d>(inGz);
    processor.set<InOptHoughCirclesRadiusRange>(radiusRange);
}

ORVIK_PLANE_FUNCTIONS(
    houghSpheres3d,
    (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(const ConstImagePtr&,
                                                             inGz)(const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(
        const eCircleIntensityType&, circleIntensityType)(unsigned long, nbCircles)(double, maxAngleWithGradDir)(
        unsigned int, nbMaxPtsPerCircle)(const ConstPtr<AccumIntensityThreshold>&, accumIntensityThreshold)(
        const ConstPtr<RemoveTooCloseCirclesParams>&, removeTooCloseCirclesParams)(const ImagePtr&, outImg))
{
    prepare(processor, inGx, inGy, inGz, radiusRange);
    processor.set<InOptCircleIntensityType>(circleIntensityType);
    processor.set<InOptNbCircles>(nbCircles);
    processor.set<InOptMaxAngleWithGradDir>(maxAngleWithGradDir);
    processor.set<InOptNbMaxPtsPerCircle>(nbMaxPtsPerCircle);
    processor.set<InOptAccumIntensityThreshold>(accumIntensityThreshold);
    processor.set<InOptRemoveTooCloseCirclesParams>(removeTooCloseCirclesParams);
    processor.set<OutOptRealImg1>(outImg);
}

ORVIK_PLANE_READERS

}}}  // namespace orvik::imaproc::fd
