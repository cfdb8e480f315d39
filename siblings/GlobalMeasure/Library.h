#pragma once

#include "frame/util/Export.h"

#include <string>

namespace orvik { namespace imaproc { namespace glbmsr {

/// What the processor classes of this library share.
struct ORVIK_API Library
{
    static constexpr const char* s_namespace = "orvik::imaproc::glbmsr";
    static constexpr const char* s_name = "ORVIKIPLGlobalMeasure";
    static std::string toolTip(unsigned int row);
};

}}}  // namespace orvik::imaproc::glbmsr
