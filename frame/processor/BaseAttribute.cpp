#include "frame/processor/BaseAttribute.h"

#include "frame/processor/ValueArchiving.h"

namespace orvik { namespace processor {

BaseAttribute::BaseAttribute() : m_hasValue(false), m_madeByInitializer(false) {}
BaseAttribute::~BaseAttribute() = default;

void BaseAttribute::setHasValue(bool hasValue)
{
    m_hasValue = hasValue;
    m_madeByInitializer = false;
}

void BaseAttribute::clear()
{
    setHasValue(false);
}

bool BaseAttribute::isStored() const
{
    return false;
}

BoolResult BaseAttribute::write(BaseOArchive&) const
{
    return success();
}

BoolResult BaseAttribute::read(BaseIArchive&)
{
    return success();
}

bool BaseAttribute::setByVisitor(BaseLeafVisitor&)
{
    return false;
}

BaseDataItemAttribute::~BaseDataItemAttribute() = default;
BaseInputMandatoryDataItemAttribute::~BaseInputMandatoryDataItemAttribute() = default;
BaseInputOptionalDataItemAttribute::~BaseInputOptionalDataItemAttribute() = default;
BaseOutputMandatoryDataItemAttribute::~BaseOutputMandatoryDataItemAttribute() = default;

ORVIK_VALUE_ATTRIBUTE(double)
ORVIK_VALUE_ATTRIBUTE(float)
ORVIK_VALUE_ATTRIBUTE(unsigned int)
ORVIK_VALUE_ATTRIBUTE(unsigned long)

}}  // namespace orvik::processor
