#pragma once

#include "Processor/RadiusSums.h"

#include "frame/image/Buffers.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// The places that radii are scored on, row by row in raster order, the centres by line, and the gradients of a row.
struct ShellScores : RadiusSums
{
    struct Row
    {
        long dy, dz;
        std::size_t begin, end;
    };
    struct Place
    {
        int column;  // in the row of gradients
        float units[3];
        unsigned int radius;  // rounded
    };
    struct Center
    {
        unsigned long z, y, x;
        std::size_t index;
    };

    /// For the centres of a strip of `type`. Fails for places beyond the greatest radius.
    BoolResult init(const attr::HoughSpheresKernelXYZ& kernel, const attr::HoughCirclesRadiusRange& range,
                    const attr::Voxels3d& all, eDataType type);

    std::vector<Row> rows;
    std::vector<Place> places;
    std::vector<Center> centers;  // that are voxels, by line
    std::size_t nbDone = 0;       // of them

    image::FragHybridBuffer samples;    // of a row about a centre, for each axis
    image::FragHybridBuffer gradients;  // their directions along the axes, and magnitudes
    unsigned long rowSize = 0;
};

}}}  // namespace orvik::imaproc::fd
