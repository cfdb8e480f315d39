#include "siblings/AdvancedMorphology/Processor/WeakSpreader.h"

#include "frame/image/Strips.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace advmorpho {

namespace {

ByteLines makeLines(const image::BaseImage& image, unsigned long sizeY, unsigned long sizeZ, void* origin)
{
    return {image.getSizeX(), sizeY, sizeZ, static_cast<unsigned char*>(origin), image.getStrides().y, image.getStrides().z};
}

}  // namespace

ByteLines linesOf(image::BaseImage& image)
{
    return makeLines(image, image.getSizeY(), image.getSizeZ(), image.accessLine(0));
}

ByteLines linesOf(const image::OutputImageYStrip2d& strip)
{
    return makeLines(*strip.getImage(), strip.getNbLines(), 1, strip.accessLine(0));
}

ByteLines linesOf(const image::OutputImageZStrip3d& strip)
{
    return makeLines(*strip.getImage(), strip.getSizeY(), strip.getNbLines() / strip.getSizeY(), strip.accessLine(0));
}

/// Takes each run of weak samples of line (y, z) that reaches into the columns from `start` to `end`.
void WeakSpreader::takeRuns(unsigned long y, unsigned long z, unsigned long start, unsigned long end)
{
    unsigned char* const line = m_lines.at(y, z);
    for (unsigned long x = start; x < end; ++x) {
        if (line[x] != 1)
            continue;
        unsigned long first = x;
        while (first > 0 && line[first - 1] == 1)
            --first;
        while (x < m_lines.sizeX && line[x] == 1)
            ++x;
        std::fill(line + first, line + x, static_cast<unsigned char>(2));
        const auto number = [](unsigned long n) { return static_cast<unsigned int>(n); };
        m_reached.push_back({number(first), number(x), number(y), number(z)});
    }
}

void WeakSpreader::spreadFrom(unsigned long x, unsigned long y, unsigned long z)
{
    takeRuns(y, z, x, x + 1);
    while (!m_reached.empty()) {
        m_wave.swap(m_reached);
        m_reached.clear();
        for (const TakenRun& run : m_wave)
            for (unsigned long n = 0; n < m_neighborhood.nbLines; ++n) {
                const NeighborLine& other = m_neighborhood.lines[n];
                if (other.isInside(run.y, run.z, m_lines.sizeY, m_lines.sizeZ))
                    takeRuns(other.yFrom(run.y), other.zFrom(run.z),
                             run.start - std::min<unsigned long>(run.start, other.reach),
                             std::min(run.end + other.reach, m_lines.sizeX));
            }
    }
}

/// Spreads from a line to line (y, z).
void WeakSpreader::spreadToLine(unsigned long y, unsigned long z, const unsigned char* strong, unsigned long reach)
{
    const unsigned char* const weak = m_lines.at(y, z);
    const unsigned long last = m_lines.sizeX - 1;
    for (unsigned long x = 0; x <= last; ++x)
        if (weak[x] == 1
            && (strong[x] > 1 || (reach > 0 && ((x > 0 && strong[x - 1] > 1) || (x < last && strong[x + 1] > 1)))))
            spreadFrom(x, y, z);
}

void WeakSpreader::spreadAcross(unsigned long start)
{
    const bool slices = m_lines.sizeZ > 1;
    const unsigned long z = slices ? start : 0, endY = slices ? m_lines.sizeY : start + 1;
    for (unsigned long y = slices ? 0 : start; y < endY; ++y)
        for (unsigned long n = 0; n < m_neighborhood.nbBefore; ++n) {
            const NeighborLine& other = m_neighborhood.lines[n];
            const bool inStripBefore = !slices || other.dz != 0;
            if (!inStripBefore || !other.isInside(y, z, m_lines.sizeY, m_lines.sizeZ))
                continue;
            const unsigned long otherY = other.yFrom(y), otherZ = other.zFrom(z);
            spreadToLine(otherY, otherZ, m_lines.at(y, z), other.reach);
            spreadToLine(y, z, m_lines.at(otherY, otherZ), other.reach);
        }
}

}}}  // namespace orvik::imaproc::advmorpho
