#include "frame/image/SharedMemory.h"

#include "frame/image/BaseImage.h"

#include <algorithm>
#include <cstdlib>

namespace orvik { namespace image {

namespace {

/// An axis along which the lines of two images follow one another, and how many there are of each.
struct SharedAxis
{
    long stride, sizeA, sizeB;
};

long divideDown(long a, long b)
{
    return a / b - (a % b < 0);
}

/// Whether a line of a meets one of b. Both repeat along the axes, the widest first; the first line of b begins `distance`
/// bytes after that of a.
bool linesMeet(const SharedAxis* axis, const SharedAxis* end, long distance, long lineA, long lineB)
{
    if (axis == end)
        return -lineB < distance && distance < lineA;
    long innerA = lineA, innerB = lineB;  // bytes of what lies within one step of this axis
    for (const SharedAxis* inner = axis + 1; inner != end; ++inner) {
        innerA += (inner->sizeA - 1) * inner->stride;
        innerB += (inner->sizeB - 1) * inner->stride;
    }
    if (innerA > axis->stride || innerB > axis->stride)
        return true;  // they step in ways of their own
    const long least = std::max(1 - axis->sizeA, -divideDown(innerB - 1 + distance, axis->stride));
    const long most = std::min(axis->sizeB - 1, divideDown(innerA - 1 - distance, axis->stride));
    for (long step = least; step <= most; ++step)
        if (linesMeet(axis + 1, end, distance + step * axis->stride, lineA, lineB))
            return true;
    return false;
}

long bytesOf(const BaseImage& image, unsigned long nbSamples)
{
    return static_cast<long>(nbSamples * getImageBufferBaseSize(image.getBufferType()));
}

/// Bytes of a line as far as kernels write it: whole blocks where the image has slack.
long lineBytesOf(const BaseImage& image)
{
    const unsigned long block = 64, sizeX = image.getSizeX();
    return bytesOf(image, image.hasSlack() ? (sizeX + block - 1) / block * block : sizeX);
}

}  // namespace

MemoryExtent extentOf(const BaseImage& image)
{
    const ImageSizes& sizes = image.getGeometry().getSizes();
    const ImageStrides& strides = image.getStrides();
    const char* const first = static_cast<const char*>(image.getLine(0));
    MemoryExtent extent = {first, first + lineBytesOf(image)};
    const auto extend = [&](unsigned long size, long stride) {
        const long span = static_cast<long>(size - 1) * stride;
        (span < 0 ? extent.first : extent.end) += span;
    };
    extend(sizes.y, strides.y);
    extend(sizes.z, strides.z);
    extend(sizes.c, strides.c);
    extend(sizes.t, strides.t);
    return extent;
}

bool shareMemory(const BaseImage& a, const BaseImage& b)
{
    const MemoryExtent extentA = extentOf(a), extentB = extentOf(b);
    if (extentA.end <= extentB.first || extentB.end <= extentA.first)
        return false;
    const ImageSizes &sizesA = a.getGeometry().getSizes(), &sizesB = b.getGeometry().getSizes();
    const ImageStrides &stridesA = a.getStrides(), &stridesB = b.getStrides();
    SharedAxis axes[4];  // the widest first
    SharedAxis* end = axes;
    bool isKnown = true;
    // From the lowest byte on, an axis that runs backwards is one that runs forwards.
    const auto add = [&](unsigned long sizeA, unsigned long sizeB, long strideA, long strideB) {
        const long stride = std::labs(sizeA > 1 ? strideA : strideB);
        if (sizeA > 1 && sizeB > 1)
            isKnown = isKnown && std::labs(strideB) == stride;
        if (sizeA == 1 && sizeB == 1)
            return;
        SharedAxis* place = end++;
        for (; place != axes && place[-1].stride < stride; --place)
            *place = place[-1];
        *place = {stride, static_cast<long>(sizeA), static_cast<long>(sizeB)};
    };
    add(sizesA.y, sizesB.y, stridesA.y, stridesB.y);
    add(sizesA.z, sizesB.z, stridesA.z, stridesB.z);
    add(sizesA.c, sizesB.c, stridesA.c, stridesB.c);
    add(sizesA.t, sizesB.t, stridesA.t, stridesB.t);
    return !isKnown || linesMeet(axes, end, extentB.first - extentA.first, lineBytesOf(a), lineBytesOf(b));
}

bool isSame(const BaseImage& a, const BaseImage& b)
{
    const ImageSizes& sizes = a.getGeometry().getSizes();
    const ImageStrides &strideA = a.getStrides(), &strideB = b.getStrides();
    return a.getLine(0) == b.getLine(0) && sizes == b.getGeometry().getSizes() && bytesOf(a, 1) == bytesOf(b, 1)
           && (sizes.y == 1 || strideA.y == strideB.y) && (sizes.z == 1 || strideA.z == strideB.z)
           && (sizes.c == 1 || strideA.c == strideB.c) && (sizes.t == 1 || strideA.t == strideB.t);
}

}}  // namespace orvik::image
