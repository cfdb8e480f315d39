#pragma once

// The corner response of volumes. Compiled once per instruction set, and once with fused operations.

#include "Processor/CornerResponse.h"
#include "Processor/HarrisCorner3dImg/ElementaryFunctions.h"
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/util/NumericLimits.h"

#include <limits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// Of xx, yy, zz, xy, xz and yz; after O. K. Smith, "Eigenvalues of a symmetric 3 x 3 matrix", CACM 4(4), 1961.
struct MinEigenvalue
{
    Floats operator()(const Floats (&tensor)[6]) const
    {
        const Floats xx = tensor[0], yy = tensor[1], zz = tensor[2], xy = tensor[3], xz = tensor[4], yz = tensor[5];
        const Floats q = (xx + yy + zz) / 3.0f;
        const Floats p1 = multiplyAdd(yz, yz, multiplyAdd(xy, xy, xz * xz));
        const Floats a = xx - q, b = yy - q, c = zz - q;
        const Floats squares = multiplyAdd(c, c, multiplyAdd(a, a, b * b));
        const Floats p = squareRoot((squares + p1 + p1) / 6.0f);

        // What is left of the determinant when the tensor is less q and over p: twice the cosine of three times the angle.
        const Floats squared = multiplyAdd(
            -a, yz * yz, multiplyAdd(-c, xy * xy, multiplyAdd(-b, xz * xz, multiplyAdd(2.0f * xy * yz, xz, a * b * c))));
        constexpr float s = NumericLimits<float>::s_sqrt_eps;
        const Floats ratio = p > all(s * s) ? squared / (2.0f * (p * p * p)) : Floats{};
        const Floats r = ratio > all(-1.0f) ? ratio : all(-1.0f);  // what is no number, too
        const auto isOne = r >= all(1.0f);

        const Floats phi = arcCosine(isOne ? Floats{} : r) / 3.0f;
        const Floats first = isOne ? all(1.0f) : cosine(phi);
        const Floats second = isOne ? all(-0.50000006f) : cosine(phi - 2.0943952f);
        const Floats e1 = multiplyAdd(2.0f * p, first, q), e2 = multiplyAdd(2.0f * p, second, q);
        return 3.0f * q - e1 - e2;
    }
};

/// The determinant less k times the cube of the trace, compressed by a cube root that keeps the sign. What the root is taken of
/// is never 0, so neither is the response.
struct HarrisMeasure
{
    const float k;

    Floats operator()(const Floats (&tensor)[6]) const
    {
        const Floats xx = tensor[0], yy = tensor[1], zz = tensor[2], xy = tensor[3], xz = tensor[4], yz = tensor[5];
        const Floats t = xx + yy + zz;
        const Floats ofXz = multiplyAdd(xy, yz, -(yy * xz));
        const Floats ofXx = multiplyAdd(yy, zz, -(yz * yz)), ofXy = multiplyAdd(zz, xy, -(xz * yz));
        const Floats determinant = multiplyAdd(ofXz, xz, multiplyAdd(ofXx, xx, -(ofXy * xy)));
        const Floats r = multiplyAdd(-(t * (t * t)), all(k), determinant);
        const Floats x = magnitude(r) + NumericLimits<float>::s_eps;
        const Floats root = exponential(logarithm(x) * 0.33333334f);
        const Floats p = x < all(std::numeric_limits<float>::infinity()) ? root : x;
        return 0.0f <= r ? p : -p;
    }
};

}  // namespace

template<class Sample, core::eInstructionSet Set1, core::eInstructionSet Set2>
BoolResult HarrisCorner3dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        return cornerStrip<HarrisMeasure, MinEigenvalue>(
            *value<attr::InCornerDetectionParams>(), parser<attr::OutZStrip3d, Sample>(),
            parser<attr::InXXZStrip3d, Sample>(), parser<attr::InYYZStrip3d, Sample>(), parser<attr::InZZZStrip3d, Sample>(),
            parser<attr::InXYZStrip3d, Sample>(), parser<attr::InXZZStrip3d, Sample>(),
            parser<attr::InYZZStrip3d, Sample>());
    });
    if (!strip)
        return wrongSampleType();
    strip->respond(info);
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNEL_PAIRS(HarrisCorner3dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
