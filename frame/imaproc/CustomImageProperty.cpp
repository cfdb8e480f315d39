#include "frame/imaproc/CustomImageProperty.h"

#include "frame/imaproc/ImageRuleParts.h"
#include "frame/imaproc/BaseImageRules.h"

#include <algorithm>

namespace orvik { namespace imaproc {

namespace {

using processor::BaseAttribute;
using processor::RulePtr;

class CustomImagePropertyRule : public BaseImagePropertyRule
{
public:
    explicit CustomImagePropertyRule(const boost::shared_ptr<BaseCustomCheckedImageProperty>& property)
        : m_property(property)
    {
    }
    bool testRule() const override
    {
        if (!canTest())
            return true;
        const boost::shared_ptr<const BaseAttribute> attribute = getAttribute1();
        const image::BaseImage& image = imageOf(*attribute);
        return (!m_property->isChecked(eCIP_SizeX) || image.getSizeX() == m_property->getSizeX())
               && (!m_property->isChecked(eCIP_SizeY) || image.getSizeY() == m_property->getSizeY())
               && (!m_property->isChecked(eCIP_BufferType) || isAllowed(image.getBufferType()));
    }
    std::string createRuleFormalString() const override
    {
        std::string text;
        if (m_property->isChecked(eCIP_SizeX))
            text += textOf(eImageRuleMessage::eCheckedSizeX);
        if (m_property->isChecked(eCIP_SizeY))
            text += textOf(eImageRuleMessage::eCheckedSizeY);
        if (m_property->isChecked(eCIP_BufferType))
            text += textOf(eImageRuleMessage::eCheckedBufferType);
        return textOf(eImageRuleMessage::eAsComputed, text, getAttribute1()->getObjectName());
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        std::string text = createRuleEvaluatedStartString(depth) + createRuleFormalString();
        if (canTest()) {
            const boost::shared_ptr<const BaseAttribute> attribute = getAttribute1();
            const image::BaseImage& image = imageOf(*attribute);
            if (m_property->isChecked(eCIP_SizeX))
                text += textOf(eImageRuleMessage::eSizeXAgainst, std::to_string(image.getSizeX()),
                               std::to_string(m_property->getSizeX()));
            if (m_property->isChecked(eCIP_SizeY))
                text += textOf(eImageRuleMessage::eSizeYAgainst, std::to_string(image.getSizeY()),
                               std::to_string(m_property->getSizeY()));
            if (m_property->isChecked(eCIP_BufferType))
                text += textOf(eImageRuleMessage::eBufferTypeAgainst, toString(image.getBufferType()), allowedTypes());
        }
        return text + "\n";
    }

private:
    bool canTest() const { return getAttribute1()->hasValue() && m_property->getInputImage(); }
    bool isAllowed(image::eImageBufferType type) const
    {
        const std::vector<image::eImageBufferType> allowed = m_property->getAllowedImageBufferTypes();
        return std::find(allowed.begin(), allowed.end(), type) != allowed.end();
    }
    std::string allowedTypes() const
    {
        std::string text;
        for (const image::eImageBufferType type : m_property->getAllowedImageBufferTypes())
            text = text.empty() ? toString(type) : textOf(eImageRuleMessage::eEitherBufferType, text, toString(type));
        return text;
    }

    boost::shared_ptr<BaseCustomCheckedImageProperty> m_property;
};

}  // namespace

BaseCustomCheckedImageProperty::~BaseCustomCheckedImageProperty() = default;

void BaseCustomCheckedImageProperty::initBase(const WeakImage& input)
{
    m_input = input;
}

boost::shared_ptr<const image::BaseImage> BaseCustomCheckedImageProperty::getInputImage() const
{
    const boost::shared_ptr<const BaseImageAttribute> input = m_input.lock();
    if (!input)
        ORVIK_THROW(processor::ORVIKBaseProcessingException, processor::g_baseProcessingLogSource,
                    processor::eRuleMessage::eAttributeExpired);
    return input->getImage();
}

unsigned long BaseCustomCheckedImageProperty::getSizeX() const
{
    return getInputImage()->getSizeX();
}

unsigned long BaseCustomCheckedImageProperty::getSizeY() const
{
    return getInputImage()->getSizeY();
}

image::eImageBufferType BaseCustomCheckedImageProperty::getImageBufferType() const
{
    return getInputImage()->getBufferType();
}

std::vector<image::eImageBufferType> BaseCustomCheckedImageProperty::getAllowedImageBufferTypes() const
{
    return {getImageBufferType()};
}

RulePtr customImageProperty(const WeakImage& a, const boost::shared_ptr<BaseCustomCheckedImageProperty>& property)
{
    const boost::shared_ptr<CustomImagePropertyRule> rule = makeTogether<CustomImagePropertyRule>(property);
    rule->initBase(a);
    return rule;
}

}}  // namespace orvik::imaproc
