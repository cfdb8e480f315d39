#pragma once

#include "frame/util/Export.h"

namespace orvik { namespace imaproc { namespace attr {

/// How an algorithm that has two ways to the same result chooses between memory and passes.
enum ORVIK_API eProcessingOptimizationPolicy : unsigned int
{
    ePOP_Labels = 0,    ///< a fixed number of passes over further images
    ePOP_Iterative = 1  ///< in place
};

/// Neighbours of a pixel.
enum ORVIK_API eNeighborhood2d : unsigned int
{
    eN2D_Four = 0,
    eN2D_Eight = 1  ///< with diagonals
};

/// Neighbours of a voxel.
enum ORVIK_API eNeighborhood3d : unsigned int
{
    eN3D_Six = 0,
    eN3D_Eighteen = 1,
    eN3D_TwentySix = 2  ///< with all diagonals
};

/// Which extrema are meant. Other values read as maxima.
enum ORVIK_API eLocalExtremumType : int
{
    eLET_Maxima = 0,        ///< above all neighbours before them in scan order, not below any after them
    eLET_Minima = 1,        ///< below all neighbours before them in scan order, not above any after them
    eLET_StrictMaxima = 2,  ///< above all neighbours
    eLET_StrictMinima = 3   ///< below all neighbours
};

inline bool isMinima(eLocalExtremumType type)
{
    return type == eLET_Minima || type == eLET_StrictMinima;
}

inline bool isStrict(eLocalExtremumType type)
{
    return type == eLET_StrictMaxima || type == eLET_StrictMinima;
}

/// What the threshold of a search for lines means. Other values read as absolute.
enum eHoughLinesThresholdType : int
{
    eHLTT_Absolute = 0,  ///< votes of a bin
    eHLTT_Ratio = 1,     ///< share of the votes of the bin that has most
    eHLTT_Quantile = 2   ///< share of the bins, 0 to 1, that have at most as many votes
};

/// Which gradient counts on a circle or sphere. Other values read as outward.
enum eCircleIntensityType : int
{
    eCIT_Outward = 0,  ///< pointing from the centre to the rim: dark objects
    eCIT_Inward = 1,   ///< pointing from the rim to the centre: bright objects
    eCIT_Both = 2      ///< either
};

/// How radii of circles are found. Other values read as standard.
enum eHoughCircles2dAlgoMethod : int
{
    eHCAM_Standard = 0,   ///< one accumulator of all radii, then each whole radius is tried about each centre
    eHCAM_PhaseCoded = 1  ///< an accumulator of complex numbers whose angle tells the radius
};

/// What is measured at a corner. Other values read as the minimum eigenvalue.
enum eCornerResponseType : int
{
    eCRT_MinEigenvalue = 0,
    eCRT_Harris = 1
};

}}}  // namespace orvik::imaproc::attr
