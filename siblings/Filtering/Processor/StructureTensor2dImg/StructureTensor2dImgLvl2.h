#pragma once

#include "siblings/Filtering/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace filter {

/// Level 2: the structure tensor of one plane, by strips: gx * gx, gy * gy and gx * gy, each smoothed by a Gaussian.
///
/// Gradients are X by Y samples of one of the eleven types; outside the plane the product at its edge is repeated. The
/// weights along each axis are proportional to exp(-k^2 / (2 s^2)), with the sum 1, and end at
/// max(1, floor(coverage * s + 0.5)) pixels from the centre; s is a finite deviation above 0, in pixels.
/// After Foerstner, Guelch, "A fast operator for detection and precise location of distinct points, corners and centres
/// of circular features", ISPRS Intercommission Workshop, 1987.
///
/// Results are as large as the gradients, of any type, in units of the squared gradient. Products, weights and sums are
/// float for float gradients and double for all others, columns first, pairs of samples outwards from the centre.
/// Integer results are rounded once, to the nearest, half to even, and saturated; NaN becomes 0.
///
/// A result may be one of the gradients, which is then overwritten: strips read their own lines ahead of what they write,
/// and copies of the lines about their borders, made before the strips on both sides run. So there is no further image,
/// only some lines per running strip, and the bits are the same for any strips, threads and instruction set, but for those
/// of a NaN.
/// Refused: gradients of different sizes or types, a result of another size, that shares samples with another result, or
/// overlaps a gradient without being it, a deviation or coverage that makes no kernel.
/// Cost: X * Y * 6 * half-size multiplications.
class ORVIK_API StructureTensor2dImgLvl2
    : public processor::Processor<StructureTensor2dImgLvl2, processor::BaseAsync1Processor, attr::InSubGxImg2d,
                                  attr::InSubGyImg2d, attr::InSmoothingStdDev, attr::InGaussianCoverage, attr::OutGxGxImg,
                                  attr::OutGyGyImg, attr::OutGxGyImg>
{
    ORVIK_PROCESSOR(StructureTensor2dImgLvl2, 3)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
};

}}}  // namespace orvik::imaproc::filter
