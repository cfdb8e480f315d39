#pragma once

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/BaseOutputInitializer.h"

#include <vector>

namespace orvik { namespace imaproc { namespace filter {

/// Makes an output, unless the caller gave one of the others: then what was given is all that is wanted.
processor::InitializerPtr outputOfNoneGiven(const boost::shared_ptr<BaseOutputImageAttribute>& out,
                                            const std::vector<WeakImage>& others,
                                            const boost::shared_ptr<BaseInputImageAttribute>& in);

}}}  // namespace orvik::imaproc::filter
