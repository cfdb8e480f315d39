#pragma once

#include "siblings/Filtering/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

#include <tuple>

namespace orvik { namespace imaproc { namespace filter {

/// The gradient of each volume of an image, smoothed by a Gaussian.
///
/// As gaussianGradient2dImg, along three axes: each result is differentiated along its axis and smoothed along the two others,
/// first along z, then y, then x, in double, and rounded once.
///
/// @param in  X by Y by Z samples per volume, any of the eleven types, any number of volumes. Outside the volume the nearest
/// sample is repeated. A plane is a volume of one slice, whose gradient along z is 0.
/// @param stdDevX, stdDevY, stdDevZ  standard deviations in voxels along each axis, finite and above 0. Where slices are
/// further apart than pixels, a smaller one along z smooths as far in space; gradients are per voxel, so divide that along z
/// by the ratio of the spacings.
/// @param coverage  standard deviations that the kernels cover on each side of their centre, finite and above 0.
/// @param outX, outY, outZ  as large as `in`, any of the eleven types, in units of the samples per voxel; every voxel is
/// written, or none when the call is refused. Rounded as by gaussianGradient2dImg. Each may be null, and is then not
/// computed; not all.
/// @throws processor::ORVIKBaseProcessingException  for a null image, sizes that differ, images that share memory, a
/// standard deviation or coverage that makes no kernel, or a half-size above 2^20; the text names attribute and value.
/// Cost: per voxel 2 * half-size multiplications along each axis for each result, those along z shared by the gradients along
/// x and y; memory for two slices of doubles per thread. The same bits for any strips, threads and instruction set, but for
/// those of a NaN.
ORVIK_API void gaussianGradient3dImg(const ConstImagePtr& in, float stdDevX, float stdDevY, float stdDevZ, double coverage,
                                     const ImagePtr& outX, const ImagePtr& outY, const ImagePtr& outZ);
/// The gradient along x, y and z as float images, with one standard deviation for all axes and a coverage of 4.
ORVIK_API std::tuple<ImagePtr, ImagePtr, ImagePtr> gaussianGradient3dImg(const ConstImagePtr& in, float stdDev);

/// Level 1: whole images, one child per volume. Outputs that the caller gave are computed; when there is none, all are, as
/// float images.
class ORVIK_API GaussianGradient3dImgLvl1
    : public processor::Processor<GaussianGradient3dImgLvl1, processor::BaseAsync1Processor, attr::InImg3d, attr::InStdDevX,
                                  attr::InStdDevY, attr::InStdDevZ, attr::InOptGradientGaussianCoverage,
                                  attr::OutOptGradXImg3d, attr::OutOptGradYImg3d, attr::OutOptGradZImg3d>
{
    ORVIK_PROCESSOR(GaussianGradient3dImgLvl1, 5)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::filter
