#pragma once

#include "siblings/AdvancedMorphology/Processor/PartComponents.h"

namespace orvik { namespace imaproc { namespace advmorpho {

/// Level 2: one plane.
class ConnectedComponent2dImgLvl2 : public ConnectedComponentLvl2<ConnectedComponent2dImgLvl2, OfPlanes>
{
    ORVIK_PROCESSOR(ConnectedComponent2dImgLvl2, 1)
};

}}}  // namespace orvik::imaproc::advmorpho
