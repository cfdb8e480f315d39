#pragma once

// The shells of a run as the strips of a volume see them.

#include "Processor/GradientCone.h"

#include "frame/attr/Records.h"
#include "frame/util/ProcessingResult.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// A place of the shells with what it counts for.
struct ShellElement
{
    int dx, dy, dz;
    float units[3];
    float weights[1];
};

class Shells
{
public:
    /// Places of one row, in the order of the list.
    struct Row
    {
        int dy, dz;
        std::size_t begin, end;
    };

    Shells(std::vector<ShellElement> elements, long maxRadius, const GradientCone& cone);

    const std::vector<ShellElement>& getElements() const { return m_elements; }
    const std::vector<Row>& getRows() const { return m_rows; }
    long getMaxRadius() const { return m_maxRadius; }
    const GradientCone& getCone() const { return m_cone; }
    /// Whether places outside the volume, where the gradient is 0, add nothing: not where shells count for no places, and their
    /// weights are infinite.
    bool isFinite() const { return m_isFinite; }

private:
    std::vector<ShellElement> m_elements;
    std::vector<Row> m_rows;
    long m_maxRadius;
    GradientCone m_cone;
    bool m_isFinite;
};

/// The shells of a list of places, which must lie within the greatest radius, for a class that has them as attributes, unless
/// it has shells already.
BoolResult makeShellsOnce(const attr::HoughSpheresKernelXYZ& places, const attr::HoughCirclesRadiusRange& range, int type,
                          double maxAngle, boost::shared_ptr<const Shells>& shells);

}}}  // namespace orvik::imaproc::fd
