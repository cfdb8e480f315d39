#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl3.h"

#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dKernel.h"

#include "Processor/StripMarginsCheck.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(ExtractHoughPeaks2dLvl3)

processor::StageResult ExtractHoughPeaks2dLvl3::preProcess()
{
    const BoolResult fits = checkMargins(getObjectName(), 1, value<InGxKnlYStrip2d>(), value<InGyKnlYStrip2d>());
    if (!fits)
        return fits;
    setBorder<InGxKnlYStrip2d>(image::valuedBorder2d(0.0));
    setBorder<InGyKnlYStrip2d>(image::valuedBorder2d(0.0));
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
