#pragma once

// Real pictures at the size of the measurements.

#include "frame/image/BaseImage.h"

#include <string>
#include <utility>

namespace orvik::bench {

typedef boost::shared_ptr<image::BaseImage> ImagePtr;

/// The photograph of environment variable ORVIK_PICTURE, or camera.png of the demo. Ends the program in words without it.
std::string photographPath();

/// The photograph enlarged to `size` x `size` by bilinear interpolation, in 64ths of a grey level; whole grey levels where
/// the type has 8 bits.
ImagePtr enlargedPhotograph(unsigned long size, image::eImageBufferType type = image::eIBT_UInt16);

/// Gaussian gradient (sigma 2) of the enlarged photograph along x and y, in signed 16 bits or float.
std::pair<ImagePtr, ImagePtr> gradientsOfPhotograph(unsigned long size, image::eImageBufferType type);

/// The magnitude that a share of the pixels of a gradient lies below.
double magnitudeQuantile(const image::BaseImage& gx, const image::BaseImage& gy, double share);

}  // namespace orvik::bench
