// The classes of the pixels of one line. Compiled once per instruction set.

#include "CannyClasses.h"

namespace orvik { namespace imaproc { namespace fd {

template<class Sample, core::eInstructionSet Set>
BoolResult CannyEdges2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    return processFunction<Sample, typename MagnitudeOf<Sample>::type, Set>(info);
}

template<class Sample, class Magnitude, core::eInstructionSet Set>
BoolResult CannyEdges2dImgLvl3::processFunction(const processor::ProcessingInfo& info)
{
    const auto* const gx = parser<attr::InGxKnlYStrip2d, Sample>();
    const auto* const gy = parser<attr::InGyKnlYStrip2d, Sample>();
    const auto* const out = parser<attr::OutYStrip2d, unsigned char>();
    if (!gx || !gy || !out)
        return wrongSampleType();

    // The lines are readable to the end of the last whole block and its margins.
    const unsigned long n = info.nbAlignedData, rowSize = n + 2;
    image::FragHybridBuffer& rows = *m_magnitudes[info.partIndex];
    const auto row = [&](unsigned long r) { return static_cast<Magnitude*>(rows.getDataPtr(r)); };
    const auto computeRow = [&](unsigned long r, unsigned long begin, unsigned long end) {
        computeGradientMagnitudeSquare(gx->accessBuffer(r) + begin, gy->accessBuffer(r) + begin, row(r) + begin,
                                       end - begin);
    };
    if (info.lineIndex == 0) {
        rows.init(DataTypeOf<Magnitude>::value, rowSize, 3);
        computeRow(0, 0, rowSize);
        computeRow(1, 0, rowSize);
    } else {
        rows.rollUpFragments();
    }

    const attr::CannyThresholds& record = *value<attr::InCannyThresholds>();
    const SquaredThresholds<Sample> thresholds(record.template get<attr::CannyThresholds::LowThreshold>(),
                                               record.template get<attr::CannyThresholds::HighThreshold>());
    for (unsigned long i = 0; i < n; i += kBlock) {
        // Memory is asked for, the row below computed and the line classified in turns, so that they overlap.
        gx->prefetchNext(i, kBlock);
        gy->prefetchNext(i, kBlock);
        computeRow(2, i > 0 ? i + kBlock : 0, std::min(i + 2 * kBlock, rowSize));
        unsigned char* const classes = out->accessBuffer() + i;
        if (!mayHaveCandidate(row(1) + i + 1, thresholds)) {
            std::memset(classes, 0, kBlock);
            continue;
        }
        Neighbourhood<Sample, Magnitude> at;
        for (unsigned long r = 0; r < 3; ++r) {
            at.rows[r] = row(r) + i;
            at.gx[r] = gx->accessBuffer(r) + i;
            at.gy[r] = gy->accessBuffer(r) + i;
        }
        classifyBlock(at, thresholds, classes);
    }
    return success();
}

}}}  // namespace orvik::imaproc::fd
