#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class ExtractLocalExtrema3dLvl1;

/// Lists the local extrema of a volume.
///
/// A voxel is listed when no voxel of the box of 2 * inFeaturesDistX + 1 columns, 2 * inFeaturesDistY + 1 lines and
/// 2 * inFeaturesDistZ + 1 slices about it is more extreme, and when its value passes the threshold of the configuration. What
/// becomes of equal values the type tells, as in planes: with attr::eLET_Maxima and eLET_Minima a voxel must beat those
/// before it in scan order, by (z, y, x), and may tie with those after it, so that a plateau that fits into one box gives its
/// first voxel; with the strict types it must beat all. Voxels outside the volume hinder nothing. Spacing is not looked at:
/// half-sizes are in voxels along each axis.
///
/// @param inImg3d  one volume, any of the eleven types. A plane is a volume of one slice.
/// @param inFeaturesDistX, inFeaturesDistY, inFeaturesDistZ  half-sizes of the box in voxels; 0 looks at no neighbours on that
/// axis. What exceeds the volume, however far, means all of it.
/// @param inOptLocalExtremaConfig  type, threshold and largest number; null or not given: all maxima. Values are compared
/// with the threshold as 32-bit floats, `>=` for maxima and `<=` for minima, so whole numbers beyond 2^24 are seen
/// rounded. Any type but the four reads as attr::eLET_Maxima.
/// @return the voxels with column, line, slice and value, the most extreme ones of the whole volume first, at most as many as
/// the configuration says. Equal values stand in no particular order, which is the same in every run. A voxel whose value is
/// the lowest finite one of its type (the highest for minima), beyond it, or NaN is never listed; a NaN in its line within
/// reach keeps a voxel from being listed, one in another line does not.
/// @throws processor::ORVIKBaseProcessingException  for a null image or an image of several channels or times (use the
/// multiSlice_ form); the text names the attribute and both values.
/// Cost: a few passes over the volume, and some more with the logarithm of inFeaturesDistX; memory for
/// inFeaturesDistZ + 2 slices per thread, no more than those of the volume and two, and for the list. The same list for any
/// strips, threads and instruction set.
ORVIK_API Ptr<attr::Voxels3d> extractLocalExtrema3d(const ConstImagePtr& inImg3d, unsigned int inFeaturesDistX,
                                                    unsigned int inFeaturesDistY, unsigned int inFeaturesDistZ,
                                                    const ConstPtr<attr::LocalExtremaConfig>& inOptLocalExtremaConfig);
ORVIK_API Ptr<attr::Voxels3d> extractLocalExtrema3d(const ConstImagePtr& inImg3d, unsigned int inFeaturesDistX,
                                                    unsigned int inFeaturesDistY, unsigned int inFeaturesDistZ);

/// The same in the background; the list is had by getAsyncProcessorOutput.
ORVIK_API Ptr<ExtractLocalExtrema3dLvl1> extractLocalExtrema3d_async(
    const ConstImagePtr& inImg3d, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY, unsigned int inFeaturesDistZ);
ORVIK_API Ptr<ExtractLocalExtrema3dLvl1> extractLocalExtrema3d_async(
    const ConstImagePtr& inImg3d, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY, unsigned int inFeaturesDistZ,
    const ConstPtr<attr::LocalExtremaConfig>& inOptLocalExtremaConfig);

/// The same for an image of any number of volumes: a list for each (c, t), with z 0.
ORVIK_API Ptr<attr::PlanIndexedVoxels3d> multiSlice_extractLocalExtrema3d(
    const ConstImagePtr& inImg3d, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY, unsigned int inFeaturesDistZ);
ORVIK_API Ptr<attr::PlanIndexedVoxels3d> multiSlice_extractLocalExtrema3d(
    const ConstImagePtr& inImg3d, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY, unsigned int inFeaturesDistZ,
    const ConstPtr<attr::LocalExtremaConfig>& inOptLocalExtremaConfig);

/// The same in the background; the lists are had by getAsyncProcessorMultiSliceOutput.
ORVIK_API Ptr<ExtractLocalExtrema3dLvl1> multiSlice_extractLocalExtrema3d_async(
    const ConstImagePtr& inImg3d, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY, unsigned int inFeaturesDistZ);
ORVIK_API Ptr<ExtractLocalExtrema3dLvl1> multiSlice_extractLocalExtrema3d_async(
    const ConstImagePtr& inImg3d, unsigned int inFeaturesDistX, unsigned int inFeaturesDistY, unsigned int inFeaturesDistZ,
    const ConstPtr<attr::LocalExtremaConfig>& inOptLocalExtremaConfig);

/// Wait for the end. The first gives the list of volume (0, 0). @throws what ended the run, when it failed.
ORVIK_API Ptr<attr::Voxels3d> getAsyncProcessorOutput(Ptr<ExtractLocalExtrema3dLvl1> processor);
ORVIK_API Ptr<attr::PlanIndexedVoxels3d> getAsyncProcessorMultiSliceOutput(Ptr<ExtractLocalExtrema3dLvl1> processor);

/// Level 1: whole images, one child per volume.
class ORVIK_API ExtractLocalExtrema3dLvl1
    : public processor::Processor<ExtractLocalExtrema3dLvl1, processor::BaseAsync1Processor, attr::InImg3d,
                                  attr::InFeaturesDistX, attr::InFeaturesDistY, attr::InFeaturesDistZ,
                                  attr::InOptLocalExtremaConfig, attr::OutPIVoxels3d>
{
    ORVIK_PROCESSOR(ExtractLocalExtrema3dLvl1, 25)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
