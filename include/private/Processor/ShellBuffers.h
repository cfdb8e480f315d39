#pragma once

#include "frame/image/Buffers.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// A gradient that votes: its direction, turned to the octant without negative parts, its magnitude, column and list, by which
/// entries its octant goes through that, and whether centres lie behind them instead of ahead.
struct VotingVoxel
{
    float x, y, z, magnitude;
    int column, list;
    unsigned int mirrored;
    bool isBehind;
};

/// What an accumulator of spheres keeps of one strip, in either form.
struct ShellBuffers
{
    /// For slices of `nbRows` lines of pixels that are treated in whole vectors up to `nbAligned`, shells up to `radius`, and
    /// volumes of `nbSlices`.
    void initGather(unsigned long nbAligned, unsigned long nbRows, unsigned long nbSlices, long radius);

    void initVotes(unsigned long nbAligned, unsigned long nbRows, long radius);

    /// Distances of the lines and slices of the accumulator for votes.
    static unsigned long linePitchFor(unsigned long nbAligned, long radius);
    static unsigned long slicePitchFor(unsigned long nbAligned, unsigned long nbRows, long radius);

    // Gathering: lines of directions along x, y and z and magnitudes, side by side, of the slices that shells reach, each in the
    // place of the one that they no longer reach; and a line of what lies outside the volume.
    image::FragHybridBuffer slices;
    image::TypedOwnBuffer outside;
    unsigned long pitch = 0;  // of the parts of a line

    // Votes: the accumulator with room for votes beyond the sides, of the slices that gradients still reach.
    std::vector<float> votes;
    unsigned long linePitch = 0, slicePitch = 0, nbVoteSlices = 0;
    long firstSlice = 0;      // of the volume, which slice 0 holds; may lie before the volume
    std::vector<float> line;  // directions and magnitudes of the row whose gradients vote
    std::vector<VotingVoxel> sources;

    float* lineAt(long z, long y) const
    {
        const unsigned long slice = static_cast<unsigned long>(z) % slices.getNbFragments();
        return static_cast<float*>(slices.getDataPtr(slice, 4 * pitch * static_cast<unsigned long>(y)));
    }
};

}}}  // namespace orvik::imaproc::fd
