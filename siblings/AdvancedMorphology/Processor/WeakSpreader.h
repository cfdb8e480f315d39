#pragma once

#include "siblings/AdvancedMorphology/Neighborhood.h"

#include "frame/attr/Declarations.h"

#include <vector>

namespace orvik { namespace imaproc { namespace advmorpho {

/// Lines (y, z) of unsigned bytes that are read and written: those of a plane, of a volume, or of a strip of one.
struct ByteLines
{
    unsigned long sizeX, sizeY, sizeZ;
    unsigned char* origin;
    long strideY, strideZ;  // bytes

    unsigned char* at(unsigned long y, unsigned long z) const
    {
        return origin + static_cast<long>(y) * strideY + static_cast<long>(z) * strideZ;
    }
};

ByteLines linesOf(image::BaseImage& image);
ByteLines linesOf(const image::OutputImageYStrip2d& strip);
ByteLines linesOf(const image::OutputImageZStrip3d& strip);

/// Spreads 2 over the 1 that hang together with it.
class WeakSpreader
{
public:
    WeakSpreader(const ByteLines& lines, const Neighborhood& neighborhood) : m_lines(lines), m_neighborhood(neighborhood) {}

    /// Makes 2 of sample (x, y, z), if it is 1, and of all that hang together with it.
    void spreadFrom(unsigned long x, unsigned long y, unsigned long z);
    /// Spreads between the strip that begins at `start`, a slice where there are several, else a line, and the one before.
    void spreadAcross(unsigned long start);

private:
    struct TakenRun
    {
        unsigned int start, end, y, z;
    };
    void takeRuns(unsigned long y, unsigned long z, unsigned long start, unsigned long end);
    void spreadToLine(unsigned long y, unsigned long z, const unsigned char* strong, unsigned long reach);

    ByteLines m_lines;
    Neighborhood m_neighborhood;
    // Runs that became strong, each once, whose neighbours have not been looked at: those at hand and those that they reach.
    // Going by waves, they are few even where all of a volume hangs together.
    std::vector<TakenRun> m_wave, m_reached;
};

}}}  // namespace orvik::imaproc::advmorpho
