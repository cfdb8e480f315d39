#pragma once

// One line of an accumulator of spheres. Compiled once per instruction set.

#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl3.h"
#include "Processor/ShellAccumulator.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"
#include "frame/processor/KernelRegistrator.h"

#include <tuple>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What the kernel works with on one strip.
template<class Sample, class Gx, class Gy, class Gz, class Out>
struct ShellStrip
{
    const Gx* gx;
    const Gy* gy;
    const Gz* gz;
    const Out* out;
    ShellAccumulator<Sample> accumulator;
};
template<class Sample, class Gx, class Gy, class Gz, class Out>
ShellStrip(const Gx*, const Gy*, const Gz*, const Out*, ShellAccumulator<Sample>) -> ShellStrip<Sample, Gx, Gy, Gz, Out>;

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult HoughSpheres3dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const image::InputImageZStrip3dWithKernel& slices = *value<attr::InGxKnlZStrip3d>();
    auto* const strip = onceAStrip(info, [&] {
        return ShellStrip{parser<attr::InGxKnlZStrip3d, Sample>(), parser<attr::InGyKnlZStrip3d, Sample>(),
                          parser<attr::InGzKnlZStrip3d, Sample>(), parser<attr::OutZStrip3d, float>(),
                          ShellAccumulator<Sample>(*m_shells, *m_buffers, info, slices, s_form)};
    });
    if (!strip)
        return wrongSampleType();
    const long reach = m_shells->getMaxRadius(), sizeY = static_cast<long>(slices.getSizeY());
    const long line = static_cast<long>(info.lineIndex);
    const long z = static_cast<long>(slices.getStripStartOffsetZ()) + line / sizeY, y = line % sizeY;
    const auto gradients = [&](long atZ, long atY) {
        const unsigned long slice = static_cast<unsigned long>(atZ - z + reach);
        const unsigned long row = static_cast<unsigned long>(atY - y + reach);
        return std::make_tuple(strip->gx->accessBuffer(slice, row), strip->gy->accessBuffer(slice, row),
                               strip->gz->accessBuffer(slice, row));
    };
    return strip->accumulator.line(info.lineIndex, gradients, getOrigin(), strip->out->accessBuffer())
               ? success()
               : failure(core::getCancelledText());
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(HoughSpheres3dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
