#include "Rule/HoughLines2dImgRuleUtils.h"

#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"
#include "WeakAttributes.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

void checkInitialised(bool isInitialised)
{
    if (!isInitialised)
        ORVIK_THROW(ORVIKIPLFeatureDetectionException, g_featureDetectionLogSource, eRuleMessage::eNotInitialised);
}

template<class Out, class Params>
BaseHoughLinesImageSizeYGreaterOrEqual<Out, Params>::~BaseHoughLinesImageSizeYGreaterOrEqual() = default;
HoughLines2dImgImageSizeX::~HoughLines2dImgImageSizeX() = default;
HoughLines2dImgImageSizeY::~HoughLines2dImgImageSizeY() = default;
HoughLines2dImageSizeY::~HoughLines2dImageSizeY() = default;
HoughLines2dImgOutputBufferType::~HoughLines2dImgOutputBufferType() = default;
HoughLines2dImageSizeYGreaterOrEqual::~HoughLines2dImageSizeYGreaterOrEqual() = default;
HoughLinesGradient2dImgImageSizeX::~HoughLinesGradient2dImgImageSizeX() = default;
HoughLinesGradient2dImgImageSizeY::~HoughLinesGradient2dImgImageSizeY() = default;
HoughLinesGradient2dImageSizeY::~HoughLinesGradient2dImageSizeY() = default;
HoughLinesGradient2dImageSizeYGreaterOrEqual::~HoughLinesGradient2dImageSizeYGreaterOrEqual() = default;

void HoughLines2dImgOutputBufferType::init(const WeakImage& input, bool unsignedAsWell)
{
    checkNotNull<eRuleMessage>(input);
    initBase(input);
    enableCheck(eCIP_BufferType);
    m_unsignedAsWell = unsignedAsWell;
}

image::eImageBufferType HoughLines2dImgOutputBufferType::getImageBufferType() const
{
    return getAllowedImageBufferTypes().front();
}

std::vector<image::eImageBufferType> HoughLines2dImgOutputBufferType::getAllowedImageBufferTypes() const
{
    const image::eImageBufferType type = getInputImage()->getBufferType();
    switch (type) {
    case image::eIBT_Int8:
    case image::eIBT_Int16:
    case image::eIBT_Int32:
        if (m_unsignedAsWell)
            break;
        return {image::eIBT_Int32, image::eIBT_Real32};
    case image::eIBT_UInt8:
    case image::eIBT_UInt16:
    case image::eIBT_Binary:
    case image::eIBT_Label16: break;
    case image::eIBT_UInt32:
    case image::eIBT_Label32: return {image::eIBT_UInt32, image::eIBT_Real32};
    default:
        if (m_unsignedAsWell && type != image::eIBT_Real32)
            return {image::eIBT_UInt32, image::eIBT_Real32};
        return {image::eIBT_Real32};
    }
    return {image::eIBT_Int32, image::eIBT_UInt32, image::eIBT_Real32};
}

template<class Out, class Params>
void BaseHoughLinesImageSizeYGreaterOrEqual<Out, Params>::init(const boost::weak_ptr<const Out>& out,
                                                               const boost::weak_ptr<const Params>& params)
{
    checkNotNull<eRuleMessage>(out);
    checkNotNull<eRuleMessage>(params);
    initBase(out, params);
}

template<class Out, class Params>
unsigned long BaseHoughLinesImageSizeYGreaterOrEqual<Out, Params>::getSizeY() const
{
    const boost::shared_ptr<const processor::BaseAttribute> out = getAttribute1();
    return out->hasValue() ? static_cast<const Out&>(*out).getStorage()->getSizeY() : 0;
}

template<class Out, class Params>
unsigned int BaseHoughLinesImageSizeYGreaterOrEqual<Out, Params>::getNbThetaBins() const
{
    const boost::shared_ptr<const processor::BaseAttribute> params = getAttribute2();
    return static_cast<unsigned int>(nbAnglesOf(*static_cast<const Params&>(*params).getDataItemNode()));
}

template<class Out, class Params>
bool BaseHoughLinesImageSizeYGreaterOrEqual<Out, Params>::testRule() const
{
    checkInitialised(isInitialised());
    return !getAttribute1()->hasValue() || getSizeY() >= getNbThetaBins();
}

