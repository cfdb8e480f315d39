#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgLvl3.h"

#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(StructureTensor3dImgLvl3)

processor::StageResult StructureTensor3dImgLvl3::preProcess()
{
    const image::InputImageZStrip3dWithKernel& gx = *value<InGxKnlZStrip3d>();
    m_buffers.init(gx.getBufferType(), static_cast<double>(value<InSmoothingStdDev>()),
                   value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>(), gx.getSizeX(), gx.getSizeY(),
                   processor::alignedCount(gx.getSizeX(), getRunGranularity()), TensorBuffers::s_maxNbProducts);
    setBorder<InGxKnlZStrip3d>(image::nearestBorder3d());
    setBorder<InGyKnlZStrip3d>(image::nearestBorder3d());
    setBorder<InGzKnlZStrip3d>(image::nearestBorder3d());
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::filter
