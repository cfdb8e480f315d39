#pragma once

#include "Processor/RingVotes.h"

#include "frame/image/Buffers.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// A gradient that votes: its direction, turned so that centres lie ahead, its magnitude, column and list.
struct VotingSource
{
    float x, y, magnitude;
    int column;
    int list;
};

/// What an accumulator of circles keeps of one strip, in either form.
struct RingBuffers
{
    /// For lines of `nbColumns` pixels that are treated in whole vectors up to `nbAligned`, and rings up to `radius`.
    void initGather(unsigned long nbAligned, long radius);
    void initVotes(unsigned long nbAligned, long radius, unsigned int nbWeights);

    /// Distance of the accumulator's lines for votes.
    static unsigned long votesPitch(unsigned long nbAligned, long radius);

    // Gathering: lines of directions along x, along y and magnitudes, side by side, of the rows that rings reach.
    image::FragHybridBuffer gradients;
    unsigned long gradientsPitch = 0;
    std::vector<const float*> places;  // of each element, in the rows of the line at hand

    // Votes: accumulators with room for votes beyond the sides, of the rows that gradients still reach.
    std::vector<float> votes;
    unsigned long pitch = 0, nbRows = 0;
    std::size_t planeSize = 0;  // of one part of a complex accumulator
    long firstRow = 0;          // of the strip, which row 0 holds; may lie above the strip
    std::vector<float> line;    // directions and magnitudes of the row whose gradients vote
    std::vector<VotingSource> sources;
};

}}}  // namespace orvik::imaproc::fd
