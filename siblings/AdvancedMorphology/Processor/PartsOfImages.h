#pragma once

#include "frame/attr/Declarations.h"
#include "frame/attr/Enumerations.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// What processors of planes call their attributes.
struct OfPlanes
{
    typedef attr::InBinLabImg InBinLabImg;
    typedef attr::OutLabelImg OutLabelImg;
    typedef attr::InOptNeighborhood2d InOptNeighborhood;
    typedef attr::InNeighborhood2d InNeighborhood;
    typedef attr::InSubImg2d InSubImg;
    typedef attr::InSubLabelImg2d InSubLabelImg;
    typedef attr::OutYStrip2d OutStrip;
    static constexpr bool s_areVolumes = false;
    static constexpr attr::eNeighborhood2d s_allNeighbors = attr::eN2D_Eight;
};

/// The same of volumes.
struct OfVolumes
{
    typedef attr::InBinLabImg3d InBinLabImg;
    typedef attr::OutLabelImg3d OutLabelImg;
    typedef attr::InOptNeighborhood3d InOptNeighborhood;
    typedef attr::InNeighborhood3d InNeighborhood;
    typedef attr::InSubImg3d InSubImg;
    typedef attr::InSubLabelImg3d InSubLabelImg;
    typedef attr::OutZStrip3d OutStrip;
    static constexpr bool s_areVolumes = true;
    static constexpr attr::eNeighborhood3d s_allNeighbors = attr::eN3D_TwentySix;
};

}}}  // namespace orvik::imaproc::advmorpho
