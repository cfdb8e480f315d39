#pragma once

// Gradients as directions and magnitudes. Compiled once per instruction set.

#include "frame/simd/Simd.h"
#include "frame/util/NumericLimits.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

/// Parts gradients into unit vectors and magnitudes; those of hardly any magnitude stay as they are, with magnitude 1, so
/// that they count for next to nothing. A buffer for each axis; all have room for whole blocks.
template<class Sample, unsigned int Dims>
void toUnitGradients(const Sample* const (&gradients)[Dims], unsigned long n, float* const (&units)[Dims], float* magnitude)
{
    typedef Lanes<float>::type Vector;
    alignas(64) float rooms[Dims][kBlock];
    for (unsigned long x = 0; x < n; x += kBlock) {
        const float* from[Dims];
        for (unsigned int axis = 0; axis < Dims; ++axis)
            from[axis] = widened<float>(gradients[axis] + x, rooms[axis]);
        for (unsigned long i = 0; i < kBlock; i += Lanes<float>::count) {
            Vector v[Dims], squares = {};
            for (unsigned int axis = 0; axis < Dims; ++axis) {
                v[axis] = load(from[axis] + i);
                squares = axis == 0 ? v[axis] * v[axis] : squares + v[axis] * v[axis];
            }
            const Vector length = squareRoot(squares);
            const auto isLong = length >= Vector{} + NumericLimits<float>::s_eps;
            for (unsigned int axis = 0; axis < Dims; ++axis)
                store(units[axis] + x + i, isLong ? v[axis] / length : v[axis]);
            store(magnitude + x + i, isLong ? length : Vector{} + 1.0f);
        }
    }
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
