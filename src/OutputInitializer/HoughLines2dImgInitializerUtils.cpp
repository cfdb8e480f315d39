#include "OutputInitializer/HoughLines2dImgInitializerUtils.h"

#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"
#include "WeakAttributes.h"

#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

template<class Params>
BaseHoughLinesImgOutputInitializer<Params>::~BaseHoughLinesImgOutputInitializer() = default;

template<class Params>
void BaseHoughLinesImgOutputInitializer<Params>::init(const WeakImage& input, const boost::weak_ptr<const Params>& params)
{
    checkNotNull<eOutputInitializerMessage>(input);
    checkNotNull<eOutputInitializerMessage>(params);
    initBase(input);
    m_params = params;
}

template<class Params>
boost::shared_ptr<const Params> BaseHoughLinesImgOutputInitializer<Params>::getParams() const
{
    return lockAttribute(m_params);
}

template<class Params>
unsigned long BaseHoughLinesImgOutputInitializer<Params>::getSizeX() const
{
    return accumulatorSizeX(*getInputImage(), *getParams()->getDataItemNode());
}

template<class Params>
unsigned long BaseHoughLinesImgOutputInitializer<Params>::getSizeY() const
{
    return nbAnglesOf(*getParams()->getDataItemNode());
}

template class BaseHoughLinesImgOutputInitializer<InOptHoughLinesImgParams>;
template class BaseHoughLinesImgOutputInitializer<InOptHoughLinesGradientImgParams>;

CustomHoughLines2dImgOutputInitializer::~CustomHoughLines2dImgOutputInitializer() = default;
CustomHoughLinesGradient2dImgOutputInitializer::~CustomHoughLinesGradient2dImgOutputInitializer() = default;

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

image::eImageBufferType CustomHoughLinesGradient2dImgOutputInitializer::getImageBufferType() const
{
    return image::eIBT_Real32;
}

boost::shared_ptr<CustomHoughLines2dImgOutputInitializer> outputHoughLines2dImg(const WeakImage& input,
                                                                                const WeakHoughLinesImgParams& params)
{
    return makeInitialised<CustomHoughLines2dImgOutputInitializer>(input, params);
}

boost::shared_ptr<CustomHoughLinesGradient2dImgOutputInitializer> outputHoughLinesGradient2dImg(
    const WeakImage& input, const WeakHoughLinesGradientImgParams& params)
{
    return makeInitialised<CustomHoughLinesGradient2dImgOutputInitializer>(input, params);
}

}}}  // namespace orvik::imaproc::fd