template<class Out, class Params>
std::string BaseHoughLinesImageSizeYGreaterOrEqual<Out, Params>::createRuleFormalString() const
{
    checkInitialised(isInitialised());
    return (LogMessageFormater(getORVIKIPLFeatureDetectionLogMessageManager())[eRuleMessage::eSizeYGreaterOrEqual]
            % getAttribute2()->getObjectName())
        .string();
}

template<class Out, class Params>
std::string BaseHoughLinesImageSizeYGreaterOrEqual<Out, Params>::createRuleEvaluatedString(unsigned int depth) const
{
    checkInitialised(isInitialised());
    LogMessageFormater text(getORVIKIPLFeatureDetectionLogMessageManager());
    text[eRuleMessage::eSizeYGreaterOrEqualEvaluated] % static_cast<unsigned int>(getSizeY())
        % getAttribute2()->getObjectName() % getNbThetaBins();
    return createRuleEvaluatedStartString(depth) + text.string() + "\n";
}

template class BaseHoughLinesImageSizeYGreaterOrEqual<OutImg, InOptHoughLinesImgParams>;
template class BaseHoughLinesImageSizeYGreaterOrEqual<OutRealImg, InOptHoughLinesGradientImgParams>;

boost::shared_ptr<HoughLines2dImgImageSizeX> houghLines2dCheckOutImgSzXEquals(const WeakImage& input,
                                                                              const WeakHoughLinesImgParams& params)
{
    return makeInitialised<HoughLines2dImgImageSizeX>(input, params);
}

boost::shared_ptr<HoughLines2dImgImageSizeY> houghLines2dCheckOutImgSzYEquals(const WeakImage& input,
                                                                              const WeakHoughLinesImgParams& params)
{
    return makeInitialised<HoughLines2dImgImageSizeY>(input, params);
}

boost::shared_ptr<HoughLines2dImageSizeY> houghLines2dCheckOutImgSzYEquals(
    const WeakImage& input, const WeakHoughLinesImgParams& params, const WeakHoughLinesExtractionParams& extractionParams)
{
    return makeInitialised<HoughLines2dImageSizeY>(input, params, extractionParams);
}

processor::RulePtr houghLines2dCheckOutImgSzYGreaterOrEqual(const boost::weak_ptr<const OutImg>& out,
                                                            const WeakHoughLinesImgParams& params)
{
    return makeInitialised<HoughLines2dImageSizeYGreaterOrEqual>(out, params);
}

boost::shared_ptr<HoughLinesGradient2dImgImageSizeX> houghLines2dCheckOutImgSzXEquals(
    const WeakImage& input, const WeakHoughLinesGradientImgParams& params)
{
    return makeInitialised<HoughLinesGradient2dImgImageSizeX>(input, params);
}

boost::shared_ptr<HoughLinesGradient2dImgImageSizeY> houghLines2dCheckOutImgSzYEquals(
    const WeakImage& input, const WeakHoughLinesGradientImgParams& params)
{
    return makeInitialised<HoughLinesGradient2dImgImageSizeY>(input, params);
}

boost::shared_ptr<HoughLinesGradient2dImageSizeY> houghLines2dCheckOutImgSzYEquals(
    const WeakImage& input, const WeakHoughLinesGradientImgParams& params,
    const WeakHoughLinesExtractionParams& extractionParams)
{
    return makeInitialised<HoughLinesGradient2dImageSizeY>(input, params, extractionParams);
}

processor::RulePtr houghLines2dCheckOutImgSzYGreaterOrEqual(const boost::weak_ptr<const OutRealImg>& out,
                                                            const WeakHoughLinesGradientImgParams& params)
{
    return makeInitialised<HoughLinesGradient2dImageSizeYGreaterOrEqual>(out, params);
}

boost::shared_ptr<HoughLines2dImgOutputBufferType> houghLines2dCheckOutImgBufferType(const WeakImage& input,
                                                                                     bool unsignedAsWell)
{
    return makeInitialised<HoughLines2dImgOutputBufferType>(input, unsignedAsWell);
}

}}}  // namespace orvik::imaproc::fd
