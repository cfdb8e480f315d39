#pragma once

// A real volume at the size of the measurements.

#include "frame/image/BaseImage.h"

namespace orvik::bench {

typedef boost::shared_ptr<image::BaseImage> ImagePtr;

/// The head of the demo, or the volume of environment variable ORVIK_VOLUME, enlarged to `size` voxels on each side by linear
/// interpolation, in grey levels. Ends the program in words without it.
ImagePtr enlargedHead(unsigned long size, image::eImageBufferType type = image::eIBT_Real32);

}  // namespace orvik::bench
