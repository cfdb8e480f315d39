#pragma once

#include "frame/imaproc/ImageAttributes.h"

namespace orvik { namespace imaproc {

// What rules read of attributes that are images and have a value.

inline const image::BaseImage& imageOf(const processor::BaseAttribute& attribute)
{
    return *static_cast<const BaseImageAttribute&>(attribute).getImage();
}

inline const image::ImageSizes& sizesOf(const processor::BaseAttribute& attribute)
{
    return imageOf(attribute).getGeometry().getSizes();
}

inline std::string readSizes(const processor::BaseAttribute& attribute)
{
    return toString(sizesOf(attribute));
}

}}  // namespace orvik::imaproc
