#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenGeneric.h"
#include "CannyEdges2dImgKernel.h"
#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(CannyEdges2dImgLvl3)
ORVIK_REGISTER_KERNELS(CannyEdges2dImgLvl3, AllKernelTypes, core::eIS_Generic)

CannyEdges2dImgLvl3::CannyEdges2dImgLvl3()
{
    for (boost::shared_ptr<image::FragHybridBuffer>& rows : m_magnitudes)
        rows = boost::make_shared<image::FragHybridBuffer>();
}

CannyEdges2dImgLvl3::~CannyEdges2dImgLvl3() = default;

processor::RulePtr CannyEdges2dImgLvl3::createRule() const
{
    return processor::none();
}

processor::StageResult CannyEdges2dImgLvl3::preProcess()
{
    borderParser<InGxKnlYStrip2d, KernelYStrip2dParser>().setBorder2dPolicy(image::valuedBorder2d(0.0));
    borderParser<InGyKnlYStrip2d, KernelYStrip2dParser>().setBorder2dPolicy(image::valuedBorder2d(0.0));
    return processor::StageResult(processor::eSRT_Done);
}

}}}  // namespace orvik::imaproc::fd
