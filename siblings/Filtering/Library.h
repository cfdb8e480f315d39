#pragma once

#include "frame/util/Export.h"

#include <string>

namespace orvik { namespace imaproc { namespace filter {

/// What the processor classes of the filtering library share.
struct ORVIK_API Library
{
    static constexpr const char* s_namespace = "orvik::imaproc::filter";
    static constexpr const char* s_name = "ORVIKIPLFiltering";
    /// Text of a class's tool tip; its number is the row.
    static std::string toolTip(unsigned int row);
};

}}}  // namespace orvik::imaproc::filter
