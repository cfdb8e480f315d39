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

template<core::eInstructionSet Set, class Parser>
void GaussianGradient2dImgLvl3::combineLines(const Parser& lines, const processor::ProcessingInfo& info,
                                             const CombinedLines* smooth, const CombinedLines* derivative)
{
    const unsigned long nbLines = std::min(g_nbLinesAtOnce, lines.getNbLines() - info.lineIndex);
    const unsigned long nbRows = nbLines + 2 * m_y.halfSize();
    double* const tile = static_cast<double*>(m_tile.getDataPtr());
    for (unsigned long x = 0; x < info.nbAlignedData; x += kBlock) {
        for (unsigned long row = 0; row < nbRows; ++row)
            widenBlock(tile + row * kBlock, lines.accessBuffer(row) + x);
        filterTile(tile, nbLines, m_y, x, smooth, derivative);
    }
    for (const CombinedLines* const combined : {smooth, derivative})
        if (combined)
            extendLines<double>(*combined, nbLines, info.nbData, info.nbAlignedData, m_x.halfSize());
}

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
    const unsigned long line = info.lineIndex % g_nbLinesAtOnce;
    if (line == 0)
        combineLines<Set>(*strip->in, info, strip->outX ? &m_smooth : nullptr, strip->outY ? &m_derivative : nullptr);
    if (strip->outX)
        strip->writeX(m_smooth.get<double>(line), info.nbAlignedData, m_x, strip->outX->accessSamples());
    if (strip->outY)
        strip->writeY(m_derivative.get<double>(line), info.nbAlignedData, m_x, strip->outY->accessSamples());
    return success();
}

}}}  // namespace orvik::imaproc::filter

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace filter {

ORVIK_REGISTER_KERNELS(GaussianGradient2dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::filter
