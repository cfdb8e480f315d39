#pragma once

namespace orvik { namespace imaproc { namespace attr {

/// How an algorithm that has two ways to the same result chooses between memory and passes.
enum eProcessingOptimizationPolicy : unsigned int
{
    ePOP_Labels = 0,    ///< a fixed number of passes over further images
    ePOP_Iterative = 1  ///< in place
};

/// Neighbours of a pixel.
enum eNeighborhood2d : unsigned int
{
    eN2D_Four = 0,
    eN2D_Eight = 1  ///< with diagonals
};

/// Neighbours of a voxel.
enum eNeighborhood3d : unsigned int
{
    eN3D_Six = 0,
    eN3D_Eighteen = 1,
    eN3D_TwentySix = 2  ///< with all diagonals
};

/// Which extrema are meant. Other values read as maxima.
enum eLocalExtremumType : unsigned int
{
    eLET_Maxima = 0,
    eLET_Minima = 1,
    eLET_StrictMaxima = 2,
    eLET_StrictMinima = 3
};

}}}  // namespace orvik::imaproc::attr
