#pragma once

#include "siblings/AdvancedMorphology/Library.h"
#include "siblings/AdvancedMorphology/Processor/ComponentLabels.h"
#include "siblings/AdvancedMorphology/Processor/PartsOfImages.h"

#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_OUTPUT(OutPartComponents, (processor::OutputDataItem<ImageComponents>), "components of one plane or volume");

/// Level 2 of planes and of volumes: finds the components of one; numbering them is left to Level 1, which knows all.
template<class D, class Part>
class ConnectedComponentLvl2 : public processor::Processor<D, processor::BaseSyncProcessor, typename Part::InSubImg,
                                                           typename Part::InNeighborhood, OutPartComponents>
{
protected:
    BoolResult runDerived() override;
};

}}}  // namespace orvik::imaproc::advmorpho
