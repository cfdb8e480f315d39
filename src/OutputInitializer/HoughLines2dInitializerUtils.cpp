#include "OutputInitializer/HoughLines2dInitializerUtils.h"

#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"
#include "WeakAttributes.h"

#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

template<class Votes, class Params>
BaseHoughLinesOutputInitializer<Votes, Params>::~BaseHoughLinesOutputInitializer() = default;

template<class Votes, class Params>
void BaseHoughLinesOutputInitializer<Votes, Params>::init(const WeakImage& input,
                                                          const boost::weak_ptr<const Params>& params,
                                                          const WeakHoughLinesExtractionParams& extractionParams)
{
    Votes::init(input, params);
    checkNotNull<eOutputInitializerMessage>(extractionParams);
    m_extractionParams = extractionParams;
}

template<class Votes, class Params>
unsigned long BaseHoughLinesOutputInitializer<Votes, Params>::getSizeY() const
{
    return accumulatorSizeY(*this->getParams()->getDataItemNode(), *lockAttribute(m_extractionParams)->getDataItemNode());
}

template class BaseHoughLinesOutputInitializer<CustomHoughLines2dImgOutputInitializer, InOptHoughLinesImgParams>;
template class BaseHoughLinesOutputInitializer<CustomHoughLinesGradient2dImgOutputInitializer,
                                               InOptHoughLinesGradientImgParams>;

CustomHoughLines2dOutputInitializer::~CustomHoughLines2dOutputInitializer() = default;
CustomHoughLinesGradient2dOutputInitializer::~CustomHoughLinesGradient2dOutputInitializer() = default;

image::eImageBufferType CustomHoughLines2dOutputInitializer::getImageBufferType() const
{
    return getInputImage()->getBufferType() == image::eIBT_Real32 ? image::eIBT_Real32 : image::eIBT_UInt32;
}

boost::shared_ptr<CustomHoughLines2dOutputInitializer> outputHoughLines2d(
    const WeakImage& input, const WeakHoughLinesImgParams& params, const WeakHoughLinesExtractionParams& extractionParams)
{
    return makeInitialised<CustomHoughLines2dOutputInitializer>(input, params, extractionParams);
}

boost::shared_ptr<CustomHoughLinesGradient2dOutputInitializer> outputHoughLinesGradient2d(
    const WeakImage& input, const WeakHoughLinesGradientImgParams& params,
    const WeakHoughLinesExtractionParams& extractionParams)
{
    return makeInitialised<CustomHoughLinesGradient2dOutputInitializer>(input, params, extractionParams);
}

}}}  // namespace orvik::imaproc::fd
