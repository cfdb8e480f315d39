#pragma once

// The passes of separable Gaussian kernels. Compiled once per instruction set.

#include "siblings/Filtering/GaussianWeights.h"
#include "siblings/Filtering/SeparableStrips.h"

#include "frame/image/BufferType.h"
#include "frame/processor/BaseProcessingAlgorithm.h"
#include "frame/simd/Simd.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace filter { namespace {

/// A vector of sums, as they are or rounded to float.
template<class Sum>
inline void storeSum(Sum* to, typename Lanes<Sum>::type sum)
{
    store(to, sum);
}

inline void storeSum(float* to, Lanes<double>::type sum)
{
    storeNarrow(to, sum);
}

/// Both kernels on a block of samples whose neighbours at distance k lie k * stride away: lines of a tile, or columns of
/// a line. Sums run outwards from the centre.
template<bool Smooth, bool Differentiate, class Sum, class Out>
void filterBlock(const Sum* centre, unsigned long stride, const TypedGaussianWeights<Sum>& weights, Out* smooth,
                 Out* derivative)
{
    typedef typename Lanes<Sum>::type D;
    constexpr unsigned long lanes = Lanes<Sum>::count, nbVectors = 4, step = nbVectors * lanes;
    const unsigned long halfSize = weights.halfSize();
    const Sum* const h = weights.smoothing.data();
    const Sum* const d = weights.derivative.data();
    for (unsigned long x = 0; x < kBlock; x += step) {
        D s[nbVectors], g[nbVectors];
        for (unsigned long i = 0; i < nbVectors; ++i) {
            s[i] = load(centre + x + i * lanes) * h[0];
            g[i] = D{};
        }
        const Sum* before = centre + x;
        const Sum* after = centre + x;
        for (unsigned long k = 1; k <= halfSize; ++k) {
            before -= stride;
            after += stride;
            for (unsigned long i = 0; i < nbVectors; ++i) {
                const D a = load(before + i * lanes), b = load(after + i * lanes);
                if constexpr (Smooth)
                    s[i] += (a + b) * h[k];
                if constexpr (Differentiate)
                    g[i] += (b - a) * d[k];
            }
        }
        for (unsigned long i = 0; i < nbVectors; ++i) {
            if constexpr (Smooth)
                storeSum(smooth + x + i * lanes, s[i]);
            if constexpr (Differentiate)
                storeSum(derivative + x + i * lanes, g[i]);
        }
    }
}

template<class Sum, class Sample>
void widenBlock(Sum* __restrict to, const Sample* __restrict from)
{
    for (unsigned long i = 0; i < kBlock; ++i)
        to[i] = static_cast<Sum>(from[i]);
}

inline void widenBlock(double* to, const float* from)
{
    for (unsigned long i = 0; i < kBlock; i += Lanes<double>::count)
        store(to + i, loadWide(from + i));
}

/// To nearest, half to even, saturated; NaN becomes 0.
template<class Sample, class Sum>
void narrowBlock(Sample* __restrict to, const Sum* __restrict from)
{
    // Added to a number below 2^51 it leaves no bits for the fraction: the low bits of the sum are the rounded number.
    const double integers = 6755399441055744.0;  // 1.5 * 2^52
    const double low = static_cast<double>(std::numeric_limits<Sample>::min());
    const double high = static_cast<double>(std::numeric_limits<Sample>::max());
    for (unsigned long i = 0; i < kBlock; ++i) {
        double v = static_cast<double>(from[i]);
        v = v == v ? v : 0.0;
        v = v > low ? v : low;
        v = (v < high ? v : high) + integers;
        unsigned long bits;
        std::memcpy(&bits, &v, sizeof bits);
        to[i] = static_cast<Sample>(bits);
    }
}

/// What the pass across lines makes of one value per sample; null where it is not wanted.
struct Combination
{
    const CombinedLines *smooth, *derivative;
};

/// Blocks of that many lines, or slices, which lie `distance` apart, as do those before and after that the kernel reads: the
/// sums, from line `line` on.
template<class Sum>
void filterBlocks(const Sum* first, unsigned long distance, unsigned long nbBlocks, const TypedGaussianWeights<Sum>& weights,
                  unsigned long line, unsigned long x, const Combination& to)
{
    Sum* const none = nullptr;
    for (unsigned long i = 0; i < nbBlocks; ++i, ++line) {
        const Sum* const centre = first + i * distance;
        if (to.smooth && to.derivative)
            filterBlock<true, true>(centre, distance, weights, to.smooth->get<Sum>(line) + x,
                                    to.derivative->get<Sum>(line) + x);
        else if (to.smooth)
            filterBlock<true, false>(centre, distance, weights, to.smooth->get<Sum>(line) + x, none);
        else
            filterBlock<false, true>(centre, distance, weights, none, to.derivative->get<Sum>(line) + x);
    }
}

