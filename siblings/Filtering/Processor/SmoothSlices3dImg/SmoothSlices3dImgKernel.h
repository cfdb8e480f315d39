#pragma once

// The pass across slices of what was smoothed within them. Compiled once per instruction set.

#include "siblings/Filtering/Processor/SmoothSlices3dImg/SmoothSlices3dImgLvl3.h"
#include "siblings/Filtering/SeparableFilter.h"

#include "frame/attr/StripAttributes.h"
#include "frame/processor/KernelRegistrator.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace filter {
namespace {

/// What the kernel works with on one strip.
struct SmoothedStrip
{
    const image::InputImageZStrip3d& in;
    const PlainStripParser* out;
    LineFilter<float> write;
};

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult SmoothSlices3dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        parser<attr::InZStrip3d, Sample>();  // notices another sample type
        return SmoothedStrip{*value<attr::InZStrip3d>(), plainParser<attr::OutZStrip3d>(),
                             lineFilterFor<false, float>(attribute<attr::OutZStrip3d>()->getImageBufferType())};
    });
    if (!strip)
        return wrongSampleType();
    const unsigned long nbSlices = strip->in.getSizeY(), z = info.lineIndex % nbSlices;
    if (z == 0)
        readLines(info.lineIndex);
    if (info.lineIndex + nbSlices < strip->in.getNbLines()) {
        const unsigned long cacheLine = 64;
        const char* const next = static_cast<const char*>(strip->in.accessLine(info.lineIndex + nbSlices));
        for (unsigned long i = 0; i < info.nbData * sizeof(Sample); i += cacheLine)
            __builtin_prefetch(next + i);
    }
    const auto lineOf = [&](unsigned long slice) { return static_cast<const float*>(m_lines.getDataPtr(slice)); };
    strip->write(lineOf(m_weights.halfSize() + z), static_cast<unsigned long>(lineOf(1) - lineOf(0)), info.nbAlignedData,
                 m_weights, strip->out->accessSamples());
    return success();
}

}}}  // namespace orvik::imaproc::filter

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace filter {

ORVIK_REGISTER_KERNELS(SmoothSlices3dImgLvl3, Real32KernelTypes)

}}}  // namespace orvik::imaproc::filter
