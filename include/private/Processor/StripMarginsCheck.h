#pragma once

#include "frame/image/Strips.h"
#include "frame/util/ProcessingResult.h"

#include <boost/shared_ptr.hpp>

#include <string>

namespace orvik { namespace imaproc { namespace fd {

/// Whether a strip has that many samples on all sides.
inline bool hasMargins(const image::BaseImageFragment& strip, unsigned long margin)
{
    const image::StripMargins& margins = strip.getMargins();
    const bool isDeep = margins.startZ == margin && margins.endZ == margin;
    return margins.areAllAround(margin) && (isDeep || strip.getAxis() == image::eSA_Y);
}

/// Whether strips have as many samples on all sides as their kernel looks at; `algorithm` is named in the text.
template<class... Strips>
BoolResult checkMargins(const std::string& algorithm, unsigned long margin, const boost::shared_ptr<Strips>&... strips)
{
    if ((hasMargins(*strips, margin) && ...))
        return success();
    return failure(algorithm + ": the strips do not have margins of " + std::to_string(margin) + " on all sides");
}

}}}  // namespace orvik::imaproc::fd
