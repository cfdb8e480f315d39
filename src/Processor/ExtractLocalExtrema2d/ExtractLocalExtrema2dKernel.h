#pragma once

// Local extrema of one line, listed when the lines below it have entered the window. Compiled once per instruction set.

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl3.h"

#include "Processor/ExtractLocalExtrema2d/ExtremaWindow.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What the kernel works with on one strip.
template<class Lines, class T>
struct Strip
{
    const Lines* lines;
    bool isListed;  // whether any value passes the threshold
    ExtremaWindow<T> window;
    unsigned long firstY;  // of the strip, in the plane
    attr::Pixels2d::Coll::Nodes& listed;
};
template<class L, class T>
Strip(const L*, bool, ExtremaWindow<T>, unsigned long, attr::Pixels2d::Coll::Nodes&) -> Strip<L, T>;

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult ExtractLocalExtrema2dLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    auto* const strip = onceAStrip(info, [&] {
        const ExtremaKind<Sample> kind = makeKind<Sample>(*value<attr::InLocalExtremaConfig>());
        const unsigned long n = info.nbAlignedData;
        return Strip{parser<attr::InKnlYStrip2d, Sample>(), kind.isListed,
                     ExtremaWindow<Sample>(m_buffers->scratch, m_buffers->window, kind, n, inWholeBlocks<Sample, Set>(n)),
                     value<attr::InKnlYStrip2d>()->getStripStartOffsetY(),
                     value<attr::OutPixels2d>()->template access<attr::Pixels2d::Coll>().accessNodes()};
    });
    if (!strip)
        return wrongSampleType();
    if (!strip->isListed)
        return success();
    const auto& lines = *strip->lines;
    const unsigned long distX = m_buffers->scratch.halfWidth, distY = m_buffers->window.halfHeight;
    if (info.lineIndex == 0)
        for (unsigned long line = 0; line < 2 * distY; ++line)
            strip->window.enter(lines.accessBuffer(line), lines);
    strip->window.enter(lines.accessBuffer(2 * distY), lines);

    const Sample* const centre = lines.accessBuffer(distY) + distX;
    const double y = static_cast<double>(strip->firstY + info.lineIndex);
    strip->window.forEachExtremum(centre, [&](unsigned long x) {
        strip->listed.push_back(m_nodes.next());
        attr::Pixel2d& pixel = *strip->listed.back();
        pixel.set<attr::Pixel2d::X>(static_cast<double>(x));
        pixel.set<attr::Pixel2d::Y>(y);
        pixel.set<attr::Pixel2d::Value>(static_cast<double>(centre[x]));
    });
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(ExtractLocalExtrema2dLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
