#include "siblings/AdvancedMorphology/Processor/ComponentRuns.h"

namespace orvik { namespace imaproc { namespace advmorpho {

unsigned long ComponentRuns::rootOf(unsigned long run)
{
    while (m_parents[run] != run)
        run = m_parents[run] = m_parents[m_parents[run]];
    return run;
}

void ComponentRuns::join(unsigned long a, unsigned long b)
{
    a = rootOf(a);
    b = rootOf(b);
    if (a < b)
        m_parents[b] = a;
    else
        m_parents[a] = b;
}

/// Joins the runs of a line with those of an earlier one.
void ComponentRuns::joinLines(unsigned long earlier, unsigned long line, unsigned long reach)
{
    const unsigned long end = m_lineStarts[line + 1], otherEnd = m_lineStarts[earlier + 1];
    unsigned long firstOther = m_lineStarts[earlier];
    for (unsigned long run = m_lineStarts[line]; run < end; ++run) {
        while (firstOther < otherEnd && m_runs[firstOther].end + reach <= m_runs[run].start)
            ++firstOther;
        for (unsigned long other = firstOther; other < otherEnd && m_runs[other].start < m_runs[run].end + reach; ++other)
            join(other, run);
    }
}

template<class Sample>
void ComponentRuns::appendRuns(const Sample* line, unsigned long sizeX)
{
    for (unsigned long x = 0; x < sizeX; ++x) {
        if (line[x] == 0)
            continue;
        const unsigned long start = x;
        while (x < sizeX && line[x] != 0)
            ++x;
        m_runs.push_back({start, x, 0});
        m_parents.push_back(m_parents.size());
    }
    m_lineStarts.push_back(m_runs.size());
}

void ComponentRuns::find(const image::BaseImage& image, const Neighborhood& neighborhood)
{
    const unsigned long sizeX = image.getSizeX(), sizeZ = image.getSizeZ();
    m_sizeY = image.getSizeY();
    m_runs.clear();
    m_parents.clear();
    m_lineStarts.assign(1, 0);
    image::withSampleType(image::toDataType(image.getBufferType()), [&](auto zero) {
        typedef decltype(zero) Sample;
        for (unsigned long z = 0; z < sizeZ; ++z)
            for (unsigned long y = 0; y < m_sizeY; ++y) {
                appendRuns(static_cast<const Sample*>(image.getLine(y, z)), sizeX);
                for (unsigned long n = 0; n < neighborhood.nbBefore; ++n) {
                    const NeighborLine& other = neighborhood.lines[n];
                    if (other.isInside(y, z, m_sizeY, sizeZ))
                        joinLines(other.zFrom(z) * m_sizeY + other.yFrom(y), z * m_sizeY + y, other.reach);
                }
            }
    });

    m_nbComponents = 0;
    for (unsigned long run = 0; run < m_runs.size(); ++run) {
        const unsigned long root = rootOf(run);
        m_runs[run].component = root == run ? m_nbComponents++ : m_runs[root].component;
    }
}

}}}  // namespace orvik::imaproc::advmorpho
