#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl2.h"

#include "Processor/ExtractLocalExtrema2d/ExtremaSelection.h"
#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ExtractLocalExtrema3dLvl2)

// The orders of lists: of maxima, and of minima. Nothing but the value counts.
static constexpr auto isGreater3d = [](const auto& a, const auto& b) { return a.value > b.value; };
static constexpr auto isLower3d = [](const auto& a, const auto& b) { return a.value < b.value; };

processor::RetrievalResult ExtractLocalExtrema3dLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    // There is nothing to see beyond the image, which hinders nothing.
    const image::BaseImage& volume = *value<InSubImg3d>();
    const unsigned long distX = std::min<unsigned long>(value<InFeaturesDistX>(), volume.getSizeX());
    const unsigned long distY = std::min<unsigned long>(value<InFeaturesDistY>(), volume.getSizeY());
    const unsigned long distZ = std::min<unsigned long>(value<InFeaturesDistZ>(), volume.getSizeZ());
    return dispatch<ExtractLocalExtrema3dLvl3>(priority, provider, resultOfEach<OutVoxels3d>(m_results),
                                               same(attribute<InLocalExtremaConfig>()),
                                               stripsWithMargins<InKnlZStrip3d>(value<InSubImg3d>(), distX, distY, distZ));
}

processor::StageResult ExtractLocalExtrema3dLvl2::postProcess()
{
    value<OutVoxels3d>()->access<Voxels3d::Coll>().accessNodes() =
        joinExtrema<Voxels3d>(*m_results, *value<InLocalExtremaConfig>(),
                              image::toDataType(value<InSubImg3d>()->getBufferType()), isGreater3d, isLower3d);
    return processor::eSRT_Done;
}

void ExtractLocalExtrema3dLvl2::clearIntermediateData() noexcept
{
    m_results->clear();
}

}}}  // namespace orvik::imaproc::fd
