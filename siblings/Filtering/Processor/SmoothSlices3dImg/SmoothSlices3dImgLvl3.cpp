#include "siblings/Filtering/Processor/SmoothSlices3dImg/SmoothSlices3dImgLvl3.h"

#include "siblings/Filtering/Processor/SmoothSlices3dImg/SmoothSlices3dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <cstring>

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(SmoothSlices3dImgLvl3)

processor::StageResult SmoothSlices3dImgLvl3::preProcess()
{
    const image::InputImageZStrip3d& in = *value<InZStrip3d>();
    const unsigned long nbSlices = in.getSizeY(), unlike = 16;  // so that lines do not share places of the first cache
    m_weights = toFloat(makeGaussianWeights(static_cast<double>(value<InSmoothingStdDev>()),
                                            value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>(), nbSlices));
    m_lines.init(eDT_Real32, processor::alignedCount(in.getSizeX(), getRunGranularity()) + unlike,
                 nbSlices + 2 * m_weights.halfSize());
    return processor::eSRT_Done;
}

void SmoothSlices3dImgLvl3::readLines(unsigned long line)
{
    const image::InputImageZStrip3d& in = *value<InZStrip3d>();
    const unsigned long nbSlices = in.getSizeY(), halfSize = m_weights.halfSize(), bytes = in.getSizeX() * sizeof(float);
    for (unsigned long z = 0; z < nbSlices; ++z)
        std::memcpy(m_lines.getDataPtr(halfSize + z), in.accessLine(line + z), bytes);
    for (unsigned long k = 0; k < halfSize; ++k) {
        std::memcpy(m_lines.getDataPtr(k), m_lines.getDataPtr(halfSize), bytes);
        std::memcpy(m_lines.getDataPtr(halfSize + nbSlices + k), m_lines.getDataPtr(halfSize + nbSlices - 1), bytes);
    }
}

}}}  // namespace orvik::imaproc::filter
