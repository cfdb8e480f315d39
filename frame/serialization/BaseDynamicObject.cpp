#include "frame/serialization/BaseDynamicObject.h"

namespace orvik {

BaseSerializationObject::BaseSerializationObject() = default;
BaseSerializationObject::BaseSerializationObject(const BaseSerializationObject&) = default;
BaseSerializationObject& BaseSerializationObject::operator=(const BaseSerializationObject&) = default;
BaseSerializationObject::~BaseSerializationObject() = default;

BaseDynamicObject::BaseDynamicObject() = default;
BaseDynamicObject::~BaseDynamicObject() = default;

void BaseDynamicObject::initCtorCopy(const BaseDynamicObject&) {}

BoolResult BaseDynamicObject::write(BaseOArchive&) const
{
    return success();
}

BoolResult BaseDynamicObject::read(BaseIArchive&)
{
    return success();
}

}  // namespace orvik
