#pragma once

#include "frame/attr/Records.h"
#include "frame/util/NumericLimits.h"

namespace orvik { namespace imaproc { namespace fd {

/// The largest of the partial results of planes or strips, in the order of their map.
template<class Results>
double largestOf(const Results& results)
{
    double m = NumericLimits<double>::s_min;
    for (const auto& result : results) {
        const double v = result.second->template get<attr::StatsResult::Max>();
        m = (v > m) ? v : m;
    }
    return m;
}

}}}  // namespace orvik::imaproc::fd
