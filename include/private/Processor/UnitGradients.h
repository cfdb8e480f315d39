#pragma once

// Gradients as directions and magnitudes. Compiled once per instruction set.

#include "frame/simd/Simd.h"
#include "frame/util/NumericLimits.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

/// Parts gradients into unit vectors and magnitudes; those of hardly any magnitude stay as they are, with magnitude 1, so
/// that they count for next to nothing. All buffers have room for whole blocks.
template<class Sample>
void toUnitGradients(const Sample* gx, const Sample* gy, unsigned long n, float* unitX, float* unitY, float* magnitude)
{
    typedef Lanes<float>::type Vector;
    alignas(64) float roomX[kBlock], roomY[kBlock];
    for (unsigned long x = 0; x < n; x += kBlock) {
        const float* const fromX = widened<float>(gx + x, roomX);
        const float* const fromY = widened<float>(gy + x, roomY);
        for (unsigned long i = 0; i < kBlock; i += Lanes<float>::count) {
            const Vector vx = load(fromX + i), vy = load(fromY + i);
            const Vector length = squareRoot(vx * vx + vy * vy);
            const auto isLong = length >= Vector{} + NumericLimits<float>::s_eps;
            store(unitX + x + i, isLong ? vx / length : vx);
            store(unitY + x + i, isLong ? vy / length : vy);
            store(magnitude + x + i, isLong ? length : Vector{} + 1.0f);
        }
    }
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
