#pragma once

// The lines of the slice that enters the window of a volume, with the extrema of what is before and after each of their samples
// in the slice. Lines are folded along x when they are read, and by running extrema along y.

#include "Processor/ExtractLocalExtrema2d/ExtremaWindow.h"
#include "Processor/ExtractLocalExtrema3d/VolumeExtremaBuffers.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

/// `n` samples of each line are looked for.
template<class T>
class SliceLines
{
public:
    SliceLines(const ExtremaScratch& scratch, SliceExtremaBuffers& buffers, bool minima, unsigned long n)
        : m_buffers(buffers), m_lowest(static_cast<const T*>(scratch.lowest.getDataPtr())), m_minima(minima), m_n(n),
          m_width(scratch.halfWidth), m_height(buffers.halfHeight)
    {
    }

    /// A slice begins: there is nothing above its first line.
    void begin()
    {
        m_nbEntered = 0;
        for (unsigned long k = 0; k < m_height; ++k)
            std::copy_n(m_lowest, m_n, at(m_buffers.lines, k));
    }

    /// The next line, with its margins and one sample more, as it was read; beyond the last one, the border.
    void enter(const T* raw)
    {
        const unsigned long place = m_nbEntered % (m_height + 1), lineSize = m_n + 2 * m_width;
        m_buffers.haveNan[place] = !isFoldable(raw, lineSize);
        T* const row = rowAt(place);
        orientLine(raw, lineSize + 1, m_minima, row);
        if (m_width > 1)
            foldAlong(row, lineSize, m_width, at(m_buffers.sides, place));
        if (m_height > 0)
            foldAcross(withSides(place));
        ++m_nbEntered;
    }

    /// The line half a window of lines before the last one that entered.
    ElementLine<T> line() const
    {
        ElementLine<T> line = withSides(placeOfLine());
        const unsigned long i = m_nbEntered - 1 - m_height;
        line.linesBefore = m_height == 0 || i == 0 ? m_lowest : foldUpTo(i - 1);
        line.linesAfter = m_height == 0 ? m_lowest : foldUpTo(m_nbEntered - 1);
        return line;
    }
    /// Whether it has samples that folds leave out: NaN, or lower than the lowest finite value.
    bool hasNan() const { return m_buffers.haveNan[placeOfLine()] != 0; }

private:
    static T* at(const image::FragHybridBuffer& lines, unsigned long i) { return static_cast<T*>(lines.getDataPtr(i)); }
    T* rowAt(unsigned long place) const { return at(m_buffers.rows, place) + kBlock; }
    T* foldUpTo(unsigned long line) const { return at(m_buffers.folds, line % (m_height + 2)); }
    unsigned long placeOfLine() const { return (m_nbEntered - 1 - m_height) % (m_height + 1); }

    ElementLine<T> withSides(unsigned long place) const
    {
        const T* const row = rowAt(place);
        const T* const sides = m_width == 0 ? m_lowest : m_width == 1 ? row : at(m_buffers.sides, place);
        return {row + m_width, sides, m_width == 0 ? m_lowest : sides + m_width + 1, nullptr, nullptr};
    }

    /// Running extrema of half a window of lines: those of the current block so far, and of the block before from the line
    /// after this one's place.
    void foldAcross(const ElementLine<T>& line) const
    {
        const unsigned long i = m_nbEntered % m_height;
        T *const folded = at(m_buffers.lines, i), *const prefix = static_cast<T*>(m_buffers.prefix.getDataPtr());
        const T* const before = i > 0 ? prefix : m_lowest;
        const T* const after = i + 1 < m_height ? at(m_buffers.lines, i + 1) : m_lowest;
        T* const fold = foldUpTo(m_nbEntered);
        for (unsigned long x = 0; x < m_n; x += Lanes<T>::count) {
            const auto lineFold = larger(load(line.values + x), larger(load(line.left + x), load(line.right + x)));
            const auto upTo = larger(lineFold, load(before + x));
            store(folded + x, lineFold);
            store(prefix + x, upTo);
            store(fold + x, larger(upTo, load(after + x)));
        }
        if (i + 1 == m_height)
            for (unsigned long k = m_height - 1; k-- > 1;)
                for (unsigned long x = 0; x < m_n; x += Lanes<T>::count)
                    store(at(m_buffers.lines, k) + x,
                          larger(load(at(m_buffers.lines, k) + x), load(at(m_buffers.lines, k + 1) + x)));
    }

    SliceExtremaBuffers& m_buffers;
    const T* const m_lowest;
    const bool m_minima;
    const unsigned long m_n, m_width, m_height;
    unsigned long m_nbEntered = 0;
};

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
