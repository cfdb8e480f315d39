#pragma once

#include "frame/util/Log.h"

namespace orvik { namespace imaproc { namespace filter {

/// What this library refuses, in words.
struct eFilteringRuleMessage
{
    enum domain
    {
        eFiniteAboveZero,
        eNotFiniteAboveZero,
        eKernelFits,
        eKernelSize,
        eNoOutput,
        eNoOutputOfThree
    };
};

LogMessageManager& getORVIKIPLFilteringLogMessageManager();

}}}  // namespace orvik::imaproc::filter
