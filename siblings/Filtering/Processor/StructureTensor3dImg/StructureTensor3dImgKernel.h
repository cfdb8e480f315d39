#pragma once

// The products of the gradients of volumes, smoothed within slices. Compiled once per instruction set.

#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgLvl3.h"
#include "siblings/Filtering/TensorProducts.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"

#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace filter {

template<class Sample, core::eInstructionSet Set>
BoolResult StructureTensor3dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        const auto* const gx = parser<attr::InGxKnlZStrip3d, Sample>();
        typedef typename std::remove_pointer<decltype(gx)>::type In;
        TensorStrip<In, SumOf<Sample>, 3> made(gx, parser<attr::InGyKnlZStrip3d, Sample>(),
                                               parser<attr::InGzKnlZStrip3d, Sample>());
        const auto typeOf = [](const BaseStripAttribute& out) { return out.getImageBufferType(); };
        made.add(0, 0, plainParser<attr::OutOptGxGxZStrip3d>(), typeOf(*attribute<attr::OutOptGxGxZStrip3d>()));
        made.add(1, 1, plainParser<attr::OutOptGyGyZStrip3d>(), typeOf(*attribute<attr::OutOptGyGyZStrip3d>()));
        made.add(2, 2, plainParser<attr::OutOptGzGzZStrip3d>(), typeOf(*attribute<attr::OutOptGzGzZStrip3d>()));
        made.add(0, 1, plainParser<attr::OutOptGxGyZStrip3d>(), typeOf(*attribute<attr::OutOptGxGyZStrip3d>()));
        made.add(0, 2, plainParser<attr::OutOptGxGzZStrip3d>(), typeOf(*attribute<attr::OutOptGxGzZStrip3d>()));
        made.add(1, 2, plainParser<attr::OutOptGyGzZStrip3d>(), typeOf(*attribute<attr::OutOptGyGzZStrip3d>()));
        return made;
    });
    if (!strip)
        return wrongSampleType();
    const unsigned long sizeY = strip->getGradient(0).getStrip().getNbLinesOfElement();
    const unsigned long y = info.lineIndex % sizeY;
    readLines(info.lineIndex);
    strip->smooth(m_buffers, y, sizeY, info, [&](unsigned long gradient, unsigned long line) {
        return static_cast<const Sample*>(getLine(gradient, y, line));
    });
    return success();
}

}}}  // namespace orvik::imaproc::filter

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace filter {

ORVIK_REGISTER_KERNELS(StructureTensor3dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::filter
