#pragma once

#include "frame/image/BaseImage.h"
#include "frame/util/ProcessingResult.h"

namespace orvik { namespace imaproc { namespace glbmsr {

/// Fails for an image of more than one plane; `attribute` is the name that the text tells.
inline BoolResult checkOnePlane(const image::BaseImage& image, const std::string& attribute)
{
    if (image.getSizeZ() * image.getSizeC() * image.getSizeT() == 1)
        return success();
    return failure(attribute + ": one plane is measured, not an image of size " + toString(image.getGeometry().getSizes()));
}

/// Calls f(line) with the first sample of each line of a plane, in order.
template<class Sample, class F>
void forEachLine(const image::BaseImage& plane, F&& f)
{
    for (unsigned long y = 0; y < plane.getSizeY(); ++y)
        f(static_cast<const Sample*>(plane.getLine(y)));
}

}}}  // namespace orvik::imaproc::glbmsr
