#pragma once

// The shells of a run as the strips of a volume see them.

#include "Processor/GradientCone.h"

#include "frame/attr/Records.h"
#include "frame/util/ProcessingResult.h"

#include <boost/shared_ptr.hpp>

#include <cmath>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

struct ShellVoteLists;

/// A place of the shells with what it counts for.
struct ShellElement
{
    int dx, dy, dz;
    float units[3];
    float weights[1];
};

/// The distance of a place, in single precision as it is told.
inline float radiusOf(int dx, int dy, int dz)
{
    return std::sqrt(static_cast<float>(static_cast<long>(dx) * dx + static_cast<long>(dy) * dy
                                        + static_cast<long>(dz) * dz));
}

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
    ~Shells();
    Shells(const Shells&) = delete;
    Shells& operator=(const Shells&) = delete;

    const std::vector<ShellElement>& getElements() const { return m_elements; }
    const std::vector<Row>& getRows() const { return m_rows; }
    long getMaxRadius() const { return m_maxRadius; }
    const GradientCone& getCone() const { return m_cone; }
    /// Whether places outside the volume, where the gradient is 0, add nothing: not where shells count for no places, and their
    /// weights are infinite.
    bool isFinite() const { return m_isFinite; }
    /// The row of places at such an offset; null where there is none. Of lists that can vote alone.
    const Row* rowAt(int dy, int dz) const;

    /// Lists for an accumulator whose lines and slices lie that far apart; null when `nbVoxels` voxels are better served by
    /// gathering with vectors of `lanes`, and for lists that are not shells as they are defined, alike in all octants.
    const ShellVoteLists* votes(unsigned long lanes, unsigned long linePitch, unsigned long slicePitch, double nbVoxels,
                                eRingForm form) const;

private:
    bool areAlikeInOctants();

    std::vector<ShellElement> m_elements;
    std::vector<Row> m_rows;
    long m_maxRadius;
    GradientCone m_cone;
    bool m_isFinite;
    bool m_canVote;
    std::vector<int> m_rowPlaces;  // of each offset in y and z

    mutable std::mutex m_mutex;
    mutable std::map<std::pair<unsigned long, unsigned long>, std::unique_ptr<ShellVoteLists>> m_lists;
};

/// The shells of a list of places, which must lie within the greatest radius, for a class that has them as attributes, unless
/// it has shells already.
BoolResult makeShellsOnce(const attr::HoughSpheresKernelXYZ& places, const attr::HoughCirclesRadiusRange& range, int type,
                          double maxAngle, boost::shared_ptr<const Shells>& shells);

}}}  // namespace orvik::imaproc::fd
