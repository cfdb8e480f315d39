#pragma once

#include "siblings/Filtering/GaussianWeights.h"
#include "siblings/Filtering/SeparableStrips.h"

#include "frame/image/Buffers.h"

namespace orvik { namespace imaproc { namespace filter {

/// Smoothing along x and y in what products of gradients are summed in.
template<class Sum>
struct TensorWeights
{
    TypedGaussianWeights<Sum> x, y;
};

/// What the products of a strip's gradients pass through: those of planes, and of the slices of volumes. Products, weights and
/// sums are float for float gradients and double for all others.
struct TensorBuffers
{
    static constexpr unsigned long s_maxNbProducts = 6;

    /// For lines of `sizeX` gradients, rounded up to `alignedSizeX`, of which `sizeY` lie below one another.
    void init(image::eImageBufferType type, double stdDev, double coverage, unsigned long sizeX, unsigned long sizeY,
              unsigned long alignedSizeX, unsigned long nbProducts);
    template<class Sum>
    const TensorWeights<Sum>& weights() const;

    TensorWeights<float> floatWeights;
    TensorWeights<double> doubleWeights;
    image::TypedOwnBuffer tile;               // the products in a block of columns of all lines of the kernel
    CombinedLines combined[s_maxNbProducts];  // smoothed along y
};

template<>
inline const TensorWeights<float>& TensorBuffers::weights<float>() const
{
    return floatWeights;
}
template<>
inline const TensorWeights<double>& TensorBuffers::weights<double>() const
{
    return doubleWeights;
}

}}}  // namespace orvik::imaproc::filter
