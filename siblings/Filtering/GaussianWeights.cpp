#include "siblings/Filtering/GaussianWeights.h"

#include <algorithm>
#include <cmath>

namespace orvik { namespace imaproc { namespace filter {

double getGaussianHalfSize(double stdDev, double coverage)
{
    return std::max(1.0, std::floor(coverage * stdDev + 0.5));
}

GaussianWeights makeGaussianWeights(double stdDev, double coverage, unsigned long size)
{
    const unsigned long halfSize = static_cast<unsigned long>(getGaussianHalfSize(stdDev, coverage));
    const unsigned long folded = std::min(halfSize, size);
    const double scale = -1.0 / (2.0 * stdDev * stdDev);
    GaussianWeights weights;
    weights.smoothing.assign(folded + 1, 0.0);
    weights.derivative.assign(folded + 1, 0.0);
    weights.smoothing[0] = 1.0;
    double sum = 1.0, slope = 0.0;
    for (unsigned long k = 1; k <= halfSize; ++k) {
        const double distance = static_cast<double>(k);
        const double smoothing = std::exp(distance * distance * scale);
        // Relative to k = 1, so that a tiny standard deviation leaves the difference of the neighbours, not 0 / 0.
        const double derivative = k == 1 ? 1.0 : distance * std::exp((distance * distance - 1.0) * scale);
        weights.smoothing[std::min(k, folded)] += smoothing;
        weights.derivative[std::min(k, folded)] += derivative;
        sum += 2.0 * smoothing;
        slope += 2.0 * distance * derivative;
    }
    for (unsigned long k = 0; k <= folded; ++k) {
        weights.smoothing[k] /= sum;
        weights.derivative[k] /= slope;
    }
    return weights;
}

TypedGaussianWeights<float> toFloat(const GaussianWeights& weights)
{
    const auto rounded = [](const std::vector<double>& from) {
        std::vector<float> to;
        for (const double weight : from)
            to.push_back(static_cast<float>(weight));
        return to;
    };
    return {rounded(weights.smoothing), rounded(weights.derivative)};
}

}}}  // namespace orvik::imaproc::filter
