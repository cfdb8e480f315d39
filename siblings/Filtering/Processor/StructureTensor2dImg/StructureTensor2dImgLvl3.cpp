#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl3.h"

#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(StructureTensor2dImgLvl3)

template<>
const TensorKernels<float>& StructureTensor2dImgLvl3::kernels<float>() const
{
    return m_floatKernels;
}

template<>
const TensorKernels<double>& StructureTensor2dImgLvl3::kernels<double>() const
{
    return m_doubleKernels;
}

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
    const double stdDev = static_cast<double>(value<InSmoothingStdDev>());
    const double coverage = value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>();
    m_doubleKernels.x = makeGaussianWeights(stdDev, coverage, gx.getSizeX());
    m_doubleKernels.y = makeGaussianWeights(stdDev, coverage, gx.getImageSizeY());
    m_floatKernels.x = toFloat(m_doubleKernels.x);
    m_floatKernels.y = toFloat(m_doubleKernels.y);
    const unsigned long halfSizeX = m_doubleKernels.x.halfSize(), halfSizeY = m_doubleKernels.y.halfSize();
    for (const image::InputImageYStrip2dWithKernel* const strip : {&gx, &gy}) {
        const BoolResult fits = checkGaussianMargins(*strip, halfSizeY);
        if (!fits)
            return failure(getObjectName() + ": " + fits.getMessage());
    }
    setBorder<InGxKnlYStrip2d>(image::nearestBorder2d());
    setBorder<InGyKnlYStrip2d>(image::nearestBorder2d());

    const bool isFloat = image::toDataType(gx.getBufferType()) == eDT_Real32;
    const eDataType sum = isFloat ? eDT_Real32 : eDT_Real64;
    m_tile.init(3 * kBlock * (2 * halfSizeY + g_nbLinesAtOnce), sum);
    for (CombinedLines& lines : m_combined)
        lines.init(sum, processor::alignedCount(gx.getSizeX(), getRunGranularity()), halfSizeX);
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::filter
