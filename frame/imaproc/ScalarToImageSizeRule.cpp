#include "frame/imaproc/ScalarToImageSizeRule.h"

#include "frame/imaproc/AttributeImages.h"

namespace orvik { namespace imaproc {

BaseRuleMatchScalarToImageSize::~BaseRuleMatchScalarToImageSize() = default;

void BaseRuleMatchScalarToImageSize::initBase(const WeakImage& image,
                                              const boost::weak_ptr<const processor::BaseDataItemAttribute>& attribute)
{
    BaseImageRule::initBase(processor::WeakAttribute(image), processor::WeakAttribute(attribute));
}

void BaseRuleMatchScalarToImageSize::setSize(const eMatchImageSizeType& type, const eMatchImageSizeScale& scale)
{
    m_type = type;
    m_scale = scale;
}

bool BaseRuleMatchScalarToImageSize::testRule() const
{
    return !getAttribute2()->hasValue() || !(retrieveValue() < 0);
}

std::string BaseRuleMatchScalarToImageSize::createRuleFormalString() const
{
    return retrieveValueAttributeName() + " is not negative, and beyond " + (m_scale == eMISS_Half ? "half of " : "")
           + (m_type == eMIST_MinXYZ ? "the smallest of X, Y and Z" : "the smaller of X and Y") + " of "
           + getAttribute1()->getObjectName() + " narrowed to it";
}

std::string BaseRuleMatchScalarToImageSize::createRuleEvaluatedString(unsigned int depth) const
{
    std::string text = createRuleEvaluatedStartString(depth) + createRuleFormalString();
    if (getAttribute2()->hasValue())
        text += ": " + std::to_string(retrieveValue());
    const boost::shared_ptr<const processor::BaseAttribute> image = getAttribute1();
    if (image->hasValue())
        text += ", image " + readSizes(*image);
    return text + "\n";
}

}}  // namespace orvik::imaproc
