#pragma once

#include "frame/util/Export.h"

namespace orvik {

/// Root of everything that can be kept in a collection of results or travel with a request.
class ORVIK_API BaseSerializationObject
{
public:
    BaseSerializationObject();
    BaseSerializationObject(const BaseSerializationObject&);
    BaseSerializationObject& operator=(const BaseSerializationObject&);
    virtual ~BaseSerializationObject();
};

}  // namespace orvik
