#pragma once

#include "frame/attr/Records.h"
#include "frame/image/BaseImage.h"

#include <boost/shared_ptr.hpp>

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

/// The radii that are looked for in an image whose smallest side is `smallestSize`: a range that is wider than half of it is
/// narrowed; none stands for all radii from 1 on.
inline boost::shared_ptr<attr::HoughCirclesRadiusRange> narrowedRange(
    const boost::shared_ptr<const attr::HoughCirclesRadiusRange>& range, unsigned long smallestSize)
{
    typedef attr::HoughCirclesRadiusRange Range;
    const long half = static_cast<long>(smallestSize / 2);
    if (!range)
        return attr::createHoughCirclesRadiusRange(1, half);
    if (range->get<Range::MinRadius>() > half)
        return attr::createHoughCirclesRadiusRange(half, half);
    return attr::createHoughCirclesRadiusRange(range->get<Range::MinRadius>(),
                                               std::min(range->get<Range::MaxRadius>(), half));
}

/// The same for circles in the planes of an image.
inline boost::shared_ptr<attr::HoughCirclesRadiusRange> narrowedRangeOfPlane(
    const boost::shared_ptr<const attr::HoughCirclesRadiusRange>& range, const image::BaseImage& image)
{
    return narrowedRange(range, std::min(image.getSizeX(), image.getSizeY()));
}

/// And for spheres in its volumes.
inline boost::shared_ptr<attr::HoughCirclesRadiusRange> narrowedRangeOfVolume(
    const boost::shared_ptr<const attr::HoughCirclesRadiusRange>& range, const image::BaseImage& image)
{
    return narrowedRange(range, std::min({image.getSizeX(), image.getSizeY(), image.getSizeZ()}));
}

}}}  // namespace orvik::imaproc::fd
