#pragma once

// Peaks of one line of moduli. Compiled once per instruction set.

#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl3.h"
#include "Processor/ExtractHoughPeaks2d/GradMagSquare.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What the kernel works with on one strip.
template<class Gx, class Gy>
struct PeakStrip
{
    const Gx* gx;
    const Gy* gy;
    float lowest;
    unsigned long firstY;  // of the strip, in the plane
    attr::Pixels2d::Coll::Nodes& listed;
};
template<class Gx, class Gy>
PeakStrip(const Gx*, const Gy*, float, unsigned long, attr::Pixels2d::Coll::Nodes&) -> PeakStrip<Gx, Gy>;

/// Calls f(j) for each peak among `n` pixels; lines begin one pixel before theirs and have room for whole vectors.
template<class F>
void forEachPeak(const float* top, const float* mid, const float* bottom, float lowest, unsigned long n, const F& f)
{
    typedef Lanes<float>::type Vector;
    for (unsigned long j = 0; j < n; j += Lanes<float>::count) {
        const Vector m = load(mid + j + 1);
        unsigned long peaks = bitsOf<float>((m > load(top + j)) & (m > load(top + j + 1)) & (m > load(top + j + 2))
                                            & (m > load(mid + j)) & (m > load(mid + j + 2)) & (m > load(bottom + j))
                                            & (m > load(bottom + j + 1)) & (m > load(bottom + j + 2))
                                            & (m >= Vector{} + lowest));
        if (n - j < Lanes<float>::count)
            peaks &= (1ul << (n - j)) - 1;
        for (; peaks != 0; peaks &= peaks - 1)
            f(j + static_cast<unsigned long>(__builtin_ctzl(peaks)));
    }
}

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult ExtractHoughPeaks2dLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    auto* const strip = onceAStrip(info, [&] {
        return PeakStrip{parser<attr::InGxKnlYStrip2d, Sample>(), parser<attr::InGyKnlYStrip2d, Sample>(),
                         static_cast<float>(value<attr::InOptLowestMax>()),
                         value<attr::InGxKnlYStrip2d>()->getStripStartOffsetY(),
                         value<attr::OutPixels2d>()->template access<attr::Pixels2d::Coll>().accessNodes()};
    });
    if (!strip)
        return wrongSampleType();
    const unsigned long n = info.nbData, nbLines = 3;
    if (info.lineIndex == 0)
        m_moduli.init(eDT_Real32, n + nbLines + kBlock, nbLines);
    else
        m_moduli.rollUpFragments();
    for (unsigned long line = info.lineIndex == 0 ? 0 : nbLines - 1; line < nbLines; ++line)
        computeGradMagSquare(strip->gx->accessBuffer(line), strip->gy->accessBuffer(line),
                             static_cast<float*>(m_moduli.getDataPtr(line)), n + nbLines);
    const auto moduli = [&](unsigned long line) { return static_cast<const float*>(m_moduli.getDataPtr(line)); };
    forEachPeak(moduli(0), moduli(1), moduli(2), strip->lowest, n, [&](unsigned long j) {
        strip->listed.push_back(m_nodes.next());
        attr::Pixel2d& peak = *strip->listed.back();
        peak.set<attr::Pixel2d::X>(static_cast<double>(info.firstColumn + j));
        peak.set<attr::Pixel2d::Y>(static_cast<double>(strip->firstY + info.lineIndex));
        peak.set<attr::Pixel2d::Value>(static_cast<double>(moduli(1)[j + 1]));
    });
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(ExtractHoughPeaks2dLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
