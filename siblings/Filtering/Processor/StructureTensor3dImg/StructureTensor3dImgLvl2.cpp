#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgLvl2.h"

#include "siblings/Filtering/GaussianRules.h"
#include "siblings/Filtering/Processor/SmoothSlices3dImg/SmoothSlices3dImgLvl3.h"
#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

#include <algorithm>
#include <iterator>

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(StructureTensor3dImgLvl2)

processor::RulePtr StructureTensor3dImgLvl2::createRule() const
{
    const auto fits = [this](const WeakImage& out) { return matchSize(attribute<InSubGxImg3d>(), out); };
    return makesGaussian(attribute<InSmoothingStdDev>(), attribute<InGaussianCoverage>())
           && matchSizeAndType(attribute<InSubGxImg3d>(), attribute<InSubGyImg3d>(), attribute<InSubGzImg3d>())
           && fits(attribute<OutGxGxImg>()) && fits(attribute<OutGyGyImg>()) && fits(attribute<OutGzGzImg>())
           && fits(attribute<OutGxGyImg>()) && fits(attribute<OutGxGzImg>()) && fits(attribute<OutGyGzImg>())
           && imagesApart(*this, mayBeSame<InSubGxImg3d, OutGxGxImg>, mayBeSame<InSubGyImg3d, OutGyGyImg>,
                          mayBeSame<InSubGzImg3d, OutGzGzImg>);
}

processor::RetrievalResult StructureTensor3dImgLvl2::retrieveProvider(
    const core::BasePriority& priority, unsigned int iterationNumber, processor::ProviderPtr& provider)
{
    const ImagePtr out[] = {value<OutGxGxImg>(), value<OutGyGyImg>(), value<OutGzGzImg>(),
                            value<OutGxGyImg>(), value<OutGxGzImg>(), value<OutGyGzImg>()};
    const bool holdProducts = std::all_of(std::begin(out), std::end(out),
                                          [](const auto& image) { return image->getBufferType() == image::eIBT_Real32; });
    const unsigned int last = holdProducts ? 7 : 12;
    if (iterationNumber > last)
        return invalidIteration(last);
    if (iterationNumber == last)
        return processor::eRRT_NoMoreProvider;
    if (holdProducts) {
        if (iterationNumber == 0)
            return multiply(priority, provider, out);
        const ImagePtr& product = out[iterationNumber - 1];
        return smoothAcrossSlices(priority, provider, product, product);
    }
    // Squares come last: their results may be the gradients.
    const unsigned int place = (iterationNumber / 2 + 3) % 6;
    if (!m_product)
        m_product = image::createImageLike(*out[0], image::eIBT_Real32);
    if (iterationNumber % 2 != 0)
        return smoothAcrossSlices(priority, provider, m_product, out[place]);
    ImagePtr products[6];
    products[place] = m_product;
    return multiply(priority, provider, products);
}

void StructureTensor3dImgLvl2::clearIntermediateData() noexcept
{
    m_product.reset();
}

processor::RetrievalResult StructureTensor3dImgLvl2::multiply(
    const core::BasePriority& priority, processor::ProviderPtr& provider, const ImagePtr (&products)[6]) const
{
    const image::StripMargins margins;  // slices are for themselves, and have all their lines
    return dispatch<StructureTensor3dImgLvl3>(
        priority, provider, stripsWithMargins<InGxKnlZStrip3d>(value<InSubGxImg3d>(), margins),
        stripsWithMargins<InGyKnlZStrip3d>(value<InSubGyImg3d>(), margins),
        stripsWithMargins<InGzKnlZStrip3d>(value<InSubGzImg3d>(), margins), same(attribute<InSmoothingStdDev>()),
        same(attribute<InGaussianCoverage>()), ifSet(strips<OutOptGxGxZStrip3d>(products[0])),
        ifSet(strips<OutOptGyGyZStrip3d>(products[1])), ifSet(strips<OutOptGzGzZStrip3d>(products[2])),
        ifSet(strips<OutOptGxGyZStrip3d>(products[3])), ifSet(strips<OutOptGxGzZStrip3d>(products[4])),
        ifSet(strips<OutOptGyGzZStrip3d>(products[5])));
}

processor::RetrievalResult StructureTensor3dImgLvl2::smoothAcrossSlices(
    const core::BasePriority& priority, processor::ProviderPtr& provider, const ImagePtr& product, const ImagePtr& out) const
{
    return dispatch<SmoothSlices3dImgLvl3>(priority, provider, strips<InZStrip3d>(product->getViewAlongZ()),
                                           same(attribute<InSmoothingStdDev>()), same(attribute<InGaussianCoverage>()),
                                           strips<OutZStrip3d>(out->getViewAlongZ()));
}

}}}  // namespace orvik::imaproc::filter
