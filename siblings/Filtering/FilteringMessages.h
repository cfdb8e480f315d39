#pragma once

#include "frame/util/Log.h"

namespace orvik { namespace imaproc { namespace filter {

/// What the rules of this library say.
struct eFilteringRuleMessage
{
    enum domain
    {
        eFiniteAboveZero,
        eNotFiniteAboveZero,
        eKernelFits,
        eKernelSize
    };
};

LogMessageManager& getORVIKIPLFilteringLogMessageManager();

}}}  // namespace orvik::imaproc::filter
