#pragma once

// The classes of the pixels of one line. Compiled once per instruction set.

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl3.h"
#include "Processor/CannyEdges2dImg/CannyClasses.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include <algorithm>
#include <cstring>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What the kernel works with on one strip.
template<class Gradient, class Out, class Thresholds>
struct Strip
{
    const Gradient *gx, *gy;
    const Out* out;
    Thresholds thresholds;
};

template<class G, class O, class T>
Strip(const G*, const G*, const O*, T) -> Strip<G, O, T>;

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult CannyEdges2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    return processFunction<Sample, typename MagnitudeOf<Sample>::type, Set>(info);
}

template<class Sample, class Magnitude, core::eInstructionSet Set>
BoolResult CannyEdges2dImgLvl3::processFunction(const processor::ProcessingInfo& info)
{
    typedef attr::CannyThresholds Limits;
    const auto* const strip = onceAStrip(info, [&] {
        const Limits& limits = *value<attr::InCannyThresholds>();
        return Strip{parser<attr::InGxKnlYStrip2d, Sample>(), parser<attr::InGyKnlYStrip2d, Sample>(),
                     parser<attr::OutYStrip2d, unsigned char>(),
                     SquaredThresholds<Sample>(limits.get<Limits::LowThreshold>(), limits.get<Limits::HighThreshold>())};
    });
    if (!strip)
        return wrongSampleType();
    const auto &gx = *strip->gx, &gy = *strip->gy;

    // The lines are readable to the end of the last whole block and its margins.
    const unsigned long n = info.nbAlignedData, rowSize = n + 2;
    image::FragHybridBuffer& rows = m_magnitudes[info.partIndex];
    const auto row = [&](unsigned long r) { return static_cast<Magnitude*>(rows.getDataPtr(r)); };
    const auto computeRow = [&](unsigned long r, unsigned long begin, unsigned long end) {
        computeGradientMagnitudeSquare(gx.accessBuffer(r) + begin, gy.accessBuffer(r) + begin, row(r) + begin, end - begin);
    };
    if (info.lineIndex == 0) {
        rows.init(DataTypeOf<Magnitude>::value, rowSize, 3);
        computeRow(0, 0, rowSize);
        computeRow(1, 0, rowSize);
    } else {
        rows.rollUpFragments();
    }

    const SquaredThresholds<Sample>& thresholds = strip->thresholds;
    for (unsigned long i = 0; i < n; i += kBlock) {
        // Memory is asked for, the row below computed and the line classified in turns, so that they overlap.
        gx.prefetchNext(i, kBlock);
        gy.prefetchNext(i, kBlock);
        computeRow(2, i > 0 ? i + kBlock : 0, std::min(i + 2 * kBlock, rowSize));
        unsigned char* const classes = strip->out->accessBuffer() + i;
        if (!mayHaveCandidate(row(1) + i + 1, thresholds)) {
            std::memset(classes, 0, kBlock);
            continue;
        }
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): all of it is set below, once a block
        Neighbourhood<Sample, Magnitude> at;
        for (unsigned long r = 0; r < 3; ++r) {
            at.rows[r] = row(r) + i;
            at.gx[r] = gx.accessBuffer(r) + i;
            at.gy[r] = gy.accessBuffer(r) + i;
        }
        classifyBlock(at, thresholds, classes);
    }
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(CannyEdges2dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
