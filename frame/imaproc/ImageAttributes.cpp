#include "frame/imaproc/ImageAttributes.h"

namespace orvik { namespace imaproc {

BaseImageAttribute::~BaseImageAttribute() = default;
BaseInputImageAttribute::~BaseInputImageAttribute() = default;
BaseOutputImageAttribute::~BaseOutputImageAttribute() = default;
BaseStripAttribute::~BaseStripAttribute() = default;
BaseInputYStrip2dAttribute::~BaseInputYStrip2dAttribute() = default;
BaseOutputYStrip2dAttribute::~BaseOutputYStrip2dAttribute() = default;
BaseInputZStrip3dAttribute::~BaseInputZStrip3dAttribute() = default;
BaseOutputZStrip3dAttribute::~BaseOutputZStrip3dAttribute() = default;
BaseYStrip2dWithKernelAttribute::~BaseYStrip2dWithKernelAttribute() = default;
BaseInputYStrip2dWithKernelAttribute::~BaseInputYStrip2dWithKernelAttribute() = default;
BaseZStrip3dWithKernelAttribute::~BaseZStrip3dWithKernelAttribute() = default;
BaseInputZStrip3dWithKernelAttribute::~BaseInputZStrip3dWithKernelAttribute() = default;
BasePlanIndexedAttribute::~BasePlanIndexedAttribute() = default;

image::eImageBufferType BaseStripAttribute::getImageBufferType() const
{
    const boost::shared_ptr<image::BaseImageFragment> strip = getImageStrip();
    return strip ? strip->getBufferType() : static_cast<image::eImageBufferType>(0);
}

}}  // namespace orvik::imaproc
