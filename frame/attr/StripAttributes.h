#pragma once

#include "frame/imaproc/ImageAttributes.h"

namespace orvik { namespace imaproc { namespace attr {

#define ORVIK_ROLE(Role, ...) ORVIK_##Role(__VA_ARGS__)
#include "frame/attr/StripAttributes.inc"
#undef ORVIK_ROLE

}}}  // namespace orvik::imaproc::attr
