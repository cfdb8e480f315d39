#pragma once

#include "frame/util/Export.h"

#include <string>

namespace orvik { namespace imaproc { namespace fd {

/// What the processor classes of this library share. Seen from outside, since the classes' inline statics use it.
struct ORVIK_API Library
{
    static constexpr const char* s_namespace = "orvik::imaproc::fd";
    static constexpr const char* s_name = "ORVIKIPLFeatureDetection";
    /// Text of a class's tool tip, also while the library is still loading.
    static std::string toolTip(unsigned int row);
};

}}}  // namespace orvik::imaproc::fd
