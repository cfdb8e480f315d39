#pragma once

#include "siblings/AdvancedMorphology/Library.h"
#include "siblings/AdvancedMorphology/Processor/ComponentLabels.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_OUTPUT(OutPlaneComponents, (processor::OutputDataItem<ImageComponents>), "components of one plane");

/// Level 2: finds the components of one plane; numbering them is left to Level 1, which knows all planes.
class ConnectedComponent2dImgLvl2 : public processor::Processor<ConnectedComponent2dImgLvl2, processor::BaseSyncProcessor,
                                                                attr::InSubImg2d, attr::InNeighborhood2d, OutPlaneComponents>
{
    ORVIK_PROCESSOR(ConnectedComponent2dImgLvl2, 1)

protected:
    BoolResult runDerived() override;
};

}}}  // namespace orvik::imaproc::advmorpho
