#pragma once

#include "frame/image/ImageLines.h"
#include "frame/util/ProcessingResult.h"

namespace orvik { namespace imaproc { namespace glbmsr {

/// Fails for an image of more than one plane; `attribute` is the name that the text tells.
inline BoolResult checkOnePlane(const image::BaseImage& image, const std::string& attribute)
{
    if (image.getSizeZ() * image.getSizeC() * image.getSizeT() == 1)
        return success();
    return failure(attribute + ": one plane is measured, not an image of size " + toString(image.getGeometry().getSizes()));
}

/// Calls f(line) with the first sample of each line, in raster order.
template<class Sample, class F>
void forEachSampleLine(const image::BaseImage& image, F&& f)
{
    image::forEachLine(image, [&](unsigned long y, unsigned long z, unsigned long c, unsigned long t) {
        f(static_cast<const Sample*>(image.getLine(y, z, c, t)));
    });
}

}}}  // namespace orvik::imaproc::glbmsr
