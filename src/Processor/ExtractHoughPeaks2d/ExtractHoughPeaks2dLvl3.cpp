#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl3.h"

#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(ExtractHoughPeaks2dLvl3)

processor::StageResult ExtractHoughPeaks2dLvl3::preProcess()
{
    for (const auto& strip : {value<InGxKnlYStrip2d>(), value<InGyKnlYStrip2d>()})
        if (!strip->getMargins().areAllAround(1))
            return failure(getObjectName() + ": the margins of the strips are not 1");
    setBorder<InGxKnlYStrip2d>(image::valuedBorder2d(0.0));
    setBorder<InGyKnlYStrip2d>(image::valuedBorder2d(0.0));
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
