#pragma once

// What the searches for circles and for spheres do alike around their accumulators.

#include "Rule/RealImageRule.h"

#include "frame/attr/Records.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/processor/BaseRule.h"
#include "frame/util/NumericLimits.h"

#include <boost/shared_ptr.hpp>

namespace orvik { namespace imaproc { namespace fd {

/// Where a result is given, it has the size of the input, and floats.
template<class In, class Out>
processor::RulePtr fitsIfSet(const boost::shared_ptr<In>& in, const boost::shared_ptr<Out>& out)
{
    return If(processor::isSet(out), matchSize(in, out) && isReal(in, out));
}

/// Whether peaks depend on the greatest value, so that it is to be measured. A ratio that is none asks for no measure:
/// written so that NaN is none.
inline bool isMaxNeeded(const attr::AccumIntensityThreshold& threshold)
{
    return threshold.get<attr::AccumIntensityThreshold::RatioOfMax>() > NumericLimits<double>::s_eps;
}

/// The lowest value of a peak; `stats` hold the greatest one where it is needed.
inline double lowestPeak(const attr::AccumIntensityThreshold& threshold, const attr::StatsResult& stats)
{
    typedef attr::AccumIntensityThreshold Threshold;
    const double absolute = threshold.get<Threshold::AbsoluteThreshold>();
    if (!isMaxNeeded(threshold))
        return absolute;
    const double relative = threshold.get<Threshold::RatioOfMax>() * stats.get<attr::StatsResult::Max>();
    return relative > absolute ? relative : absolute;
}

}}}  // namespace orvik::imaproc::fd
