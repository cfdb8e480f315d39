#pragma once

#include "frame/imaproc/ImageInitializers.h"

namespace orvik { namespace imaproc { namespace fd {

/// The rule that an accumulator which is to be made has bins along both axes, and no more than 32-bit numbers reach.
processor::RulePtr accumulatorHasBins(const WeakImage& input, const boost::shared_ptr<const BaseCustomImageInfo>& made);

}}}  // namespace orvik::imaproc::fd
