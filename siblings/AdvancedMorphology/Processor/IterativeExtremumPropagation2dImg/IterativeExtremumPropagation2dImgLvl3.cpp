#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/simd/KernelUnit.h"

#include "frame/simd/OpenGeneric.h"
#include "IterativeExtremumPropagation2dImgKernel.h"
#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_REGISTER_PROCESSOR(IterativeExtremumPropagation2dImgLvl3)
ORVIK_REGISTER_KERNELS(IterativeExtremumPropagation2dImgLvl3, UInt8KernelTypes, core::eIS_Generic)

IterativeExtremumPropagation2dImgLvl3::IterativeExtremumPropagation2dImgLvl3() = default;
IterativeExtremumPropagation2dImgLvl3::~IterativeExtremumPropagation2dImgLvl3() = default;

void IterativeExtremumPropagation2dImgLvl3::initDataParserColl(processor::DataParserColl& coll)
{
    coll.clear();
}

}}}  // namespace orvik::imaproc::advmorpho
