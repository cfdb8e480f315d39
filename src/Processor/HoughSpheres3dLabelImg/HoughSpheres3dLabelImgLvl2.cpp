#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl2.h"

#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughSpheres3dLabelImgLvl2)

processor::RetrievalResult HoughSpheres3dLabelImgLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                        processor::ProviderPtr& provider)
{
    return dispatch<HoughSpheres3dLabelImgLvl3>(priority, provider, strips<OutLabelZStrip3d>(value<OutSubLabelImg3d>()),
                                                same(attribute<InHoughSpheres3dPpties>()));
}

}}}  // namespace orvik::imaproc::fd
