#pragma once

#include "frame/imaproc/CustomImageProperty.h"

namespace orvik { namespace imaproc { namespace fd {

/// What is made of `in` has floats, where it is given.
processor::RulePtr isReal(const WeakImage& in, const WeakImage& out);

}}}  // namespace orvik::imaproc::fd
