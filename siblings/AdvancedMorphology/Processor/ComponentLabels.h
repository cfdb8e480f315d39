#pragma once

#include "siblings/AdvancedMorphology/Processor/ComponentRuns.h"

#include "frame/processor/ElementsRange.h"
#include "frame/serialization/DataItem.h"
#include "frame/util/ProcessingResult.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Partial result of one plane or volume.
class ImageComponents : public BaseDataItemNode
{
public:
    const char* getNodeName() const override { return "ImageComponents"; }
    static boost::shared_ptr<ImageComponents> createNode() { return boost::make_shared<ImageComponents>(); }

    ComponentRuns runs;
};

/// By index of the plane or volume: z runs fastest, then c, then t.
typedef processor::ResultsOfPlanes<ImageComponents>::Map ComponentsOfParts;

/// Labels the components of parts of `sizeZ` slices of an image, 1 for planes: from 1, running on over all parts; 0 is what
/// belongs to none. Fails, before it has written a label, when the label image, an attribute of
/// that name, cannot name them all.
BoolResult writeLabels(const ComponentsOfParts& parts, unsigned long sizeZ, const char* name, image::BaseImage& labels,
                       unsigned int& maxLabel);

}}}  // namespace orvik::imaproc::advmorpho
