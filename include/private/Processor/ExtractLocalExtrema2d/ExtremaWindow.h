#pragma once

// The window that a search for local extrema slides over a strip. Samples enter in the order of the elements that it slides
// along, and leave, as extrema or not, when half a window of later ones is there. An element is a line of a plane. In a volume
// it is a slice, of whose lines each has a window; what is before and after its samples in other lines of the slice is told
// from outside.

#include "Processor/ExtractLocalExtrema2d/ExtremaBuffers.h"
#include "Processor/ExtractLocalExtrema2d/ExtremaLines.h"

#include "frame/attr/Records.h"
#include "frame/core/InstructionSet.h"
#include "frame/simd/Simd.h"

#include <algorithm>
#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

template<unsigned long N>
using Count = std::integral_constant<unsigned long, N>;

/// Half windows of no more lines are looked at line by line; higher ones are folded by running extrema.
constexpr unsigned long g_maxDirectLines = 4;

/// What is looked for.
template<class T>
struct ExtremaKind
{
    bool minima, strict;
    bool isListed;   // whether any value passes the threshold
    T lowestListed;  // the lowest oriented one that does
};

template<class T>
ExtremaKind<T> makeKind(const attr::LocalExtremaConfig& config)
{
    const attr::eLocalExtremumType type = config.get<attr::LocalExtremaConfig::LocalExtremumType>();
    const float threshold = static_cast<float>(config.get<attr::LocalExtremaConfig::Threshold>());
    ExtremaKind<T> kind{attr::isMinima(type), attr::isStrict(type), false, T()};
    kind.isListed = getLowestListed(kind.minima, threshold, kind.lowestListed);
    return kind;
}

/// Samples of a run of `n` that are in whole blocks of four vectors; plain code has no blocks.
template<class T, core::eInstructionSet Set>
unsigned long inWholeBlocks(unsigned long n)
{
    return Set == core::eIS_Generic ? n : n - n % (4 * Lanes<T>::count);
}

/// A line of the element that enters the window, and the extrema of what is before and after each of its samples: in the line,
/// and in other lines of the element. Oriented; pointers to the first column.
template<class T>
struct ElementLine
{
    const T *values, *left, *right;
    const T *linesBefore, *linesAfter;  // null where the element is one line
};

/// What such a line meets in the window.
template<class T>
struct EnteringLine : ElementLine<T>
{
    const T* above[g_maxDirectLines];  // the lines above, folded: each, or all in the first
    const T *before, *after;           // folded lines of its block before it, of the block before from the one after it
    T *folded, *prefix, *fold;         // results: the line folded, its block so far, half a window up to it
    T lowestListed;
};

/// Folds a line and marks the columns that beat their line and the lines above, a bit each, a word per block in `open`.
/// `NbDirect` is the number of lines above that are looked at one by one; 0: they are folded. `HasLines`: whether there are
/// other lines in the element.
///
/// What is left of a run beyond the last whole block of four vectors is compared, in its line, with the two next pixels
/// alone, and is beaten only by both together: deliberate.
template<bool Strict, unsigned long NbDirect, bool HasLines, class T, class Parser>
void enterLine(const EnteringLine<T>& line, unsigned long n, unsigned long wholeBlocks, const Parser& lines,
               unsigned long* open)
{
    typedef typename Lanes<T>::type V;
    const V lowest = V{} + line.lowestListed;
    for (unsigned long block = 0; block < n; block += kBlock) {
        unsigned long word = 0;
        lines.prefetchNext(block, kBlock);
        for (unsigned long x = block; x < std::min(n, block + kBlock); x += Lanes<T>::count) {
            const V v = load(line.values + x), left = load(line.left + x), right = load(line.right + x);
            V folded = larger(v, larger(left, right)), above = load(line.above[0] + x);
            for (unsigned long k = 1; k < NbDirect; ++k)
                above = larger(above, load(line.above[k] + x));
            auto passes = (v >= lowest) & (v > above);
            if constexpr (HasLines) {
                const V linesBefore = load(line.linesBefore + x), linesAfter = load(line.linesAfter + x);
                folded = larger(folded, larger(linesBefore, linesAfter));
                passes &= (v > linesBefore) & (Strict ? v > linesAfter : v >= linesAfter);
            }
            unsigned long bits;
            if (x < wholeBlocks) {
                bits = bitsOf<T>(passes & (v > left) & (Strict ? v > right : v >= right));
            } else {
                const V before = load(line.values + x - 1), after = load(line.values + x + 1);
                bits = bitsOf<T>(passes & ~((before >= v) & (Strict ? after >= v : after > v)));
            }
            if (n - x < Lanes<T>::count)
                bits &= (1ul << (n - x)) - 1;
            store(line.folded + x, folded);
            if constexpr (NbDirect == 0) {
                const V prefix = larger(folded, load(line.before + x));
                store(line.prefix + x, prefix);
                store(line.fold + x, larger(prefix, load(line.after + x)));
            }
            word |= bits << (x - block);
        }
        open[block / kBlock] = word;
    }
}

