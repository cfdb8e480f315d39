#pragma once

// One line of an accumulator of real values. Compiled once per instruction set.

#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl3.h"
#include "Processor/RingStrip.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {

template<class Sample, core::eInstructionSet Set>
BoolResult HoughCircles2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    auto* const strip = onceAStrip(info, [&] {
        return makeRingStrip<Sample, 1>(*m_rings, *m_buffers, s_form, info, *value<attr::InGxKnlYStrip2d>(),
                                        parser<attr::InGxKnlYStrip2d, Sample>(), parser<attr::InGyKnlYStrip2d, Sample>(),
                                        parser<attr::OutYStrip2d, float>());
    });
    if (!strip)
        return wrongSampleType();
    return accumulateLine(*strip, info, [&] { return getOrigin().isCancellationRequested(); });
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(HoughCircles2dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
