// The products of the gradients and the two passes of their smoothing. Compiled once per instruction set.

#include "siblings/Filtering/SeparableFilter.h"

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

}  // namespace

template<core::eInstructionSet Set, class Sum, class Parser>
void StructureTensor2dImgLvl3::combineLines(const Parser& gx, const Parser& gy, const processor::ProcessingInfo& info)
{
    const TypedGaussianWeights<Sum>& weights = kernels<Sum>().y;
    const unsigned long nbLines = std::min(s_nbLinesAtOnce, gx.getNbLines() - info.lineIndex);
    const unsigned long nbRows = nbLines + 2 * weights.halfSize(), product = nbRows * kBlock;
    Sum* const tile = static_cast<Sum*>(m_tile.getDataPtr());
    alignas(64) Sum roomX[kBlock], roomY[kBlock];
    for (unsigned long x = 0; x < info.nbAlignedData; x += kBlock) {
        for (unsigned long row = 0; row < nbRows; ++row) {
            Sum* const to = tile + row * kBlock;
            multiplyBlock(widened(gx.accessBuffer(row) + x, roomX), widened(gy.accessBuffer(row) + x, roomY), to,
                          to + product, to + 2 * product);
        }
        for (unsigned long p = 0; p < 3; ++p)
            for (unsigned long line = 0; line < nbLines; ++line) {
                Sum* const to = combinedLine<Sum>(p, line) + x;
                filterBlock<true, false>(tile + p * product + (weights.halfSize() + line) * kBlock, kBlock, weights, to,
                                         to);
            }
    }
    const unsigned long margin = kernels<Sum>().x.halfSize(), end = info.nbAlignedData + margin;
    for (unsigned long p = 0; p < 3; ++p)
        for (unsigned long line = 0; line < nbLines; ++line)
            extendLine(combinedLine<Sum>(p, line), info.nbData, margin, end);
}

template<class Attribute, core::eInstructionSet Set, class Sum>
bool StructureTensor2dImgLvl3::writeLine(const Sum* line, unsigned long n)
{
    return withParser<Attribute>([&](const auto& out) {
        filterLine<false>(line, n, kernels<Sum>().x, out.accessBuffer());
    });
}

template<class Sample, core::eInstructionSet Set>
BoolResult StructureTensor2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    typedef SumOf<Sample> Sum;
    const auto* const gx = parser<attr::InGxKnlYStrip2d, Sample>();
    const auto* const gy = parser<attr::InGyKnlYStrip2d, Sample>();
    if (!gx || !gy)
        return wrongSampleType();
    // Lines of an output that is an input are overwritten here; the parsers have copied theirs and those below before.
    const unsigned long line = info.lineIndex % s_nbLinesAtOnce, n = info.nbAlignedData;
    if (line == 0)
        combineLines<Set, Sum>(*gx, *gy, info);
    const bool written = writeLine<attr::OutGxGxYStrip2d, Set>(combinedLine<Sum>(0, line), n)
                         && writeLine<attr::OutGyGyYStrip2d, Set>(combinedLine<Sum>(1, line), n)
                         && writeLine<attr::OutGxGyYStrip2d, Set>(combinedLine<Sum>(2, line), n);
    return written ? success() : wrongSampleType();
}

}}}  // namespace orvik::imaproc::filter
