// Local extrema of one line, listed when the lines below it have entered the window. Compiled once per instruction set.

#include "ExtremaLines.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

template<unsigned long N>
using Count = std::integral_constant<unsigned long, N>;

/// Half windows of no more lines are looked at line by line; higher ones are folded by running extrema.
constexpr unsigned long g_maxDirectLines = 4;

/// What a line meets as it enters the window; pointers to the first column.
template<class T>
struct EnteringLine
{
    const T *values, *left, *right;   // oriented; extrema of the half-widths on both sides
    const T* above[g_maxDirectLines];  // the lines above, folded: each, or all in the first
    const T *before, *after;          // folded lines of its block before it, of the block before from the one after it
    T *folded, *prefix, *fold;        // results: the line folded, its block so far, half a window up to it
    T lowestListed;
};

/// Folds a line and marks the columns that beat their line and the lines above, a bit each, a word per block in `open`.
/// `NbDirect` is the number of lines above that are looked at one by one; 0: they are folded.
///
/// What is left of a run beyond the last whole block of four vectors is compared, in its line, with the two next pixels
/// alone, and is beaten only by both together: deliberate.
template<bool Strict, unsigned long NbDirect, class T, class Parser>
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
            const V folded = larger(v, larger(left, right));
            V above = load(line.above[0] + x);
            for (unsigned long k = 1; k < NbDirect; ++k)
                above = larger(above, load(line.above[k] + x));
            const auto passes = (v >= lowest) & (v > above);
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

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult ExtractLocalExtrema2dLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    typedef Sample T;
    const auto* const lines = parser<attr::InKnlYStrip2d, Sample>();
    if (!lines)
        return wrongSampleType();
    const attr::LocalExtremaConfig& config = *value<attr::InLocalExtremaConfig>();
    const attr::eLocalExtremumType type = config.template get<attr::LocalExtremaConfig::LocalExtremumType>();
    const bool minima = attr::isMinima(type), strict = attr::isStrict(type);
    const float threshold = static_cast<float>(config.template get<attr::LocalExtremaConfig::Threshold>());
    T lowestListed;
    if (!getLowestListed(minima, threshold, lowestListed))
        return success();

    const unsigned long n = info.nbAlignedData, lineSize = n + 2 * m_distX;
    const unsigned long wholeBlocks = Set == core::eIS_Generic ? n : n - n % (4 * Lanes<T>::count);
    T* const lowest = static_cast<T*>(m_lowest.getDataPtr());
    T* const fold = static_cast<T*>(m_fold.getDataPtr());
    const auto openOf = [&](unsigned long line) {
        return m_open.data() + line % (m_distY + 1) * m_nbWords;
    };

    const bool isDirect = m_distY <= g_maxDirectLines;
    const auto lineOf = [&](unsigned long k) { return static_cast<T*>(m_lines.getDataPtr(k)); };

    // Lines are counted from the first one of the window at the start of the strip; `line` is in place `i` of its block.
    const auto enter = [&](unsigned long line, const T* raw) {
        const T* values = raw;
        const bool foldable = isFoldable(raw, lineSize);
        if (minima || !foldable || wholeBlocks < n) {
            T* const row = static_cast<T*>(m_row.getDataPtr()) + kBlock;
            orientLine(raw, lineSize + 1, minima, row);
            values = row;
        }
        T* const side = static_cast<T*>(m_side.getDataPtr());
        if (m_distX > 1)
            foldAlong(values, lineSize, m_distX, side);
        const T* const sides = m_distX == 0 ? lowest : m_distX == 1 ? values : side;
        const unsigned long i = m_distY == 0 ? 0 : line % m_distY;
        EnteringLine<T> entering;
        entering.values = values + m_distX;
        entering.left = sides;
        entering.right = m_distX == 0 ? lowest : sides + m_distX + 1;
        entering.lowestListed = lowestListed;
        entering.fold = fold;
        entering.prefix = static_cast<T*>(m_prefix.getDataPtr());
        entering.before = i > 0 ? entering.prefix : lowest;
        entering.after = i + 1 < m_distY ? lineOf(i + 1) : lowest;
        entering.folded = m_distY == 0 ? fold : lineOf(i);
        for (unsigned long k = 0; k < g_maxDirectLines; ++k)
            entering.above[k] = m_distY == 0 ? lowest : isDirect && k < m_distY ? lineOf(k) : fold;
        unsigned long* const open = openOf(line);
        const auto enterAs = [&](auto isStrict, auto nbDirect) {
            enterLine<isStrict.value, nbDirect.value>(entering, n, wholeBlocks, *lines, open);
        };
        const auto enterWith = [&](auto nbDirect) {
            strict ? enterAs(std::true_type(), nbDirect) : enterAs(std::false_type(), nbDirect);
        };
        !isDirect ? enterWith(Count<0>()) : m_distY < 2 ? enterWith(Count<1>()) : m_distY == 2 ? enterWith(Count<2>())
        : m_distY == 3 ? enterWith(Count<3>()) : enterWith(Count<4>());
        if (!foldable)
            closeNearNan(raw, m_distX, wholeBlocks, open);
        if (!isDirect && i + 1 == m_distY)
            for (unsigned long k = m_distY - 1; k-- > 1;)
                for (unsigned long x = 0; x < n; x += Lanes<T>::count)
                    store(lineOf(k) + x, larger(load(lineOf(k) + x), load(lineOf(k + 1) + x)));
    };

    if (info.lineIndex == 0)
        for (unsigned long line = 0; line < 2 * m_distY; ++line)
            enter(line, lines->accessBuffer(line));
    const unsigned long newest = info.lineIndex + 2 * m_distY;
    enter(newest, lines->accessBuffer(2 * m_distY));

    const T* const centre = lines->accessBuffer(m_distY) + m_distX;
    const T* below[g_maxDirectLines] = {m_distY == 0 ? lowest : fold};
    for (unsigned long k = 0; isDirect && k < m_distY; ++k)
        below[k] = lineOf(k);
    const unsigned long* const open = openOf(newest - m_distY);
    const double y = static_cast<double>(lines->getImageYStrip2dWithKernel()->getStripStartOffsetY() + info.lineIndex);
    auto& listed = value<attr::OutPixels2d>()->template access<attr::Pixels2d::Coll>().accessNodes();
    for (unsigned long block = 0; block < n; block += kBlock) {
        if (open[block / kBlock] == 0)
            continue;
        const auto compare = [&](auto nbLines) {
            return notBeaten<nbLines.value>(open[block / kBlock], centre, minima, strict, below, block,
                                            std::min(n, block + kBlock));
        };
        const unsigned long word = !isDirect || m_distY < 2 ? compare(Count<1>()) : m_distY == 2 ? compare(Count<2>())
                                   : m_distY == 3 ? compare(Count<3>()) : compare(Count<4>());
        forEachColumn(word, block, [&](unsigned long x) {
            listed.push_back(m_nodes.next());
            attr::Pixel2d& pixel = *listed.back();
            pixel.set<attr::Pixel2d::X>(static_cast<double>(x));
            pixel.set<attr::Pixel2d::Y>(y);
            pixel.set<attr::Pixel2d::Value>(static_cast<double>(centre[x]));
        });
    }
    return success();
}

}}}  // namespace orvik::imaproc::fd
