#pragma once

#include <vector>

namespace orvik { namespace imaproc { namespace filter {

/// Sampled Gaussian kernels of one axis, by the distance k from the centre, 0 to the half-size.
template<class T>
struct TypedGaussianWeights
{
    /// Of f(x) for k = 0, of f(x - k) + f(x + k) above: proportional to exp(-k^2 / (2 s^2)), sum over both sides 1.
    std::vector<T> smoothing;
    /// Of f(x + k) - f(x - k): proportional to k exp(-k^2 / (2 s^2)), 1 on a ramp of one unit per sample.
    std::vector<T> derivative;

    unsigned long halfSize() const { return smoothing.size() - 1; }
};
typedef TypedGaussianWeights<double> GaussianWeights;

/// Largest half-size that is served.
constexpr double g_maxGaussianHalfSize = 1048576.0;

/// max(1, floor(coverage * stdDev + 0.5)), in double: beyond g_maxGaussianHalfSize for arguments that are refused.
double getGaussianHalfSize(double stdDev, double coverage);

/// The kernels for an axis of `size` samples whose edge samples are repeated outside. From distance `size` on all pairs
/// are the two edge samples, so the weights beyond it are added to it: the half-size of the result is at most `size`.
GaussianWeights makeGaussianWeights(double stdDev, double coverage, unsigned long size);

/// The same weights, each rounded.
TypedGaussianWeights<float> toFloat(const GaussianWeights& weights);

}}}  // namespace orvik::imaproc::filter
