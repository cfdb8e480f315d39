#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl3.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(CannyEdges2dImgLvl3)

processor::StageResult CannyEdges2dImgLvl3::preProcess()
{
    setBorder<InGxKnlYStrip2d>(image::valuedBorder2d(0.0));
    setBorder<InGyKnlYStrip2d>(image::valuedBorder2d(0.0));
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
