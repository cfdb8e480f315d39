#pragma once

#include "frame/image/Buffers.h"
#include "frame/image/Strips.h"

namespace orvik { namespace imaproc { namespace filter {

/// Lines that go through the pass across lines together: what they share is made once.
constexpr unsigned long g_nbLinesAtOnce = 8;
/// Strips of fewer lines spend too much on the lines of their margins.
constexpr unsigned long g_minStripLines = 4 * g_nbLinesAtOnce;

/// Margins of strips of a plane for a Gaussian kernel across their lines: its half-size, and behind, for the lines that go
/// together, g_nbLinesAtOnce - 1 more. Lines farther than the plane is high are all the same one; its kernel is folded there.
image::StripMargins makeGaussianMargins(double stdDev, double coverage, const image::BaseImage& plane);

/// False, with the half-size, for a strip whose margins are not those of a kernel of that half-size.
BoolResult checkGaussianMargins(const image::BaseImageFragment& strip, unsigned long halfSize);

/// Sums of the pass across lines or slices, g_nbLinesAtOnce lines of them, with the margins of the pass along lines.
class CombinedLines
{
public:
    /// For lines of `sizeX` values, a whole number of blocks, and a kernel of `halfSize` along them.
    void init(eDataType type, unsigned long sizeX, unsigned long halfSize, unsigned long nbLines = g_nbLinesAtOnce);
    /// Value 0 of a line; lies as aligned vectors do.
    template<class Sum>
    Sum* get(unsigned long line) const
    {
        return static_cast<Sum*>(m_lines.getDataPtr(line, m_startX));
    }
    /// The same by the line's number in the strip.
    template<class Sum>
    Sum* getOfStrip(unsigned long line) const
    {
        return get<Sum>(line % m_lines.getNbFragments());
    }

private:
    image::FragHybridBuffer m_lines;
    unsigned long m_startX = 0;  // of value 0 in a line
};

}}}  // namespace orvik::imaproc::filter
