#pragma once

#include "Processor/ExtractLocalExtrema2d/ExtremaBuffers.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// Lines of the slice that enters the window, as many as half a window is high, and one. Values are kept so that the extreme
/// ones are the highest, whatever is looked for.
struct SliceExtremaBuffers
{
    /// For lines of `lineSize` samples that are searched `halfWidth` to both sides, and `halfHeight` lines up and down.
    void init(eDataType type, unsigned long lineSize, unsigned long halfWidth, unsigned long halfHeight);

    unsigned long halfHeight = 0;
    image::FragHybridBuffer rows;   // with margins
    image::FragHybridBuffer sides;  // their extrema over the half-width of the window, by first column
    image::FragHybridBuffer lines;  // folded along x; those of a whole block of lines: from each to the block's end
    image::TypedOwnBuffer prefix;   // of the lines of the current block so far, folded along x
    image::FragHybridBuffer folds;  // of as many lines as half a window, up to each of the last `halfHeight` + 2
    std::vector<char> haveNan;      // of the rows: whether a sample is one that folds leave out
};

/// What a search for local extrema keeps of one strip of a volume.
struct VolumeExtremaBuffers
{
    ExtremaScratch scratch;
    SliceExtremaBuffers slice;
    std::vector<ExtremaBuffers> windows;  // along z, one for each line of a slice
};

}}}  // namespace orvik::imaproc::fd
