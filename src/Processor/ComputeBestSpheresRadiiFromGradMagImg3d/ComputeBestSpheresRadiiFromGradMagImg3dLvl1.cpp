#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ComputeBestSpheresRadiiFromGradMagImg3dLvl1.h"

#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ComputeBestSpheresRadiiFromGradMagImg3dLvl3.h"
#include "Processor/ShellPlaces.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ComputeBestSpheresRadiiFromGradMagImg3dLvl1)

processor::RetrievalResult ComputeBestSpheresRadiiFromGradMagImg3dLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                                         processor::ProviderPtr& provider)
{
    const HoughCirclesRadiusRange& range = *value<InHoughCirclesRadiusRange>();
    const BoolResult fits = checkShellMemory(range);
    if (!fits)
        return fits;
    const unsigned long reach = static_cast<unsigned long>(range.get<HoughCirclesRadiusRange::MaxRadius>());
    return dispatch<ComputeBestSpheresRadiiFromGradMagImg3dLvl3>(
        priority, provider, stripsWithMargins<InGxKnlZStrip3d>(value<InGxGreyImg3d>(), reach, reach, reach),
        stripsWithMargins<InGyKnlZStrip3d>(value<InGyGreyImg3d>(), reach, reach, reach),
        stripsWithMargins<InGzKnlZStrip3d>(value<InGzGreyImg3d>(), reach, reach, reach),
        recordsOfEach<InHoughSpheres3dCenters, Voxel3d::Z>(value<InHoughSpheres3dCenters>(), m_centers),
        resultOfEach<OutHoughSpheres3dPpties>(m_results),
        same<InHoughSpheresKernelXYZ>(makeKernelXYZ(range, value<InNbMaxPtsPerCircle>())),
        same(attribute<InHoughCirclesRadiusRange>()), same(attribute<InMaxAngleWithGradDir>()),
        same<InCircleIntensityType>(value<InOptCircleIntensityType>()));
}

processor::StageResult ComputeBestSpheresRadiiFromGradMagImg3dLvl1::postProcess()
{
    m_centers.join(m_results, value<InHoughSpheres3dCenters>()->size(), *value<OutHoughSpheres3dPpties>());
    return processor::eSRT_Done;
}

void ComputeBestSpheresRadiiFromGradMagImg3dLvl1::clearIntermediateData() noexcept
{
    m_results->clear();
    m_centers.clear();
}

typedef FunctionForms<ComputeBestSpheresRadiiFromGradMagImg3dLvl1, OutHoughSpheres3dPpties> Forms;

ORVIK_PROCEDURE(computeBestSpheresRadiiFromGradMagImg3d,
                (const ConstImagePtr&, inGx)(const ConstImagePtr&, inGy)(const ConstImagePtr&, inGz)(
                    const eCircleIntensityType&, circleIntensityType)(const ConstPtr<HoughCirclesRadiusRange>&, radiusRange)(
                    double, maxAngleWithGradDir)(unsigned int, nbMaxPtsPerCircle)(const ConstPtr<Voxels3d>&, centers)(
                    const Ptr<HoughSpheres3dPpties>&, outPpties))
{
    processor.set<InGxGreyImg3d>(inGx);
    processor.set<InGyGreyImg3d>(inGy);
    processor.set<InGzGreyImg3d>(inGz);
    processor.set<InOptCircleIntensityType>(circleIntensityType);
    processor.set<InMaxAngleWithGradDir>(maxAngleWithGradDir);
    processor.set<InNbMaxPtsPerCircle>(nbMaxPtsPerCircle);
    processor.set<InHoughSpheres3dCenters>(centers);
    processor.set<InHoughCirclesRadiusRange>(radiusRange);
    processor.set<OutHoughSpheres3dPpties>(outPpties);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
