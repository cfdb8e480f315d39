#include "OutputInitializer/HoughLines2dImgInitializerUtils.h"

#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"
#include "WeakAttributes.h"

#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

CustomHoughLines2dImgOutputInitializer::~CustomHoughLines2dImgOutputInitializer() = default;

void CustomHoughLines2dImgOutputInitializer::init(const WeakImage& input, const WeakHoughLinesImgParams& params)
{
    checkNotNull<eOutputInitializerMessage>(input);
    checkNotNull<eOutputInitializerMessage>(params);
    initBase(input);
    m_params = params;
}

boost::shared_ptr<const InOptHoughLinesImgParams> CustomHoughLines2dImgOutputInitializer::getParams() const
{
    return lockAttribute(m_params);
}

unsigned long CustomHoughLines2dImgOutputInitializer::getSizeX() const
{
    return accumulatorSizeX(*getInputImage(), *getParams()->getDataItemNode());
}

unsigned long CustomHoughLines2dImgOutputInitializer::getSizeY() const
{
    return getParams()->getDataItemNode()->get<HoughLinesImgParams::NbThetaBins>();
}

image::eImageBufferType CustomHoughLines2dImgOutputInitializer::getImageBufferType() const
{
    switch (getInputImage()->getBufferType()) {
    case image::eIBT_Int8:
    case image::eIBT_Int16:
    case image::eIBT_Int32: return image::eIBT_Int32;
    case image::eIBT_UInt8:
    case image::eIBT_UInt16:
    case image::eIBT_UInt32:
    case image::eIBT_Binary:
    case image::eIBT_Label16:
    case image::eIBT_Label32: return image::eIBT_UInt32;
    default: return image::eIBT_Real32;
    }
}

boost::shared_ptr<CustomHoughLines2dImgOutputInitializer> outputHoughLines2dImg(const WeakImage& input,
                                                                                const WeakHoughLinesImgParams& params)
{
    const auto initializer = makeTogether<CustomHoughLines2dImgOutputInitializer>();
    initializer->init(input, params);
    return initializer;
}

}}}  // namespace orvik::imaproc::fd
