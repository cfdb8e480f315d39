#pragma once

#include "Processor/CannyChain.h"

#include "frame/attr/Declarations.h"
#include "frame/attr/Enumerations.h"

namespace orvik { namespace imaproc { namespace fd {

class CannySurfaces3dImgLvl1;

/// Finds surfaces in volumes, from gradients that the caller has computed.
///
/// A voxel is a candidate when the magnitude sqrt(gx^2 + gy^2 + gz^2) of its gradient is above the low threshold and not less
/// than that of its neighbours along the gradient, taken in 13 sectors: along an axis, between two of them, between all three,
/// parted at 22.5 and 67.5 degrees. Of two equal neighbours along x, y or z the first in scan order stays; of two equal
/// diagonal neighbours none does. Candidates above the high threshold are surface, and so are those that hang together with
/// one through candidates, in the neighbourhood of 26. Spacing is not looked at: sectors and neighbours are those of voxels.
/// After J. Canny, "A computational approach to edge detection", IEEE Trans. PAMI 8(6), 1986, in three dimensions.
///
/// @param inGxImg3d, inGyImg3d, inGzImg3d  gradient along x, y and z, X by Y by Z voxels, any number of volumes, of equal sizes
/// and buffer type, any of the eleven types; reads 0 outside the volume. Magnitudes are compared squared: in double for float
/// images, else in unsigned integers that wrap (16 bits for samples of 8 bits, 32 bits for the others).
/// @param inCannyThresholds  low and high threshold, absolute, in the unit of the gradients. A negative one acts as its
/// absolute value. Neither is checked against the other: with low above high every candidate is surface.
/// @return a new binary image of the size of the gradients: 1 on surfaces, 0 elsewhere. A volume of one slice is
/// what cannyEdges2dImg gives of the plane as long as its gradients along z are 0; they count, and there is nothing before and
/// after the slice.
/// @throws processor::ORVIKBaseProcessingException  when an image or the thresholds are null, sizes or types differ, or an
/// image that is written shares memory with another one; the text names the attributes and both values. Nothing is written
/// then.
/// Cost: a few passes over the volume; memory for three slices of magnitudes per thread, of 8 bytes a voxel for floats, 4 for
/// 16 and 32 bits, 2 for 8 bits. The same bits for any strips, threads and instruction set.
ORVIK_API ImagePtr cannySurfaces3dImg(const ConstImagePtr& inGxImg3d, const ConstImagePtr& inGyImg3d,
                                      const ConstImagePtr& inGzImg3d,
                                      const ConstPtr<attr::CannyThresholds>& inCannyThresholds);

/// The same into an image of the caller's.
///
/// @param inOptimizationPolicy  attr::ePOP_Labels finds what hangs together by labelling: passes independent of the
/// picture, two more images, at most 65535 components (more end the run with a message that says so). Any other value
/// spreads strong voxels in place; the default of the shorter form.
/// @param outImg  of the size of the gradients, in memory of its own, not null. With one unsigned byte per sample (types 2, 8 and
/// 11) it also holds the classes in between; other types get 0 and 1 too, through a working image. With attr::ePOP_Labels
/// and such another type only the strong candidates are written: use types 2, 8 or 11 there.
ORVIK_API void cannySurfaces3dImg(const ConstImagePtr& inGxImg3d, const ConstImagePtr& inGyImg3d,
                                  const ConstImagePtr& inGzImg3d, const ConstPtr<attr::CannyThresholds>& inCannyThresholds,
                                  const attr::eProcessingOptimizationPolicy& inOptimizationPolicy, const ImagePtr& outImg);

/// The same in the background; the result is had by getAsyncProcessorOutput.
ORVIK_API Ptr<CannySurfaces3dImgLvl1> cannySurfaces3dImg_async(const ConstImagePtr& inGxImg3d,
                                                               const ConstImagePtr& inGyImg3d,
                                                               const ConstImagePtr& inGzImg3d,
                                                               const ConstPtr<attr::CannyThresholds>& inCannyThresholds);
ORVIK_API Ptr<CannySurfaces3dImgLvl1> cannySurfaces3dImg_async(
    const ConstImagePtr& inGxImg3d, const ConstImagePtr& inGyImg3d, const ConstImagePtr& inGzImg3d,
    const ConstPtr<attr::CannyThresholds>& inCannyThresholds,
    const attr::eProcessingOptimizationPolicy& inOptimizationPolicy, const ImagePtr& outImg);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API ImagePtr getAsyncProcessorOutput(Ptr<CannySurfaces3dImgLvl1> processor);

struct CannySurfaces3dFamily;

/// Level 1: whole images. Working images that the caller gives lie in memory of their own, too, also those that a run does
/// not need.
class ORVIK_API CannySurfaces3dImgLvl1
    : public CannyChainLvl1<CannySurfaces3dImgLvl1, CannySurfaces3dFamily, attr::InGxGreyImg3d, attr::InGyGreyImg3d,
                            attr::InGzGreyImg3d, attr::InCannyThresholds, attr::InOptOptimizationPolicy,
                            attr::OutOptWk1BinImg, attr::OutOptWk2BinImg, attr::OutOptWk1LabelImg, attr::OutBinImg>
{
    ORVIK_PROCESSOR(CannySurfaces3dImgLvl1, 3)
};

}}}  // namespace orvik::imaproc::fd
