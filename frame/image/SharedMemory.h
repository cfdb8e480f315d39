#pragma once

namespace orvik { namespace image {

class BaseImage;

/// The bytes from the first sample of an image in memory to the end of the last one, and of its slack, whatever lies between
/// them.
struct MemoryExtent
{
    const char *first, *end;
};
MemoryExtent extentOf(const BaseImage& image);

/// Whether two images hold some of the same bytes, or one of them has its slack there, which is written with it. Images whose lines are woven into one another are told apart where
/// their strides are equal, and taken for sharing where not.
bool shareMemory(const BaseImage& a, const BaseImage& b);

/// Whether each sample of one image is the sample of the other at the same place, of as many bytes.
bool isSame(const BaseImage& a, const BaseImage& b);

}}  // namespace orvik::image
