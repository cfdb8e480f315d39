#pragma once

#include "frame/attr/Enumerations.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// A line beside line (y, z) of an image: line (y + dy, z + dz). The neighbours that a sample has on it lie in the sample's
/// own column and in `reach` columns, 0 or 1, to both sides.
struct NeighborLine
{
    long dy = 0, dz = 0;
    unsigned long reach = 0;

    constexpr unsigned long yFrom(unsigned long y) const { return y + static_cast<unsigned long>(dy); }
    constexpr unsigned long zFrom(unsigned long z) const { return z + static_cast<unsigned long>(dz); }
    /// Whether an image of sizeY by sizeZ lines has it beside line (y, z). A step below 0 wraps to above any size.
    constexpr bool isInside(unsigned long y, unsigned long z, unsigned long sizeY, unsigned long sizeZ) const
    {
        return yFrom(y) < sizeY && zFrom(z) < sizeZ;
    }
};

/// The lines that have neighbours of a line's samples, but for the line itself: there, samples that follow one another are
/// always neighbours.
struct Neighborhood
{
    NeighborLine lines[8];  ///< in raster order
    unsigned long nbLines = 0;
    unsigned long nbBefore = 0;  ///< how many of them lie before the line itself
};

/// Neighbours differ in at most `nbAxes` coordinates, by 1 each; along Z by at most `reachZ`.
constexpr Neighborhood makeNeighborhood(int nbAxes, long reachZ)
{
    Neighborhood made;
    for (long dz = -reachZ; dz <= reachZ; ++dz)
        for (long dy = -1; dy <= 1; ++dy) {
            const int nbSteps = (dy != 0) + (dz != 0);
            if (nbSteps > 0 && nbSteps <= nbAxes)
                made.lines[made.nbLines++] = {dy, dz, nbSteps < nbAxes ? 1ul : 0ul};
        }
    made.nbBefore = made.nbLines / 2;
    return made;
}

/// Values that are no enumerators read as the fewest neighbours.
constexpr Neighborhood neighborhoodOf(attr::eNeighborhood2d neighborhood)
{
    return makeNeighborhood(neighborhood == attr::eN2D_Eight ? 2 : 1, 0);
}

constexpr Neighborhood neighborhoodOf(attr::eNeighborhood3d neighborhood)
{
    return makeNeighborhood(neighborhood == attr::eN3D_TwentySix ? 3 : neighborhood == attr::eN3D_Eighteen ? 2 : 1, 1);
}

}}}  // namespace orvik::imaproc::advmorpho
