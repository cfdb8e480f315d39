#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/simd/KernelUnit.h"

namespace orvik { namespace imaproc { namespace filter {

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

}}}  // namespace orvik::imaproc::filter

#include "frame/simd/OpenGeneric.h"
#include "StructureTensor2dImgKernel.h"
#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(StructureTensor2dImgLvl3)
ORVIK_REGISTER_KERNELS(StructureTensor2dImgLvl3, AllKernelTypes, core::eIS_Generic)

StructureTensor2dImgLvl3::StructureTensor2dImgLvl3() = default;
StructureTensor2dImgLvl3::~StructureTensor2dImgLvl3() = default;

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
    for (const image::StripMargins& margins : {gx.getMargins(), gy.getMargins()})
        if (margins.startY != halfSizeY || margins.endY != halfSizeY + s_nbLinesAtOnce - 1)
            return processor::StageResult(processor::eSRT_Failed,
                                          getObjectName() + ": the margins of the strip do not fit the kernel, half-size "
                                              + std::to_string(halfSizeY));
    borderParser<InGxKnlYStrip2d, KernelYStrip2dParser>().setBorder2dPolicy(image::nearestBorder2d());
    borderParser<InGyKnlYStrip2d, KernelYStrip2dParser>().setBorder2dPolicy(image::nearestBorder2d());

    const bool isFloat = image::toDataType(gx.getBufferType()) == eDT_Real32;
    const eDataType sum = isFloat ? eDT_Real32 : eDT_Real64;
    const unsigned long vector = 16;  // floats of the widest set: column 0 is aligned like the line
    m_startX = processor::alignedCount(halfSizeX, vector);
    const unsigned long lineSize =
        m_startX + processor::alignedCount(gx.getSizeX(), getRunGranularity()) + halfSizeX;
    m_tile.init(3 * kBlock * (2 * halfSizeY + s_nbLinesAtOnce), sum);
    for (image::FragHybridBuffer& lines : m_combined)
        lines.init(sum, lineSize, s_nbLinesAtOnce);
    return processor::StageResult(processor::eSRT_Done);
}

}}}  // namespace orvik::imaproc::filter
