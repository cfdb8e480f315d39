#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dLvl1.h"

#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dLvl3.h"
#include "Processor/RingRecords.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ComputeBestCirclesRadiiFromGradMagImg2dLvl1)

processor::RetrievalResult ComputeBestCirclesRadiiFromGradMagImg2dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                                         processor::ProviderPtr& provider)
{
    const HoughCirclesRadiusRange& range = *value<InHoughCirclesRadiusRange>();
    const BoolResult fits = checkRingMemory(range);
    if (!fits)
        return fits;
    const unsigned long reach = static_cast<unsigned long>(range.get<HoughCirclesRadiusRange::MaxRadius>());
    return dispatch<ComputeBestCirclesRadiiFromGradMagImg2dLvl3>(
        priority, provider, stripsWithMargins<InGxKnlYStrip2d>(value<InGxSingleGreyImg2d>(), reach, reach),
        stripsWithMargins<InGyKnlYStrip2d>(value<InGySingleGreyImg2d>(), reach, reach),
        recordsOfEach<InHoughCircles2dCenters, Pixel2d::Y>(value<InHoughCircles2dCenters>(), m_centers),
        resultOfEach<OutHoughCircles2dPpties>(m_results),
        same<InHoughCirclesKernelXY>(makeKernelXY(range, value<InNbMaxPtsPerCircle>())),
        same(attribute<InHoughCirclesRadiusRange>()), same(attribute<InMaxAngleWithGradDir>()),
        same<InCircleIntensityType>(value<InOptCircleIntensityType>()));
}

processor::StageResult ComputeBestCirclesRadiiFromGradMagImg2dLvl1::postProcess()
{
    m_centers.join(m_results, value<InHoughCircles2dCenters>()->size(), *value<OutHoughCircles2dPpties>());
    return processor::eSRT_Done;
}

void ComputeBestCirclesRadiiFromGradMagImg2dLvl1::clearIntermediateData() noexcept
{
    m_results->clear();
    m_centers.clear();
}

typedef FunctionForms<ComputeBestCirclesRadiiFromGradMagImg2dLvl1, OutHoughCircles2dPpties> Forms;

ORVIK_PROCEDURE(computeBestCirclesRadiiFromGradMagImg2d,
                (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(const eCircleIntensityType&, circleIntensityType)(
                    const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(double, maxAngleWithGradDir)(
                    unsigned int, nbMaxPtsPerCircle)(const ConstPtr<Pixels2d>&, centers)(const Ptr<HoughCircles2dPpties>&,
                                                                                         outPpties))
{
    processor.set<InGxSingleGreyImg2d>(inGx);
    processor.set<InGySingleGreyImg2d>(inGy);
    processor.set<InOptCircleIntensityType>(circleIntensityType);
    processor.set<InMaxAngleWithGradDir>(maxAngleWithGradDir);
    processor.set<InNbMaxPtsPerCircle>(nbMaxPtsPerCircle);
    processor.set<InHoughCircles2dCenters>(centers);
    processor.set<InHoughCirclesRadiusRange>(radiusRange);
    processor.set<OutHoughCircles2dPpties>(outPpties);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
