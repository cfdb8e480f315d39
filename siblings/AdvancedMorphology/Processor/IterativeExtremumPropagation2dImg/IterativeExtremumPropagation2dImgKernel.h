#pragma once

// Finds the weak pixels (1) beside strong ones (2 and above) of one strip and spreads from them. Compiled once per
// instruction set.

#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include <algorithm>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace advmorpho {
namespace {

/// Largest value of each column over a line and its neighbours, and of all of them.
inline unsigned char largestOfColumns(const unsigned char* above, const unsigned char* at, const unsigned char* below,
                                      unsigned char* columns, unsigned long n)
{
    typedef typename Lanes<unsigned char>::type V;
    constexpr unsigned long lanes = Lanes<unsigned char>::count;
    V largest = {};
    unsigned long x = 0;
    for (; x + lanes <= n; x += lanes) {
        const V a = load(above + x), b = load(at + x), c = load(below + x);
        V m = a > b ? a : b;
        m = m > c ? m : c;
        store(columns + x, m);
        largest = largest > m ? largest : m;
    }
    unsigned char result = 0;
    for (; x < n; ++x) {
        columns[x] = std::max(std::max(above[x], at[x]), below[x]);
        result = std::max(result, columns[x]);
    }
    for (unsigned long l = 0; l < lanes; ++l)
        result = largest[l] > result ? largest[l] : result;
    return result;
}

/// Whether a block of pixels holds a weak one beside a strong one.
inline bool hasSeed(const unsigned char* at, const unsigned char* columns)
{
    typedef typename Lanes<unsigned char>::type V;
    const V weak = V{} + static_cast<unsigned char>(1);
    const V left = load(columns - 1), middle = load(columns), right = load(columns + 1);
    V m = left > middle ? left : middle;
    m = m > right ? m : right;
    return anyOf((load(at) == weak) & (m > weak));
}

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult IterativeExtremumPropagation2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo&)
{
    const image::OutputImageYStrip2d& strip = *value<attr::OutYStrip2d>();
    const unsigned long sizeX = strip.getSizeX(), nbLines = strip.getNbLines();
    const auto lineAt = [&](unsigned long y) { return static_cast<unsigned char*>(strip.accessLine(y)); };
    WeakSpreader spreader(sizeX, 0, nbLines, lineAt);

    // A margin of 0 on both sides, so that blocks need no test for the edges of the image.
    image::TypedOwnBuffer room;
    room.init(sizeX + 2, eDT_UInt8);
    unsigned char* const columns = static_cast<unsigned char*>(room.getDataPtr()) + 1;
    constexpr unsigned long lanes = Lanes<unsigned char>::count;
    unsigned char largest = 0;
    for (unsigned long y = 0; y < nbLines; ++y) {
        const unsigned char* const at = lineAt(y);
        const unsigned char* const above = y > 0 ? lineAt(y - 1) : at;
        const unsigned char* const below = y + 1 < nbLines ? lineAt(y + 1) : at;
        const unsigned char ofLine = largestOfColumns(above, at, below, columns, sizeX);
        largest = std::max(largest, ofLine);
        if (ofLine < 2)
            continue;
        for (unsigned long x = 0; x < sizeX; x += lanes) {
            if (x + lanes <= sizeX && !hasSeed(at + x, columns + x))
                continue;
            for (unsigned long i = x; i < std::min(x + lanes, sizeX); ++i)
                if (at[i] == 1 && std::max(std::max(columns[i - 1], columns[i]), columns[i + 1]) > 1)
                    spreader.spreadFrom(i, y);
        }
    }
    value<attr::OutStatsResult>()->template set<attr::StatsResult::Max>(largest);
    return success();
}

}}}  // namespace orvik::imaproc::advmorpho

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_REGISTER_KERNELS(IterativeExtremumPropagation2dImgLvl3, UInt8KernelTypes)

}}}  // namespace orvik::imaproc::advmorpho
