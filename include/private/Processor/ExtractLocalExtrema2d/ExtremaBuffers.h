#pragma once

#include "frame/image/Buffers.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// What windows share that look at one line at a time. Values are kept so that the extreme ones are the highest, whatever is
/// looked for.
struct ExtremaScratch
{
    /// For lines of `lineSize` samples that are searched `halfWidth` to both sides.
    void init(eDataType type, unsigned long lineSize, unsigned long halfWidth);

    unsigned long halfWidth = 0;
    image::TypedOwnBuffer lowest;  // lowest values, for what is not there
    image::TypedOwnBuffer row;     // the line that enters the window, with margins
    image::TypedOwnBuffer side;    // its extrema over the half-width of the window, by first column
};

/// What the window of a search for local extrema keeps of one strip, in the same form.
struct ExtremaBuffers
{
    /// For lines of `lineSize` samples, and `halfHeight` lines up and down.
    void init(eDataType type, unsigned long lineSize, unsigned long halfHeight);

    unsigned long halfHeight = 0;
    image::TypedOwnBuffer prefix;  // of the lines of the current block so far, folded along x
    image::TypedOwnBuffer fold;    // of as many lines as half a window, up to the one that entered last
    // The lines of half a window, folded along x; when they are many, those of a whole block hold the extrema from each to
    // the block's end.
    image::FragHybridBuffer lines;
    // For each line of half a window, a bit per column that was not beaten so far.
    std::vector<unsigned long> open;
    unsigned long nbWords = 0;  // of one line
};

/// The same of a plane.
struct PlaneExtremaBuffers
{
    ExtremaScratch scratch;
    ExtremaBuffers window;
};

/// Room for whole vectors of any set beyond the end of a line, in samples.
constexpr unsigned long g_vectorRoom = 256;
/// A buffer of lowest values.
void initLowest(image::TypedOwnBuffer& buffer, eDataType type, unsigned long size);
/// The same of that many lines.
void initLowest(image::FragHybridBuffer& lines, eDataType type, unsigned long lineSize, unsigned long nbLines);

}}}  // namespace orvik::imaproc::fd
