#pragma once

#include "frame/imaproc/CustomImageProperty.h"
#include "frame/imaproc/ImageInitializers.h"

namespace orvik { namespace imaproc { namespace fd {

// What families that make an accumulator of lines ask of it in the same way, beside what HoughLines2dImgRuleUtils.h offers to
// users.

/// The rule that accumulator `out` of the planes of `in` has these columns and rows, fits by type, and shares no memory with
/// them.
processor::RulePtr accumulatorFits(const WeakImage& in, const WeakImage& out,
                                   const boost::shared_ptr<BaseCustomCheckedImageProperty>& columns,
                                   const boost::shared_ptr<BaseCustomCheckedImageProperty>& rows,
                                   const processor::RulePtr& bufferType);

/// The rule that an accumulator which is to be made has bins along both axes, and no more than 32-bit numbers reach.
processor::RulePtr accumulatorHasBins(const WeakImage& input, const boost::shared_ptr<const BaseCustomImageInfo>& made);

/// The rule that a tolerance is a number.
processor::RulePtr toleranceIsNumber(const boost::weak_ptr<const processor::BaseValueAttribute<float>>& tolerance);

}}}  // namespace orvik::imaproc::fd