/// Calls f with the column of each marked pixel.
template<class F>
void forEachColumn(unsigned long word, unsigned long block, F&& f)
{
    for (; word != 0; word &= word - 1)
        f(block + static_cast<unsigned long>(__builtin_ctzl(word)));
}

/// A NaN in the line hinders all pixels that it is a neighbour of, since nothing beats or ties with it.
template<class T>
void closeNearNan(const T* values, unsigned long dist, unsigned long end, unsigned long* open)
{
    for (unsigned long block = 0; block < end; block += kBlock)
        forEachColumn(open[block / kBlock], block, [&](unsigned long x) {
            const T* const window = values + x;
            if (x < end && std::any_of(window, window + 2 * dist + 1, [](T value) { return value != value; }))
                open[block / kBlock] &= ~(1ul << (x - block));
        });
}

/// Of the marked pixels of a block, those that the lines below, `NbLines` of them or all folded in one, do not beat.
template<unsigned long NbLines, class T>
unsigned long notBeaten(unsigned long word, const T* centre, bool minima, bool strict, const T* const* below,
                        unsigned long block, unsigned long end)
{
    typedef typename Lanes<T>::type V;
    constexpr unsigned long lanes = ~0ul >> (64 - Lanes<T>::count);
    unsigned long kept = 0;
    for (unsigned long x = block; x < end; x += Lanes<T>::count) {
        if ((word >> (x - block) & lanes) == 0)
            continue;
        V v = load(centre + x), limit = load(below[0] + x);
        if (minima)
            v = complement(v);
        for (unsigned long k = 1; k < NbLines; ++k)
            limit = larger(limit, load(below[k] + x));
        kept |= (strict ? bitsOf<T>(v > limit) : bitsOf<T>(v >= limit)) << (x - block);
    }
    return word & kept;
}

/// `n` samples of each line are looked for, the first `wholeBlocks` of them in whole blocks of four vectors.
template<class T>
class ExtremaWindow
{
public:
    ExtremaWindow(ExtremaScratch& scratch, ExtremaBuffers& buffers, const ExtremaKind<T>& kind, unsigned long n,
                  unsigned long wholeBlocks)
        : m_scratch(scratch), m_buffers(buffers), m_kind(kind), m_n(n), m_wholeBlocks(wholeBlocks),
          m_height(buffers.halfHeight), m_isDirect(buffers.halfHeight <= g_maxDirectLines),
          m_lowest(static_cast<const T*>(scratch.lowest.getDataPtr())), m_fold(static_cast<T*>(buffers.fold.getDataPtr()))
    {
    }

    /// A line with its margins, and one sample more, enters; `lines` is asked for the next one meanwhile.
    template<class Parser>
    void enter(const T* raw, const Parser& lines)
    {
        const unsigned long width = m_scratch.halfWidth, lineSize = m_n + 2 * width;
        const bool foldable = isFoldable(raw, lineSize);
        const T* const values = m_kind.minima || !foldable || m_wholeBlocks < m_n ? orient(raw, lineSize + 1) : raw;
        T* const side = static_cast<T*>(m_scratch.side.getDataPtr());
        if (width > 1)
            foldAlong(values, lineSize, width, side);
        const T* const sides = width == 0 ? m_lowest : width == 1 ? values : side;
        enterOriented<false>({values + width, sides, width == 0 ? m_lowest : sides + width + 1, nullptr, nullptr}, lines);
        if (!foldable)
            closeNearNan(raw);
    }

    /// A line of an element of several enters: its samples as orientLine makes them, and the extrema of such samples that are
    /// in the window, in the line and in the others of the element. Follow it by `closeNearNan` when the line holds a NaN.
    template<class Parser>
    void enterElement(const ElementLine<T>& line, const Parser& lines)
    {
        enterOriented<true>(line, lines);
    }

