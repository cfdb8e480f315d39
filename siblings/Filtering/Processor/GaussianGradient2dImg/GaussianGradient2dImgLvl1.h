#pragma once

#include "siblings/Filtering/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

#include <utility>

namespace orvik { namespace imaproc { namespace filter {

/// The gradient of each plane of an image, smoothed by a Gaussian.
///
/// gradX = sum over j of h(j) times sum over k >= 1 of d(k) * (f(x + k, y + j) - f(x - k, y + j)), gradY with the axes
/// exchanged. h(k) is proportional to exp(-k^2 / (2 s^2)), its sum over both sides is 1; d(k) is proportional to
/// k * exp(-k^2 / (2 s^2)) and gives exactly 1 on a ramp of one unit per pixel, and exactly 0 on a flat image. Kernels end
/// at max(1, floor(coverage * s + 0.5)) pixels from their centre.
/// After Canny, "A computational approach to edge detection", IEEE PAMI 8(6), 1986: separable derivatives of a Gaussian.
///
/// @param in  X by Y samples per plane, any of the eleven types, any number of planes. Outside the image the edge sample
/// is repeated.
/// @param stdDevX, stdDevY  standard deviations in pixels along each axis, finite and above 0.
/// @param coverage  standard deviations that the kernels cover on each side of their centre, finite and above 0.
/// @param outX, outY  as large as `in`, any of the eleven types, in units of the samples per pixel; every pixel is
/// written, or none when the call is refused. Weights and sums are double and rounded once: to float, or for integers
/// to the nearest, half to even, and saturated, NaN to 0. Either may be null, and is then not computed; not both.
/// @throws processor::ORVIKBaseProcessingException  for a null image, sizes that differ, images that share memory, a
/// standard deviation or coverage that makes no kernel, or a half-size above 2^20; the text names attribute and value.
/// Cost: X * Y * (2 * half-size along x + 2 * half-size along y) multiplications for both outputs, half of it for one. The
/// same bits for any strips, threads and instruction set, but for those of a NaN, which is one wherever another set has one.
ORVIK_API void gaussianGradient2dImg(const ConstImagePtr& in, float stdDevX, float stdDevY, double coverage,
                                     const ImagePtr& outX, const ImagePtr& outY);
/// The gradient along x and along y as float images, with one standard deviation for both axes and a coverage of 4.
ORVIK_API std::pair<ImagePtr, ImagePtr> gaussianGradient2dImg(const ConstImagePtr& in, float stdDev);

/// Level 1: whole images, one child per plane. Outputs that the caller gave are computed; when there is none, both are,
/// as float images.
class ORVIK_API GaussianGradient2dImgLvl1
    : public processor::Processor<GaussianGradient2dImgLvl1, processor::BaseAsync1Processor, attr::InImg, attr::InStdDevX,
                                  attr::InStdDevY, attr::InOptGradientGaussianCoverage, attr::OutOptGradXImg,
                                  attr::OutOptGradYImg>
{
    ORVIK_PROCESSOR(GaussianGradient2dImgLvl1, 0)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::filter
