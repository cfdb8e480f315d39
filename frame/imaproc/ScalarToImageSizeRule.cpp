#include "frame/imaproc/ScalarToImageSizeRule.h"

#include "frame/imaproc/ImageRuleParts.h"

namespace orvik { namespace imaproc {

BaseRuleMatchScalarToImageSize::~BaseRuleMatchScalarToImageSize() = default;

void BaseRuleMatchScalarToImageSize::initBase(const WeakImage& image,
                                              const boost::weak_ptr<const processor::BaseDataItemAttribute>& attribute)
{
    BaseImageBinaryMixedRule::initBase(processor::WeakAttribute(image), processor::WeakAttribute(attribute));
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
    const bool half = m_scale == eMISS_Half;
    return textOf(m_type == eMIST_MinXYZ ? half ? eImageRuleMessage::eScalarInHalfXYZ : eImageRuleMessage::eScalarInXYZ
                  : half                 ? eImageRuleMessage::eScalarInHalfXY
                                         : eImageRuleMessage::eScalarInXY,
                  retrieveValueAttributeName(), getAttribute1()->getObjectName());
}

std::string BaseRuleMatchScalarToImageSize::createRuleEvaluatedString(unsigned int depth) const
{
    std::string text = createRuleFormalString();
    if (getAttribute2()->hasValue())
        text = textOf(eImageRuleMessage::eScalarFound, text, std::to_string(retrieveValue()));
    const boost::shared_ptr<const processor::BaseAttribute> image = getAttribute1();
    if (image->hasValue())
        text = textOf(eImageRuleMessage::eScalarImageFound, text, readSizes(*image));
    return createRuleEvaluatedStartString(depth) + text + "\n";
}

}}  // namespace orvik::imaproc
