#pragma once

#include "siblings/Utility/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace util {

/// Level 2: sets every sample of an image to 0, whatever its sample type and its sizes Z, C and T. Bytes between the lines
/// of a caller's buffer stay as they are. Cost: one write per sample, by one thread.
class ORVIK_API EraseImgLvl2 : public processor::Processor<EraseImgLvl2, processor::BaseSyncProcessor, attr::OutSubImg2d>
{
    ORVIK_PROCESSOR(EraseImgLvl2, 3)

protected:
    BoolResult runDerived() override;
};

}}}  // namespace orvik::imaproc::util
