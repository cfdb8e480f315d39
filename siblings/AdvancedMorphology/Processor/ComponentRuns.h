#pragma once

#include "siblings/AdvancedMorphology/Neighborhood.h"

#include "frame/image/BaseImage.h"

#include <vector>

namespace orvik { namespace imaproc { namespace advmorpho {

/// A stretch of samples of one line that are not 0.
struct Run
{
    unsigned long start, end;  // columns, the end not included
    unsigned long component;   // from 0 in raster order of the components' first samples
};

/// The connected components of one plane or volume, as runs in raster order. What is not 0 hangs together, whatever its
/// value. Memory: one entry per run and per line; time linear in the image but for the inverse Ackermann function of the
/// runs.
class ComponentRuns
{
public:
    /// Looks at the first channel and time alone; slices hang together as the neighbourhood says.
    void find(const image::BaseImage& image, const Neighborhood& neighborhood);
    unsigned long getNbComponents() const { return m_nbComponents; }

    /// Calls f(y, z, run) for each run.
    template<class F>
    void forEachRun(F&& f) const
    {
        for (unsigned long line = 0; line + 1 < m_lineStarts.size(); ++line)
            for (unsigned long run = m_lineStarts[line]; run < m_lineStarts[line + 1]; ++run)
                f(line % m_sizeY, line / m_sizeY, m_runs[run]);
    }

private:
    template<class Sample>
    void appendRuns(const Sample* line, unsigned long sizeX);
    unsigned long rootOf(unsigned long run);
    void join(unsigned long a, unsigned long b);
    void joinLines(unsigned long earlier, unsigned long line, unsigned long reach);

    unsigned long m_sizeY = 1;
    std::vector<Run> m_runs;
    std::vector<unsigned long> m_lineStarts;  // first run of each line, lines counted slice by slice; the end of the last
    std::vector<unsigned long> m_parents;     // union-find forest over the runs; a root is the first run of its tree
    unsigned long m_nbComponents = 0;
};

}}}  // namespace orvik::imaproc::advmorpho
