#pragma once

#include "siblings/Filtering/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace filter {

/// Level 2: the structure tensor of one volume: the products of each two of the gradients along x, y and z, each smoothed by a
/// Gaussian.
///
/// As StructureTensor2dImgLvl2, along three axes: first y and x, within slices, then z. Outside the volume the product at its
/// edge is repeated; the deviation is in voxels along each axis. Sums within slices are float for float gradients and double
/// for all others; those across slices are float, so that whole-number results beyond 2^24 are off in their last bits. They are
/// rounded once, to the nearest, half to even, and saturated.
///
/// The result of gx * gx may be gx itself, that of gy * gy gy, and that of gz * gz gz, which are then overwritten. Float results
/// hold the products on their way: no further image is made, only some lines per running strip. Where a result is of another
/// type, one float volume is, in which its products are smoothed one after the other. The bits are the same for any strips,
/// threads and instruction set, but for those of a NaN.
/// Refused: gradients of different sizes or types, a result of another size, results that share memory otherwise, a deviation or
/// coverage that makes no kernel.
/// Cost: X * Y * Z * 18 * half-size multiplications.
class ORVIK_API StructureTensor3dImgLvl2
    : public processor::Processor<StructureTensor3dImgLvl2, processor::BaseRepeatedAsync1Processor, attr::InSubGxImg3d,
                                  attr::InSubGyImg3d, attr::InSubGzImg3d, attr::InSmoothingStdDev, attr::InGaussianCoverage,
                                  attr::OutGxGxImg, attr::OutGyGyImg, attr::OutGzGzImg, attr::OutGxGyImg, attr::OutGxGzImg,
                                  attr::OutGyGzImg>
{
    ORVIK_PROCESSOR(StructureTensor3dImgLvl2, 8)

    using BaseRepeatedAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int iterationNumber,
                                                processor::ProviderPtr& provider) override;
    void clearIntermediateData() noexcept override;

private:
    processor::RulePtr createRule() const;
    /// Of each two gradients smoothed within slices; null is not wanted.
    processor::RetrievalResult multiply(const core::BasePriority& priority, processor::ProviderPtr& provider,
                                        const ImagePtr (&products)[6]) const;
    processor::RetrievalResult smoothAcrossSlices(const core::BasePriority& priority, processor::ProviderPtr& provider,
                                                  const ImagePtr& product, const ImagePtr& out) const;

    ImagePtr m_product;  // on its way to results that do not hold it
};

}}}  // namespace orvik::imaproc::filter
