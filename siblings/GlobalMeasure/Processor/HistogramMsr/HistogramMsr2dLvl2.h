#pragma once

#include "siblings/GlobalMeasure/Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace glbmsr {

/// Level 2: counts how often the values of one plane occur, of any type, from its lowest to its highest value.
///
/// Whole numbers whose extremes lie less than 65536 apart get a bin per value. Others, and floats, get 65536 equal bins,
/// bin i for floor((v - lowest) * 65536 / (highest - lowest)) = i, and the last bin for the highest value; floats that are
/// all equal get one bin of width 0.
/// NaN is skipped; a plane of nothing else gives no bins. An infinite sample counts as the lowest or the highest finite
/// one of the plane, or of floats where it has none. An image of more than one plane fails the run.
/// Cost: two reads per sample and one division for each in equal bins, by one thread; at most 512 KiB of counts.
class ORVIK_API HistogramMsr2dLvl2 : public processor::Processor<HistogramMsr2dLvl2, processor::BaseSyncProcessor,
                                                                 attr::InSubImg2d, attr::OutHistogramResult>
{
    ORVIK_PROCESSOR(HistogramMsr2dLvl2, 1)

protected:
    BoolResult runDerived() override;
};

}}}  // namespace orvik::imaproc::glbmsr
