#pragma once

// The corner response of planes. Compiled once per instruction set.

#include "Processor/CornerResponse.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// Of xx, yy and xy.
struct MinEigenvalue
{
    Floats operator()(const Floats (&tensor)[3]) const
    {
        const Floats xx = tensor[0], yy = tensor[1], xy = tensor[2], d = xx - yy, s = d * d + 4.0f * (xy * xy);
        return (xx + yy - squareRoot(s)) * 0.5f;
    }
};

/// Compressed by a root that keeps the sign.
struct HarrisMeasure
{
    const float k;

    Floats operator()(const Floats (&tensor)[3]) const
    {
        const Floats xx = tensor[0], yy = tensor[1], xy = tensor[2], t = xx + yy, r = xx * yy - xy * xy - k * (t * t);
        const Floats root = squareRoot(magnitude(r));
        return 0.0f <= r ? root : -root;
    }
};

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult HarrisCorner2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        return cornerStrip<HarrisMeasure, MinEigenvalue>(*value<attr::InCornerDetectionParams>(),
                                                         parser<attr::OutYStrip2d, Sample>(),
                                                         parser<attr::InXXYStrip2d, Sample>(),
                                                         parser<attr::InYYYStrip2d, Sample>(),
                                                         parser<attr::InXYYStrip2d, Sample>());
    });
    if (!strip)
        return wrongSampleType();
    strip->respond(info);
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(HarrisCorner2dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
