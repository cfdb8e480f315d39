#include "Rule/HoughLines2dImgRuleUtils.h"

#include "WeakAttributes.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

namespace {

void checkInitialised(bool initialised)
{
    if (!initialised)
        ORVIK_THROW(ORVIKIPLFeatureDetectionException, g_featureDetectionLogSource, eRuleMessage::eNotInitialised);
}

/// What a property was given by its init.
template<class Made>
const Made& initialised(const boost::shared_ptr<Made>& made)
{
    checkInitialised(made != nullptr);
    return *made;
}

}  // namespace

HoughLines2dImgImageSizeX::~HoughLines2dImgImageSizeX() = default;
HoughLines2dImgImageSizeY::~HoughLines2dImgImageSizeY() = default;
HoughLines2dImageSizeY::~HoughLines2dImageSizeY() = default;
HoughLines2dImgOutputBufferType::~HoughLines2dImgOutputBufferType() = default;
HoughLines2dImageSizeYGreaterOrEqual::~HoughLines2dImageSizeYGreaterOrEqual() = default;

void HoughLines2dImgImageSizeX::init(const WeakImage& input, const WeakHoughLinesImgParams& params)
{
    m_made = outputHoughLines2dImg(input, params);
    initBase(input);
    enableCheck(eCIP_SizeX);
}

unsigned long HoughLines2dImgImageSizeX::getSizeX() const
{
    return initialised(m_made).getSizeX();
}

void HoughLines2dImgImageSizeY::init(const WeakImage& input, const WeakHoughLinesImgParams& params)
{
    m_made = outputHoughLines2dImg(input, params);
    initBase(input);
    enableCheck(eCIP_SizeY);
}

unsigned long HoughLines2dImgImageSizeY::getSizeY() const
{
    return initialised(m_made).getSizeY();
}

void HoughLines2dImageSizeY::init(const WeakImage& input, const WeakHoughLinesImgParams& params,
                                  const WeakHoughLinesExtractionParams& extractionParams)
{
    m_made = outputHoughLines2d(input, params, extractionParams);
    initBase(input);
    enableCheck(eCIP_SizeY);
}

unsigned long HoughLines2dImageSizeY::getSizeY() const
{
    return initialised(m_made).getSizeY();
}

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

void HoughLines2dImageSizeYGreaterOrEqual::init(const boost::weak_ptr<const OutImg>& out,
                                                const WeakHoughLinesImgParams& params)
{
    checkNotNull<eRuleMessage>(out);
    checkNotNull<eRuleMessage>(params);
    initBase(out, params);
}

unsigned long HoughLines2dImageSizeYGreaterOrEqual::getSizeY() const
{
    const boost::shared_ptr<const processor::BaseAttribute> out = getAttribute1();
    return out->hasValue() ? static_cast<const OutImg&>(*out).getStorage()->getSizeY() : 0;
}

unsigned int HoughLines2dImageSizeYGreaterOrEqual::getNbThetaBins() const
{
    const boost::shared_ptr<const processor::BaseAttribute> params = getAttribute2();
    return static_cast<const InOptHoughLinesImgParams&>(*params).getDataItemNode()->get<HoughLinesImgParams::NbThetaBins>();
}

bool HoughLines2dImageSizeYGreaterOrEqual::testRule() const
{
    checkInitialised(isInitialised());
    return !getAttribute1()->hasValue() || getSizeY() >= getNbThetaBins();
}

std::string HoughLines2dImageSizeYGreaterOrEqual::createRuleFormalString() const
{
    checkInitialised(isInitialised());
    return (LogMessageFormater(getORVIKIPLFeatureDetectionLogMessageManager())[eRuleMessage::eSizeYGreaterOrEqual]
            % getAttribute2()->getObjectName())
        .string();
}

std::string HoughLines2dImageSizeYGreaterOrEqual::createRuleEvaluatedString(unsigned int depth) const
{
    checkInitialised(isInitialised());
    LogMessageFormater text(getORVIKIPLFeatureDetectionLogMessageManager());
    text[eRuleMessage::eSizeYGreaterOrEqualEvaluated] % static_cast<unsigned int>(getSizeY())
        % getAttribute2()->getObjectName() % getNbThetaBins();
    return createRuleEvaluatedStartString(depth) + text.string() + "\n";
}

boost::shared_ptr<HoughLines2dImgImageSizeX> houghLines2dCheckOutImgSzXEquals(const WeakImage& input,
                                                                              const WeakHoughLinesImgParams& params)
{
    const auto property = makeTogether<HoughLines2dImgImageSizeX>();
    property->init(input, params);
    return property;
}

boost::shared_ptr<HoughLines2dImgImageSizeY> houghLines2dCheckOutImgSzYEquals(const WeakImage& input,
                                                                              const WeakHoughLinesImgParams& params)
{
    const auto property = makeTogether<HoughLines2dImgImageSizeY>();
    property->init(input, params);
    return property;
}

boost::shared_ptr<HoughLines2dImageSizeY> houghLines2dCheckOutImgSzYEquals(
    const WeakImage& input, const WeakHoughLinesImgParams& params, const WeakHoughLinesExtractionParams& extractionParams)
{
    const auto property = makeTogether<HoughLines2dImageSizeY>();
    property->init(input, params, extractionParams);
    return property;
}

processor::RulePtr houghLines2dCheckOutImgSzYGreaterOrEqual(const boost::weak_ptr<const OutImg>& out,
                                                            const WeakHoughLinesImgParams& params)
{
    const auto rule = makeTogether<HoughLines2dImageSizeYGreaterOrEqual>();
    rule->init(out, params);
    return rule;
}

boost::shared_ptr<HoughLines2dImgOutputBufferType> houghLines2dCheckOutImgBufferType(const WeakImage& input,
                                                                                     bool unsignedAsWell)
{
    const auto property = makeTogether<HoughLines2dImgOutputBufferType>();
    property->init(input, unsignedAsWell);
    return property;
}

}}}  // namespace orvik::imaproc::fd
