#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughSpheres3dLabelImgLvl1;

/// Draws spheres, such as those of houghSpheres3d, into a volume of labels.
///
/// A voxel is in a sphere when its distance from the centre, sqrt((dx^2 + dy^2) + dz^2) in 32-bit floats, is at most the
/// radius. It gets the number of the sphere, counted from 1 in the list's order, or 0 outside of all. Of several spheres that
/// one has it in which it lies deepest, distance over radius; the earlier one of two in which it lies as deep. So a small
/// sphere within a large one keeps the voxels about its own centre. Centres and radii are in voxels and not rounded.
///
/// @param spheres  of one volume, of any number; parts outside the volume are cut off. A radius below 0 or NaN, or a centre that
/// is NaN, draws nothing but keeps its number; so does an empty place of the list. A radius of 0 draws the voxel that is its
/// centre, if one is, unless a later sphere has that voxel: there is no depth in it to compare.
/// @param inImg  gives the sizes, X by Y by Z; its samples are not looked at, so it may be outImg.
/// @return a new image of labels: of 8 bits up to 255 spheres, 16 up to 65535, else of 32.
/// @throws processor::ORVIKBaseProcessingException  when the list or the image is null, or the image has several channels or
/// times (give a list for each); the text names the attribute and both values.
/// Cost: two passes over the result, which is erased first, and what the volumes of the spheres need; memory for a slice of 4 bytes a voxel per thread, and the list.
/// The same bits for any strips, threads and instruction set.
ORVIK_API ImagePtr houghSpheres3dLabelImg(const ConstPtr<attr::HoughSpheres3dPpties>& spheres, const ConstImagePtr& inImg);
/// The same of an image of any number of volumes: exactly a list for each (c, t), with z 0. The longest one tells the type.
ORVIK_API ImagePtr houghSpheres3dLabelImg(const ConstPtr<attr::PlanIndexedHoughSpheres3dPpties>& spheres,
                                          const ConstImagePtr& inImg);

/// The same into an image of the caller's.
///
/// @param outImg  of the size of inImg, not null: unsigned integers or labels wide enough for the numbers
/// of all spheres; refused otherwise. Every voxel is written.
ORVIK_API void houghSpheres3dLabelImg(const ConstPtr<attr::HoughSpheres3dPpties>& spheres, const ConstImagePtr& inImg,
                                      const ImagePtr& outImg);
ORVIK_API void houghSpheres3dLabelImg(const ConstPtr<attr::PlanIndexedHoughSpheres3dPpties>& spheres,
                                      const ConstImagePtr& inImg, const ImagePtr& outImg);

/// The same in the background; the result is had by getAsyncProcessorOutput.
ORVIK_API Ptr<HoughSpheres3dLabelImgLvl1> houghSpheres3dLabelImg_async(const ConstPtr<attr::HoughSpheres3dPpties>& spheres,
                                                                       const ConstImagePtr& inImg);
ORVIK_API Ptr<HoughSpheres3dLabelImgLvl1> houghSpheres3dLabelImg_async(
    const ConstPtr<attr::PlanIndexedHoughSpheres3dPpties>& spheres, const ConstImagePtr& inImg);
ORVIK_API Ptr<HoughSpheres3dLabelImgLvl1> houghSpheres3dLabelImg_async(const ConstPtr<attr::HoughSpheres3dPpties>& spheres,
                                                                       const ConstImagePtr& inImg, const ImagePtr& outImg);
ORVIK_API Ptr<HoughSpheres3dLabelImgLvl1> houghSpheres3dLabelImg_async(
    const ConstPtr<attr::PlanIndexedHoughSpheres3dPpties>& spheres, const ConstImagePtr& inImg, const ImagePtr& outImg);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API ImagePtr getAsyncProcessorOutput(Ptr<HoughSpheres3dLabelImgLvl1> processor);

/// Level 1: whole images.
class ORVIK_API HoughSpheres3dLabelImgLvl1
    : public processor::Processor<HoughSpheres3dLabelImgLvl1, processor::BaseAsync2Processor, attr::InPIHoughSpheres3dPpties,
                                  attr::InImg, attr::OutLabelImg>
{
    ORVIK_PROCESSOR(HoughSpheres3dLabelImgLvl1, 72)

    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority& priority,
                                                     processor::ProviderPtr& provider) override;
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority& priority,
                                                      processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
