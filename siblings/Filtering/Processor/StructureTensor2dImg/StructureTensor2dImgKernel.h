#pragma once

// The smoothed products of the gradients of planes. Compiled once per instruction set.

#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl3.h"
#include "siblings/Filtering/TensorProducts.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"

#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace filter {

template<class Sample, core::eInstructionSet Set>
BoolResult StructureTensor2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        const auto* const gx = parser<attr::InGxKnlYStrip2d, Sample>();
        typedef typename std::remove_pointer<decltype(gx)>::type In;
        TensorStrip<In, SumOf<Sample>, 2> made(gx, parser<attr::InGyKnlYStrip2d, Sample>());
        const auto typeOf = [](const BaseStripAttribute& out) { return out.getImageBufferType(); };
        made.add(0, 0, plainParser<attr::OutGxGxYStrip2d>(), typeOf(*attribute<attr::OutGxGxYStrip2d>()));
        made.add(1, 1, plainParser<attr::OutGyGyYStrip2d>(), typeOf(*attribute<attr::OutGyGyYStrip2d>()));
        made.add(0, 1, plainParser<attr::OutGxGyYStrip2d>(), typeOf(*attribute<attr::OutGxGyYStrip2d>()));
        return made;
    });
    if (!strip)
        return wrongSampleType();
    strip->smooth(m_buffers, info.lineIndex, strip->getGradient(0).getStrip().getNbLines(), info,
                  [&](unsigned long gradient, unsigned long line) {
                      return strip->getGradient(gradient).accessBuffer(line);
                  });
    return success();
}

}}}  // namespace orvik::imaproc::filter

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace filter {

ORVIK_REGISTER_KERNELS(StructureTensor2dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::filter
