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

/// What the pass across elements makes of one value per sample; null where it is not wanted.
struct Combination
{
    const CombinedLines *smooth, *derivative;
};

/// Blocks of that many elements, which lie `distance` apart, as do those before and after that the kernel reads: the sums.
template<class Sum>
void filterElements(const Sum* first, unsigned long distance, unsigned long nbElements,
                    const TypedGaussianWeights<Sum>& weights, unsigned long line, unsigned long nbRows, unsigned long x,
                    const Combination& to)
{
    Sum* const none = nullptr;
    for (unsigned long i = 0; i < nbElements; ++i, line += nbRows) {
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

/// A column of blocks, one per element that the pass reads, which lie a block apart: the sums of those elements that go
/// together, the first of them where the kernel's half-size ends.
template<class Sum>
void filterTile(const Sum* tile, unsigned long nbElements, const TypedGaussianWeights<Sum>& weights, unsigned long line,
                unsigned long nbRows, unsigned long x, const Combination& to)
{
    filterElements(tile + weights.halfSize() * kBlock, kBlock, nbElements, weights, line, nbRows, x, to);
}

/// The pass along a line, with the one rounding to the samples of the result.
template<bool Differentiate, class Sum, class Sample>
void filterLine(const Sum* line, unsigned long n, const TypedGaussianWeights<Sum>& weights, void* result)
{
    Sample* const to = static_cast<Sample*>(result);
    for (unsigned long x = 0; x < n; x += kBlock) {
        if constexpr (std::is_same<Sample, float>::value) {
            filterBlock<!Differentiate, Differentiate>(line + x, 1, weights, to + x, to + x);
        } else {
            alignas(64) Sum block[kBlock];
            filterBlock<!Differentiate, Differentiate>(line + x, 1, weights, block, block);
            narrowBlock(to + x, block);
        }
    }
}

template<class Sum>
using LineFilter = void (*)(const Sum*, unsigned long, const TypedGaussianWeights<Sum>&, void*);

/// The pass along lines for a type of result; null for no type.
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

/// Repeats the first and the last of `sizeX` values of the first lines, as far as the pass along them reads.
template<class Sum>
void extendLines(const CombinedLines& lines, unsigned long nbLines, unsigned long sizeX, unsigned long alignedSizeX,
                 unsigned long halfSize)
{
    for (unsigned long i = 0; i < nbLines; ++i) {
        Sum* const line = lines.get<Sum>(i);
        std::fill(line - halfSize, line, line[0]);
        std::fill(line + sizeX, line + alignedSizeX + halfSize, line[sizeX - 1]);
    }
}

/// The pass across the elements of a strip, at its lines that begin elements which go together, of which it combines all
/// lines; nothing at other lines. `fill(element, row, x, to, distance)` makes a block of each value that is combined, from
/// column x of a line of the parser's window, at `to` and each `distance` further; `tile` has room for these blocks of all
/// elements of a window. `halfSizeX` is that of the pass along lines which follows.
template<class Sum, unsigned long N, class Fill>
void combineElements(const image::BaseImageFragment& strip, const processor::ProcessingInfo& info,
                     const TypedGaussianWeights<Sum>& weights, unsigned long halfSizeX, Sum* tile, const Fill& fill,
                     const Combination (&combinations)[N])
{
    const unsigned long nbRows = strip.getNbLinesOfElement();
    if (info.lineIndex % (g_nbLinesAtOnce * nbRows) != 0)
        return;
    const unsigned long nbElements = std::min(g_nbLinesAtOnce, strip.getNbElements() - info.lineIndex / nbRows);
    const unsigned long nbRead = nbElements + 2 * weights.halfSize(), distance = nbRead * kBlock;
    for (unsigned long row = 0; row < nbRows; ++row)
        for (unsigned long x = 0; x < info.nbAlignedData; x += kBlock) {
            for (unsigned long element = 0; element < nbRead; ++element)
                fill(element, row, x, tile + element * kBlock, distance);
            for (unsigned long i = 0; i < N; ++i)
                filterTile(tile + i * distance, nbElements, weights, row, nbRows, x, combinations[i]);
        }
    for (const Combination& to : combinations)
        for (const CombinedLines* const lines : {to.smooth, to.derivative})
            if (lines)
                extendLines<Sum>(*lines, nbElements * nbRows, info.nbData, info.nbAlignedData, halfSizeX);
}

}  // namespace

}}}  // namespace orvik::imaproc::filter

#include "frame/simd/CloseSet.h"
