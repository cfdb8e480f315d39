#pragma once

// What the kernels of accumulators of circles work with on one strip. Compiled once per instruction set.

#include "Processor/RingAccumulator.h"

#include "frame/core/Scheduler.h"
#include "frame/image/Strips.h"
#include "frame/processor/BaseProcessingAlgorithm.h"

#include <utility>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

template<class Gx, class Gy, class Out, class Sample, unsigned int NbWeights>
struct RingStrip
{
    const Gx* gx;
    const Gy* gy;
    Out* out[NbWeights];
    RingAccumulator<Sample, NbWeights> accumulator;
};

/// Parsers may be null, when they are of other types than the kernel's; nothing is done with the strip then.
template<class Sample, unsigned int NbWeights, class Gx, class Gy, class Out, class... Outs>
RingStrip<Gx, Gy, Out, Sample, NbWeights>
makeRingStrip(const Rings<NbWeights>& rings, RingBuffers& buffers, eRingForm form, const processor::ProcessingInfo& info,
              const image::BaseImageYStrip2d& lines, const Gx* gx, const Gy* gy, Out* out, Outs*... others)
{
    return {gx,
            gy,
            {out, others...},
            {rings, buffers, form, info.nbAlignedData, info.nbData, lines.getNbLines(),
             static_cast<long>(lines.getStripStartOffsetY()), lines.getImageSizeY()}};
}

template<class Gx, class Gy, class Out, class Sample, unsigned int NbWeights, class IsCancelled>
BoolResult accumulateLine(RingStrip<Gx, Gy, Out, Sample, NbWeights>& strip, const processor::ProcessingInfo& info,
                          const IsCancelled& isCancelled)
{
    float* out[NbWeights];
    for (unsigned int i = 0; i < NbWeights; ++i)
        out[i] = strip.out[i]->accessBuffer();
    const auto gradients = [&](unsigned long row) {
        return std::make_pair(strip.gx->accessBuffer(row), strip.gy->accessBuffer(row));
    };
    return strip.accumulator.line(static_cast<long>(info.lineIndex), gradients, isCancelled, out)
               ? success()
               : failure(core::getCancelledText());
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
