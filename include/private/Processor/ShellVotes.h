#pragma once

// Which places about a gradient can hold the centre of a sphere that it points along: what an accumulator that votes goes
// through instead of all places of all shells.

#include "Processor/Shells.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// Groups of four places that follow one another along x, on a fixed grid, by the direction of the gradient. Shells are alike
/// in all octants, so there are lists for directions without negative parts alone; a gradient of another octant goes through
/// the list of its mirror image, by offsets of its own.
struct ShellVoteLists
{
    static constexpr unsigned long s_lanes = 4;

    /// Directions from the gradient to the places, and what these count for: a line of the cache. What is no place has none.
    struct alignas(64) Group
    {
        float units[3][s_lanes];
        float weights[s_lanes];
    };
    struct Entry
    {
        std::uint32_t group;
        std::int32_t offset;  // of the first place in the accumulator, from the gradient's own voxel
    };

    unsigned long nbBins = 0;  // of directions between two axes
    long radius = 0;
    std::vector<Group> groups;
    /// By whether y and whether z is mirrored.
    std::vector<Entry> entries[4];
    /// In which entry the places of slice z - radius of each list begin, and where those of the last end.
    std::vector<std::uint32_t> begins;
    double meanLength = 0;  // entries that a gradient goes through

    unsigned long nbDirections() const { return 3 * nbBins * nbBins; }
    const std::uint32_t* slicesOf(unsigned long direction) const
    {
        return &begins[direction * (2 * static_cast<unsigned long>(radius) + 2)];
    }
};

/// Lists for an accumulator whose lines and slices lie that far apart, for shells that have them: see Shells::votes.
ShellVoteLists makeShellVoteLists(const Shells& shells, unsigned long linePitch, unsigned long slicePitch);

}}}  // namespace orvik::imaproc::fd
