#pragma once

#include "frame/processor/BaseRule.h"

namespace orvik { namespace imaproc { namespace filter {

/// A standard deviation (float value) with its coverage (GaussianCoverage) makes a kernel: both are finite and above 0,
/// and the half-size does not exceed g_maxGaussianHalfSize. A coverage that is unset counts as its default.
ORVIK_API processor::RulePtr makesGaussian(const processor::WeakAttribute& stdDev, const processor::WeakAttribute& coverage);

}}}  // namespace orvik::imaproc::filter
