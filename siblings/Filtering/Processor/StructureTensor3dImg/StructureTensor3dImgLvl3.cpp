#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgLvl3.h"

#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <algorithm>
#include <cstring>

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(StructureTensor3dImgLvl3)

processor::StageResult StructureTensor3dImgLvl3::preProcess()
{
    const image::InputImageZStrip3dWithKernel& gx = *value<InGxKnlZStrip3d>();
    m_buffers.init(gx.getBufferType(), static_cast<double>(value<InSmoothingStdDev>()),
                   value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>(), gx.getSizeX(), gx.getSizeY(),
                   processor::alignedCount(gx.getSizeX(), getRunGranularity()), TensorBuffers::s_maxNbProducts);
    readOnDemand<InGxKnlZStrip3d>();
    readOnDemand<InGyKnlZStrip3d>();
    readOnDemand<InGzKnlZStrip3d>();
    for (image::FragHybridBuffer& lines : m_lines)
        lines.init(image::toDataType(gx.getBufferType()), processor::alignedCount(gx.getSizeX(), getRunGranularity()),
                   g_nbLinesAtOnce + 2 * m_buffers.doubleWeights.y.halfSize());
    return processor::eSRT_Done;
}

void StructureTensor3dImgLvl3::readLines(unsigned long line)
{
    const image::InputImageZStrip3dWithKernel* const gradients[] = {
        value<InGxKnlZStrip3d>().get(), value<InGyKnlZStrip3d>().get(), value<InGzKnlZStrip3d>().get()};
    const unsigned long sizeY = gradients[0]->getSizeY(), y = line % sizeY, slice = line - y;
    if (y % g_nbLinesAtOnce != 0)
        return;
    const unsigned long halfSize = m_buffers.doubleWeights.y.halfSize(), nbRead = m_lines[0].getNbFragments();
    const unsigned long bytes = gradients[0]->getSizeX() * image::getImageBufferBaseSize(gradients[0]->getBufferType());
    for (unsigned long i = y == 0 ? 0 : nbRead - g_nbLinesAtOnce; i < nbRead; ++i) {
        const unsigned long row = y + i < halfSize ? 0 : std::min(y + i - halfSize, sizeY - 1);
        for (unsigned long g = 0; g < 3; ++g)
            std::memcpy(m_lines[g].getDataPtr((y + i) % nbRead), gradients[g]->accessLine(slice + row), bytes);
    }
}

}}}  // namespace orvik::imaproc::filter
