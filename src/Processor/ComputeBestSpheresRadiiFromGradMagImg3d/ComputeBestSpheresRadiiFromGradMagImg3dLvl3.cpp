#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ComputeBestSpheresRadiiFromGradMagImg3dLvl3.h"

#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ComputeBestSpheresRadiiFromGradMagImg3dKernel.h"

#include "Processor/StripMarginsCheck.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(ComputeBestSpheresRadiiFromGradMagImg3dLvl3)

processor::StageResult ComputeBestSpheresRadiiFromGradMagImg3dLvl3::preProcess()
{
    const unsigned long reach =
        static_cast<unsigned long>(value<InHoughCirclesRadiusRange>()->get<HoughCirclesRadiusRange::MaxRadius>());
    const BoolResult fits =
        checkMargins(getObjectName(), reach, value<InGxKnlZStrip3d>(), value<InGyKnlZStrip3d>(), value<InGzKnlZStrip3d>());
    if (!fits)
        return fits;
    // Lines are read from the strips themselves, about the centres alone.
    readOnDemand<InGxKnlZStrip3d>();
    readOnDemand<InGyKnlZStrip3d>();
    readOnDemand<InGzKnlZStrip3d>();
    const Voxels3d& centers = *value<InHoughSpheres3dCenters>();
    value<OutHoughSpheres3dPpties>()->access<HoughSpheres3dPpties::Coll>().accessNodes().assign(centers.size(), nullptr);
    m_scores = boost::make_shared<ShellScores>();
    return m_scores->init(*value<InHoughSpheresKernelXYZ>(), *value<InHoughCirclesRadiusRange>(), centers,
                          image::toDataType(value<InGxKnlZStrip3d>()->getBufferType()));
}

}}}  // namespace orvik::imaproc::fd
