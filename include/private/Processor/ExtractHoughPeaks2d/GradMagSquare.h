#pragma once

// Moduli of a line of two components. Compiled once per instruction set.

#include "frame/simd/Simd.h"

#include <cmath>
#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

/// out[i] = sqrt(gx[i]^2 + gy[i]^2) in single precision, which is no square, though it is called so. The last of `count`
/// whole numbers is formed otherwise, deliberately: by a sum of squares in 32 bits, which may wrap, and a root in double.
/// Inputs are read, and the result is written, up to a whole block.
template<class Sample>
void computeGradMagSquare(const Sample* gx, const Sample* gy, float* out, unsigned long count)
{
    alignas(64) float roomX[kBlock], roomY[kBlock];
    for (unsigned long x = 0; x < count; x += kBlock) {
        const float* const fromX = widened<float>(gx + x, roomX);
        const float* const fromY = widened<float>(gy + x, roomY);
        for (unsigned long i = 0; i < kBlock; i += Lanes<float>::count) {
            const Lanes<float>::type vx = load(fromX + i), vy = load(fromY + i);
            store(out + x + i, squareRoot(vx * vx + vy * vy));
        }
    }
    if constexpr (!std::is_same<Sample, float>::value) {
        const unsigned int lastX = static_cast<unsigned int>(gx[count - 1]),
                           lastY = static_cast<unsigned int>(gy[count - 1]);
        typedef typename std::conditional<std::is_same<Sample, unsigned int>::value, unsigned int, int>::type Sum;
        out[count - 1] = static_cast<float>(std::sqrt(static_cast<double>(static_cast<Sum>(lastX * lastX + lastY * lastY))));
    }
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
