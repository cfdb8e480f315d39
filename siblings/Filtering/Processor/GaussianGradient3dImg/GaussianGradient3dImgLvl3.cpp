#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl3.h"

#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(GaussianGradient3dImgLvl3)

processor::RulePtr GaussianGradient3dImgLvl3::createRule() const
{
    return matchSize(attribute<InKnlZStrip3d>(), attribute<OutOptGradXZStrip3d>())
           && matchSize(attribute<InKnlZStrip3d>(), attribute<OutOptGradYZStrip3d>())
           && matchSize(attribute<InKnlZStrip3d>(), attribute<OutOptGradZZStrip3d>());
}

processor::StageResult GaussianGradient3dImgLvl3::preProcess()
{
    const image::InputImageZStrip3dWithKernel& strip = *value<InKnlZStrip3d>();
    const double coverage = value<InGaussianCoverage>()->get<GaussianCoverage::NbStdDev>();
    GaussianVolumeBuffers& buffers = m_buffers;
    buffers.x = makeGaussianWeights(value<InStdDevX>(), coverage, strip.getSizeX());
    buffers.y = makeGaussianWeights(value<InStdDevY>(), coverage, strip.getSizeY());
    buffers.z = makeGaussianWeights(value<InStdDevZ>(), coverage, strip.getImageSizeZ());
    buffers.lines.resize(2 * buffers.z.halfSize() + 1);
    readOnDemand<InKnlZStrip3d>();

    const unsigned long sizeX = processor::alignedCount(strip.getSizeX(), getRunGranularity()), sizeY = strip.getSizeY();
    buffers.tile.init(kBlock * std::max(2 * buffers.z.halfSize() + 1, 2 * buffers.y.halfSize() + g_nbLinesAtOnce),
                      eDT_Real64);
    const auto initIf = [&](bool isWanted, CombinedLines& lines, unsigned long nbLines, unsigned long halfSize) {
        if (isWanted)
            lines.init(eDT_Real64, sizeX, halfSize, nbLines);
    };
    const bool hasX = value<OutOptGradXZStrip3d>() != nullptr, hasY = value<OutOptGradYZStrip3d>() != nullptr,
               hasZ = value<OutOptGradZZStrip3d>() != nullptr;
    const unsigned long unlikeLines = 8;  // so that those of a kernel do not share places of the first cache
    initIf(hasX || hasY, buffers.smoothed, sizeY, unlikeLines);
    initIf(hasZ, buffers.derived, sizeY, unlikeLines);
    initIf(hasX, buffers.ofX, g_nbLinesAtOnce, buffers.x.halfSize());
    initIf(hasY, buffers.ofY, g_nbLinesAtOnce, buffers.x.halfSize());
    initIf(hasZ, buffers.ofZ, g_nbLinesAtOnce, buffers.x.halfSize());
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::filter
