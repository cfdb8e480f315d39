#include "frame/processor/BaseOutputInitializer.h"

#include "frame/util/FrameMessages.h"

namespace orvik { namespace processor {

namespace {

boost::shared_ptr<BaseAttribute> lockOutput(const boost::weak_ptr<BaseAttribute>& attribute, bool initialised)
{
    if (!initialised)
        ORVIK_THROW(ORVIKBaseProcessingException, g_baseProcessingLogSource, eOutputInitializerMessage::eNotInitialised);
    const boost::shared_ptr<BaseAttribute> locked = attribute.lock();
    if (!locked)
        ORVIK_THROW(ORVIKBaseProcessingException, g_baseProcessingLogSource, eOutputInitializerMessage::eAttributeExpired);
    return locked;
}

}  // namespace

BaseOutputInitializer::~BaseOutputInitializer() = default;

void BaseOutputInitializer::initBase(const boost::weak_ptr<BaseAttribute>& outputAttribute)
{
    if (!outputAttribute.lock())
        ORVIK_THROW(ORVIKBaseProcessingException, g_baseProcessingLogSource, eOutputInitializerMessage::eNullAttribute);
    m_outputAttribute = outputAttribute;
    m_initialised = true;
}

boost::shared_ptr<const BaseAttribute> BaseOutputInitializer::getOutputAttribute() const
{
    return lockOutput(m_outputAttribute, m_initialised);
}

boost::shared_ptr<BaseAttribute> BaseOutputInitializer::getOutputAttribute()
{
    return lockOutput(m_outputAttribute, m_initialised);
}

std::string BaseOutputInitializer::describeNewRecord(const std::string& recordName) const
{
    return messageText(getORVIKBaseProcessingLogMessageManager(), eOutputInitializerMessage::eNewRecord,
                       getOutputAttribute()->getObjectName(), recordName);
}

BoolResult BaseOutputInitializer::initOutputAttribute()
{
    const boost::shared_ptr<BaseAttribute> output = getOutputAttribute();
    if (output->hasValue())
        return success();
    const BoolResult result = initAttribute();
    if (result)
        output->setMadeByInitializer(true);
    return result;
}

}}  // namespace orvik::processor
