#include "OutputInitializer/HoughLines2dInitializerUtils.h"

#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"
#include "WeakAttributes.h"

#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

CustomHoughLines2dOutputInitializer::~CustomHoughLines2dOutputInitializer() = default;

void CustomHoughLines2dOutputInitializer::init(const WeakImage& input, const WeakHoughLinesImgParams& params,
                                               const WeakHoughLinesExtractionParams& extractionParams)
{
    CustomHoughLines2dImgOutputInitializer::init(input, params);
    checkNotNull<eOutputInitializerMessage>(extractionParams);
    m_extractionParams = extractionParams;
}

unsigned long CustomHoughLines2dOutputInitializer::getSizeY() const
{
    return accumulatorSizeY(*getParams()->getDataItemNode(), *lockAttribute(m_extractionParams)->getDataItemNode());
}

image::eImageBufferType CustomHoughLines2dOutputInitializer::getImageBufferType() const
{
    return getInputImage()->getBufferType() == image::eIBT_Real32 ? image::eIBT_Real32 : image::eIBT_UInt32;
}

boost::shared_ptr<CustomHoughLines2dOutputInitializer> outputHoughLines2d(
    const WeakImage& input, const WeakHoughLinesImgParams& params, const WeakHoughLinesExtractionParams& extractionParams)
{
    const auto initializer = makeTogether<CustomHoughLines2dOutputInitializer>();
    initializer->init(input, params, extractionParams);
    return initializer;
}

}}}  // namespace orvik::imaproc::fd
