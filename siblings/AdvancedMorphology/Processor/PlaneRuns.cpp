#include "siblings/AdvancedMorphology/Processor/PlaneRuns.h"

namespace orvik { namespace imaproc { namespace advmorpho {

unsigned long PlaneRuns::rootOf(unsigned long run)
{
    while (m_parents[run] != run)
        run = m_parents[run] = m_parents[m_parents[run]];
    return run;
}

void PlaneRuns::join(unsigned long a, unsigned long b)
{
    a = rootOf(a);
    b = rootOf(b);
    if (a < b)
        m_parents[b] = a;
    else
        m_parents[a] = b;
}

/// Joins the runs from `first` to the end with those of the line above, which start at `firstAbove`.
void PlaneRuns::joinLines(unsigned long firstAbove, unsigned long first, bool diagonals)
{
    const unsigned long reach = diagonals ? 1 : 0;
    unsigned long above = firstAbove;
    for (unsigned long run = first; run < m_runs.size(); ++run) {
        while (above < first && m_runs[above].end + reach <= m_runs[run].start)
            ++above;
        for (unsigned long other = above; other < first && m_runs[other].start < m_runs[run].end + reach; ++other)
            join(other, run);
    }
}

void PlaneRuns::find(const image::BaseImage& plane, attr::eNeighborhood2d neighborhood)
{
    m_runs.clear();
    m_parents.clear();
    const unsigned long sizeX = plane.getSizeX();
    unsigned long firstAbove = 0;
    image::withSampleType(image::toDataType(plane.getBufferType()), [&](auto zero) {
        typedef decltype(zero) Sample;
        for (unsigned long y = 0; y < plane.getSizeY(); ++y) {
            const Sample* const line = static_cast<const Sample*>(plane.getLine(y));
            const unsigned long first = m_runs.size();
            for (unsigned long x = 0; x < sizeX; ++x) {
                if (line[x] == 0)
                    continue;
                const unsigned long start = x;
                while (x < sizeX && line[x] != 0)
                    ++x;
                m_runs.push_back({y, start, x, 0});
                m_parents.push_back(m_parents.size());
            }
            joinLines(firstAbove, first, neighborhood == attr::eN2D_Eight);
            firstAbove = first;
        }
    });

    m_nbComponents = 0;
    for (unsigned long run = 0; run < m_runs.size(); ++run) {
        const unsigned long root = rootOf(run);
        m_runs[run].component = root == run ? m_nbComponents++ : m_runs[root].component;
    }
}

}}}  // namespace orvik::imaproc::advmorpho
