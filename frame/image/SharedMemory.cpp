#include "frame/image/SharedMemory.h"

#include "frame/image/BaseImage.h"

#include <utility>

namespace orvik { namespace image {

namespace {

/// The bytes from the first sample of an image to the end of the last one, whatever lies between them.
std::pair<const char*, const char*> extentOf(const BaseImage& image)
{
    const ImageSizes& sizes = image.getGeometry().getSizes();
    const ImageStrides& strides = image.getStrides();
    const char* first = static_cast<const char*>(image.getLine(0));
    const char* end = first + sizes.x * getImageBufferBaseSize(image.getBufferType());
    const std::pair<unsigned long, long> axes[] = {
        {sizes.y, strides.y}, {sizes.z, strides.z}, {sizes.c, strides.c}, {sizes.t, strides.t}};
    for (const std::pair<unsigned long, long>& axis : axes) {
        const long span = static_cast<long>(axis.first - 1) * axis.second;
        (span < 0 ? first : end) += span;
    }
    return {first, end};
}

}  // namespace

bool shareMemory(const BaseImage& a, const BaseImage& b)
{
    const std::pair<const char*, const char*> extentA = extentOf(a), extentB = extentOf(b);
    if (extentA.second <= extentB.first || extentB.second <= extentA.first)
        return false;
    const long stride = a.getStrides().y;
    if (stride <= 0 || stride != b.getStrides().y || a.getGeometry().getSizes().z * a.getSizeC() * a.getSizeT() != 1
        || b.getGeometry().getSizes().z * b.getSizeC() * b.getSizeT() != 1)
        return true;
    const auto lineBytes = [](const BaseImage& image) {
        return static_cast<long>(image.getSizeX() * getImageBufferBaseSize(image.getBufferType()));
    };
    const long distance = ((extentB.first - extentA.first) % stride + stride) % stride;
    return !(distance >= lineBytes(a) && distance + lineBytes(b) <= stride);
}

bool isSame(const BaseImage& a, const BaseImage& b)
{
    const ImageSizes& sizes = a.getGeometry().getSizes();
    const ImageStrides &strideA = a.getStrides(), &strideB = b.getStrides();
    return a.getLine(0) == b.getLine(0) && a.getBufferType() == b.getBufferType() && sizes == b.getGeometry().getSizes()
           && (sizes.y == 1 || strideA.y == strideB.y) && (sizes.z == 1 || strideA.z == strideB.z)
           && (sizes.c == 1 || strideA.c == strideB.c) && (sizes.t == 1 || strideA.t == strideB.t);
}

}}  // namespace orvik::image
