#include "frame/processor/BaseOutputInitializer.h"

#include "frame/util/FrameMessages.h"

namespace orvik { namespace processor {

namespace {

[[noreturn]] void throwInitializerFailure(const char* text)
{
    ORVIK_THROW_PROCESSING(text);
}

boost::shared_ptr<BaseAttribute> lockOutput(const boost::weak_ptr<BaseAttribute>& attribute, bool initialised)
{
    if (!initialised)
        throwInitializerFailure("Initialize output initializer before trying to use its data");
    const boost::shared_ptr<BaseAttribute> locked = attribute.lock();
    if (!locked)
        throwInitializerFailure("Attribute weak pointer has expired, can't get it");
    return locked;
}

}  // namespace

BaseOutputInitializer::~BaseOutputInitializer() = default;

void BaseOutputInitializer::initBase(const boost::weak_ptr<BaseAttribute>& outputAttribute)
{
    if (!outputAttribute.lock())
        throwInitializerFailure("Input attribute should not be null");
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
