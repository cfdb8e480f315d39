#pragma once

#include "siblings/AdvancedMorphology/Processor/PartComponents.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2: one volume.
class ConnectedComponent3dImgLvl2 : public ConnectedComponentLvl2<ConnectedComponent3dImgLvl2, OfVolumes>
{
    ORVIK_PROCESSOR(ConnectedComponent3dImgLvl2, 7)
};

}}}  // namespace orvik::imaproc::advmorpho
