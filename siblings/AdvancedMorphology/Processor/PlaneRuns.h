#pragma once

#include "frame/attr/Enumerations.h"
#include "frame/image/BaseImage.h"

#include <vector>

namespace orvik { namespace imaproc { namespace advmorpho {

/// A stretch of samples of one line that are not 0.
struct Run
{
    unsigned long y;
    unsigned long start, end;  // columns, the end not included
    unsigned long component;   // from 0 in raster order of the components' first samples
};

/// The connected components of one plane, as runs in raster order. What is not 0 hangs together, whatever its value.
/// Memory: one entry per run; time linear in the plane but for the inverse Ackermann function of the runs.
class PlaneRuns
{
public:
    void find(const image::BaseImage& plane, attr::eNeighborhood2d neighborhood);
    const std::vector<Run>& getRuns() const { return m_runs; }
    unsigned long getNbComponents() const { return m_nbComponents; }

private:
    unsigned long rootOf(unsigned long run);
    void join(unsigned long a, unsigned long b);
    void joinLines(unsigned long firstAbove, unsigned long first, bool diagonals);

    std::vector<Run> m_runs;
    std::vector<unsigned long> m_parents;  // union-find forest over the runs; a root is the first run of its tree
    unsigned long m_nbComponents = 0;
};

}}}  // namespace orvik::imaproc::advmorpho
