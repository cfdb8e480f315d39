#pragma once

namespace orvik { namespace image {

class BaseImage;

/// Whether two images may hold the same bytes: their extents overlap, unless one lies between the lines of the other.
bool shareMemory(const BaseImage& a, const BaseImage& b);

/// Whether two images show the same samples.
bool isSame(const BaseImage& a, const BaseImage& b);

}}  // namespace orvik::image