/// A column of blocks, one per line, or slice, that the pass reads, which lie a block apart: the sums of those that go
/// together, the first of them where the kernel's half-size ends.
template<class Sum>
void filterTile(const Sum* tile, unsigned long nbBlocks, const TypedGaussianWeights<Sum>& weights, unsigned long line,
                unsigned long x, const Combination& to)
{
    filterBlocks(tile + weights.halfSize() * kBlock, kBlock, nbBlocks, weights, line, x, to);
}

/// The last pass of a line, with the one rounding to the samples of the result: along it, or, where `stride` tells how far
/// lines are apart, across.
template<bool Differentiate, class Sum, class Sample>
void filterLine(const Sum* line, unsigned long stride, unsigned long n, const TypedGaussianWeights<Sum>& weights,
                void* result)
{
    Sample* const to = static_cast<Sample*>(result);
    for (unsigned long x = 0; x < n; x += kBlock) {
        if constexpr (std::is_same<Sample, float>::value) {
            filterBlock<!Differentiate, Differentiate>(line + x, stride, weights, to + x, to + x);
        } else {
            alignas(64) Sum block[kBlock];
            filterBlock<!Differentiate, Differentiate>(line + x, stride, weights, block, block);
            narrowBlock(to + x, block);
        }
    }
}

template<class Sum>
using LineFilter = void (*)(const Sum*, unsigned long, unsigned long, const TypedGaussianWeights<Sum>&, void*);

/// The last pass for a type of result; null for no type.
template<bool Differentiate, class Sum>
LineFilter<Sum> lineFilterFor(image::eImageBufferType type)
{
    LineFilter<Sum> filter = nullptr;
    image::withSampleType(image::toDataType(type), [&](auto zero) {
        typedef decltype(zero) Sample;
        if constexpr (!std::is_same<Sample, double>::value)
            filter = &filterLine<Differentiate, Sum, Sample>;
    });
    return filter;
}

/// Repeats the first and the last of the line's values in the first lines, as far as the pass along them reads.
template<class Sum>
void extendLines(const Combination& combination, unsigned long nbLines, const processor::ProcessingInfo& info,
                 unsigned long halfSize)
{
    for (const CombinedLines* const lines : {combination.smooth, combination.derivative})
        for (unsigned long i = 0; lines && i < nbLines; ++i) {
            Sum* const line = lines->get<Sum>(i);
            std::fill(line - halfSize, line, line[0]);
            std::fill(line + info.nbData, line + info.nbAlignedData + halfSize, line[info.nbData - 1]);
        }
}

/// The pass across lines, at line `y` of `sizeY` of a strip or slice: where it begins those that go together, these are
/// combined, and otherwise nothing is done. `fill(line, x, to, distance)` makes a block of each of N values that are combined,
/// from column x of a line of the kernel, at `to` and each `distance` further; `tile` has room for these blocks of all lines
/// that are read. `halfSizeX` is that of the pass along lines which follows.
template<class Sum, class Fill>
void combineLines(unsigned long y, unsigned long sizeY, const processor::ProcessingInfo& info,
                  const TypedGaussianWeights<Sum>& weights, unsigned long halfSizeX, Sum* tile, const Fill& fill,
                  const Combination* combinations, unsigned long nbCombinations)
{
    if (y % g_nbLinesAtOnce != 0)
        return;
    const unsigned long nbLines = std::min(g_nbLinesAtOnce, sizeY - y);
    const unsigned long nbRead = nbLines + 2 * weights.halfSize(), distance = nbRead * kBlock;
    for (unsigned long x = 0; x < info.nbAlignedData; x += kBlock) {
        for (unsigned long line = 0; line < nbRead; ++line)
            fill(line, x, tile + line * kBlock, distance);
        for (unsigned long i = 0; i < nbCombinations; ++i)
            filterTile(tile + i * distance, nbLines, weights, 0, x, combinations[i]);
    }
    for (unsigned long i = 0; i < nbCombinations; ++i)
        extendLines<Sum>(combinations[i], nbLines, info, halfSizeX);
}

}  // namespace

}}}  // namespace orvik::imaproc::filter

#include "frame/simd/CloseSet.h"
