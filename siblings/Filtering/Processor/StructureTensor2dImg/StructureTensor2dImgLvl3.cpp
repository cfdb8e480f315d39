#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl3.h"

#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(StructureTensor2dImgLvl3)

processor::RulePtr StructureTensor2dImgLvl3::createRule() const
{
    return matchSizeAndType(attribute<InGxKnlYStrip2d>(), attribute<InGyKnlYStrip2d>())
           && matchSize(attribute<InGxKnlYStrip2d>(), attribute<OutGxGxYStrip2d>())
           && matchSize(attribute<InGxKnlYStrip2d>(), attribute<OutGyGyYStrip2d>())
           && matchSize(attribute<InGxKnlYStrip2d>(), attribute<OutGxGyYStrip2d>());
}

processor::StageResult StructureTensor2dImgLvl3::preProcess()
{
    const image::InputImageYStrip2dWithKernel &gx = *value<InGxKnlYStrip2d>(), &gy = *value<InGyKnlYStrip2d>();
    m_buffers.init(gx.getBufferType(), static_cast<double>(value<InSmoothingStdDev>()),
                   value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>(), gx.getSizeX(), gx.getImageSizeY(),
                   processor::alignedCount(gx.getSizeX(), getRunGranularity()), 3);
    for (const image::InputImageYStrip2dWithKernel* const strip : {&gx, &gy}) {
        const BoolResult fits = checkGaussianMargins(*strip, m_buffers.doubleWeights.y.halfSize());
        if (!fits)
            return failure(getObjectName() + ": " + fits.getMessage());
    }
    setBorder<InGxKnlYStrip2d>(image::nearestBorder2d());
    setBorder<InGyKnlYStrip2d>(image::nearestBorder2d());
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::filter
