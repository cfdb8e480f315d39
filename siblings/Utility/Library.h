#pragma once

#include "frame/util/Export.h"

#include <string>

namespace orvik { namespace imaproc { namespace util {

/// What the processor classes of this library share.
struct ORVIK_API Library
{
    static constexpr const char* s_namespace = "orvik::imaproc::util";
    static constexpr const char* s_name = "ORVIKIPLUtility";
    static std::string toolTip(unsigned int row);
};

}}}  // namespace orvik::imaproc::util
