#pragma once

#include "frame/image/Buffers.h"

namespace orvik { namespace imaproc { namespace fd {

/// What an accumulator of spheres keeps of one strip.
struct ShellBuffers
{
    /// For slices of `nbRows` lines of pixels that are treated in whole vectors up to `nbAligned`, shells up to `radius`, and
    /// volumes of `nbSlices`.
    void initGather(unsigned long nbAligned, unsigned long nbRows, unsigned long nbSlices, long radius);

    // Gathering: lines of directions along x, y and z and magnitudes, side by side, of the slices that shells reach, each in the
    // place of the one that they no longer reach; and a line of what lies outside the volume.
    image::FragHybridBuffer slices;
    image::TypedOwnBuffer outside;
    unsigned long pitch = 0;  // of the parts of a line

    float* lineAt(long z, long y) const
    {
        const unsigned long slice = static_cast<unsigned long>(z) % slices.getNbFragments();
        return static_cast<float*>(slices.getDataPtr(slice, 4 * pitch * static_cast<unsigned long>(y)));
    }
};

}}}  // namespace orvik::imaproc::fd