    /// For the line that entered last; `raw` is that line as it was read, with its margins.
    void closeNearNan(const T* raw) { fd::closeNearNan(raw, m_scratch.halfWidth, m_wholeBlocks, openOf(m_nbEntered - 1)); }

    /// Calls f with the columns of the line `halfHeight` lines before the last one that entered which are extrema; `centre`
    /// is that line as it was read.
    template<class F>
    void forEachExtremum(const T* centre, F&& f) const
    {
        const T* below[g_maxDirectLines] = {m_height == 0 ? m_lowest : m_fold};
        for (unsigned long k = 0; m_isDirect && k < m_height; ++k)
            below[k] = lineOf(k);
        const unsigned long* const open = openOf(m_nbEntered - 1 - m_height);
        for (unsigned long block = 0; block < m_n; block += kBlock) {
            if (open[block / kBlock] == 0)
                continue;
            unsigned long word = 0;
            withDirectLines([&](auto nbLines) {
                constexpr unsigned long nb = nbLines.value == 0 ? 1 : nbLines.value;  // folded in one
                word = notBeaten<nb>(open[block / kBlock], centre, m_kind.minima, m_kind.strict, below, block,
                                     std::min(m_n, block + kBlock));
            });
            forEachColumn(word, block, f);
        }
    }

private:
    T* lineOf(unsigned long k) const { return static_cast<T*>(m_buffers.lines.getDataPtr(k)); }
    unsigned long* openOf(unsigned long line) const
    {
        return m_buffers.open.data() + line % (m_height + 1) * m_buffers.nbWords;
    }

    /// Calls f with the number of lines that are looked at one by one, as a constant: 1 where there is none; 0 for folds.
    template<class F>
    void withDirectLines(const F& f) const
    {
        !m_isDirect     ? f(Count<0>())
        : m_height < 2  ? f(Count<1>())
        : m_height == 2 ? f(Count<2>())
        : m_height == 3 ? f(Count<3>())
                        : f(Count<4>());
    }

    const T* orient(const T* raw, unsigned long size) const
    {
        T* const row = static_cast<T*>(m_scratch.row.getDataPtr()) + kBlock;
        orientLine(raw, size, m_kind.minima, row);
        return row;
    }

    /// Elements are counted from the first one of the window at the start of the strip; this one is in place `i` of its
    /// block of half a window.
    template<bool HasLines, class Parser>
    void enterOriented(const ElementLine<T>& line, const Parser& lines)
    {
        const unsigned long i = m_height == 0 ? 0 : m_nbEntered % m_height;
        EnteringLine<T> entering;
        static_cast<ElementLine<T>&>(entering) = line;
        entering.lowestListed = m_kind.lowestListed;
        entering.fold = m_fold;
        entering.prefix = static_cast<T*>(m_buffers.prefix.getDataPtr());
        entering.before = i > 0 ? entering.prefix : m_lowest;
        entering.after = i + 1 < m_height ? lineOf(i + 1) : m_lowest;
        entering.folded = m_height == 0 ? m_fold : lineOf(i);
        for (unsigned long k = 0; k < g_maxDirectLines; ++k)
            entering.above[k] = m_height == 0 ? m_lowest : m_isDirect && k < m_height ? lineOf(k) : m_fold;
        withDirectLines([&](auto nbDirect) {
            if (m_kind.strict)
                enterLine<true, nbDirect.value, HasLines>(entering, m_n, m_wholeBlocks, lines, openOf(m_nbEntered));
            else
                enterLine<false, nbDirect.value, HasLines>(entering, m_n, m_wholeBlocks, lines, openOf(m_nbEntered));
        });
        if (!m_isDirect && i + 1 == m_height)
            foldBlockFromItsEnd();
        ++m_nbEntered;
    }

    void foldBlockFromItsEnd() const
    {
        for (unsigned long k = m_height - 1; k-- > 1;)
            for (unsigned long x = 0; x < m_n; x += Lanes<T>::count)
                store(lineOf(k) + x, larger(load(lineOf(k) + x), load(lineOf(k + 1) + x)));
    }

    ExtremaScratch& m_scratch;
    ExtremaBuffers& m_buffers;
    const ExtremaKind<T> m_kind;
    const unsigned long m_n, m_wholeBlocks, m_height;
    const bool m_isDirect;
    const T* const m_lowest;
    T* const m_fold;
    unsigned long m_nbEntered = 0;
};

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
