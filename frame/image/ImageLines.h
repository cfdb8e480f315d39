#pragma once

#include "frame/image/BaseImage.h"

#include <cstring>

namespace orvik { namespace image {

/// Calls f(y, z, c, t) for each line of an image, in raster order: y runs fastest, then z, c, t.
template<class F>
void forEachLine(const BaseImage& image, F&& f)
{
    for (unsigned long t = 0; t < image.getSizeT(); ++t)
        for (unsigned long c = 0; c < image.getSizeC(); ++c)
            for (unsigned long z = 0; z < image.getSizeZ(); ++z)
                for (unsigned long y = 0; y < image.getSizeY(); ++y)
                    f(y, z, c, t);
}

/// Copies all samples into an image of the same sizes and sample type, whose bytes between the lines stay as they are.
inline void copySamples(const BaseImage& from, BaseImage& to)
{
    const std::size_t lineBytes = to.getSizeX() * getImageBufferBaseSize(to.getBufferType());
    forEachLine(to, [&](unsigned long y, unsigned long z, unsigned long c, unsigned long t) {
        std::memcpy(to.accessLine(y, z, c, t), from.getLine(y, z, c, t), lineBytes);
    });
}

}}  // namespace orvik::image
