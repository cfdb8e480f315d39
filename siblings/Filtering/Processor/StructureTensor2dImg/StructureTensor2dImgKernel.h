#pragma once

// The products of the gradients and the two passes of their smoothing. Compiled once per instruction set.

#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl3.h"
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

/// What products of gradients of a type are formed and summed in.
template<class Sample>
using SumOf = typename std::conditional<std::is_same<Sample, float>::value, float, double>::type;

template<class Sum>
void multiplyBlock(const Sum* gx, const Sum* gy, Sum* xx, Sum* yy, Sum* xy)
{
    for (unsigned long i = 0; i < kBlock; i += Lanes<Sum>::count) {
        const typename Lanes<Sum>::type x = load(gx + i), y = load(gy + i);
        store(xx + i, x * x);
        store(yy + i, y * y);
        store(xy + i, x * y);
    }
}

/// What the kernel works with on one strip.
template<class In, class Sum>
struct Strip
{
    const In *gx, *gy;
    const PlainStripParser* out[3];  // xx, yy, xy
    LineFilter<Sum> write[3];
};

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult StructureTensor2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    typedef SumOf<Sample> Sum;
    const auto* const strip = onceAStrip(info, [&] {
        const auto* const gx = parser<attr::InGxKnlYStrip2d, Sample>();
        const auto filterFor = [](const BaseStripAttribute& out) {
            return lineFilterFor<false, Sum>(out.getImageBufferType());
        };
        return Strip<typename std::remove_pointer<decltype(gx)>::type, Sum>{
            gx,
            parser<attr::InGyKnlYStrip2d, Sample>(),
            {plainParser<attr::OutGxGxYStrip2d>(), plainParser<attr::OutGyGyYStrip2d>(),
             plainParser<attr::OutGxGyYStrip2d>()},
            {filterFor(*attribute<attr::OutGxGxYStrip2d>()), filterFor(*attribute<attr::OutGyGyYStrip2d>()),
             filterFor(*attribute<attr::OutGxGyYStrip2d>())}};
    });
    if (!strip)
        return wrongSampleType();
    // Lines of an output that is an input are overwritten here; the parsers have copied theirs and those below before.
    const auto &gx = *strip->gx, &gy = *strip->gy;
    const TensorKernels<Sum>& weights = kernels<Sum>();
    const Combination products[] = {{&m_combined[0], nullptr}, {&m_combined[1], nullptr}, {&m_combined[2], nullptr}};
    alignas(64) Sum roomX[kBlock], roomY[kBlock];
    combineLines(
        info.lineIndex, gx.getStrip().getNbLines(), info, weights.y, weights.x.halfSize(),
        static_cast<Sum*>(m_tile.getDataPtr()),
        [&](unsigned long line, unsigned long x, Sum* to, unsigned long distance) {
            multiplyBlock(widened(gx.accessBuffer(line) + x, roomX), widened(gy.accessBuffer(line) + x, roomY), to,
                          to + distance, to + 2 * distance);
        },
        products, 3);
    for (unsigned long p = 0; p < 3; ++p)
        strip->write[p](m_combined[p].getOfStrip<Sum>(info.lineIndex), 1, info.nbAlignedData, weights.x,
                        strip->out[p]->accessSamples());
    return success();
}

}}}  // namespace orvik::imaproc::filter

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace filter {

ORVIK_REGISTER_KERNELS(StructureTensor2dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::filter
