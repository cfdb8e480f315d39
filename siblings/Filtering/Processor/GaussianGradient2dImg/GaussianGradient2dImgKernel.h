#pragma once

// The two passes of separable Gaussian derivatives. Compiled once per instruction set.

#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl3.h"
#include "siblings/Filtering/SeparableFilter.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include <algorithm>
#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace filter {

namespace {

/// What the kernel works with on one strip.
template<class In>
struct Strip
{
    const In* in;
    const PlainStripParser *outX, *outY;  // null where they are not wanted
    LineFilter<double> writeX, writeY;
};
template<class I>
Strip(const I*, const PlainStripParser*, const PlainStripParser*, LineFilter<double>, LineFilter<double>) -> Strip<I>;

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult GaussianGradient2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        const auto typeOf = [](const BaseStripAttribute& out) { return out.getImageBufferType(); };
        return Strip{parser<attr::InKnlYStrip2d, Sample>(), plainParser<attr::OutOptGradXYStrip2d>(),
                     plainParser<attr::OutOptGradYYStrip2d>(),
                     lineFilterFor<true, double>(typeOf(*attribute<attr::OutOptGradXYStrip2d>())),
                     lineFilterFor<false, double>(typeOf(*attribute<attr::OutOptGradYYStrip2d>()))};
    });
    if (!strip)
        return wrongSampleType();
    const auto& in = *strip->in;
    const Combination combined = {strip->outX ? &m_smooth : nullptr, strip->outY ? &m_derivative : nullptr};
    combineLines(
        info.lineIndex, in.getStrip().getNbLines(), info, m_y, m_x.halfSize(), static_cast<double*>(m_tile.getDataPtr()),
        [&](unsigned long line, unsigned long x, double* to, unsigned long) { widenBlock(to, in.accessBuffer(line) + x); },
        &combined, 1);
    if (strip->outX)
        strip->writeX(m_smooth.getOfStrip<double>(info.lineIndex), 1, info.nbAlignedData, m_x, strip->outX->accessSamples());
    if (strip->outY)
        strip->writeY(m_derivative.getOfStrip<double>(info.lineIndex), 1, info.nbAlignedData, m_x,
                      strip->outY->accessSamples());
    return success();
}

}}}  // namespace orvik::imaproc::filter

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace filter {

ORVIK_REGISTER_KERNELS(GaussianGradient2dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::filter
