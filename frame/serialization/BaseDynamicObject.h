#pragma once

#include "frame/serialization/BaseSerializationObject.h"
#include "frame/util/ProcessingResult.h"

#include <boost/shared_ptr.hpp>

#include <string>

namespace orvik {

class BaseIArchive;
class BaseOArchive;
class BaseDynamicObject;

typedef boost::shared_ptr<BaseDynamicObject> DynamicObjectPtr;

/// An object that can be made by the name of its class and written to an archive.
class ORVIK_API BaseDynamicObject : public BaseSerializationObject
{
public:
    BaseDynamicObject();
    ~BaseDynamicObject() override;

    /// Full name of the class, namespaces included: the key in the factories and in archives.
    virtual std::string getClassName() const = 0;
    virtual BaseDynamicObject* createNew() const = 0;
    virtual DynamicObjectPtr createShared() const = 0;
    virtual bool hasCopySupport() const = 0;
    virtual BaseDynamicObject* duplicate() const = 0;
    virtual DynamicObjectPtr duplicateShared() const = 0;
    virtual void initCtorCopy(const BaseDynamicObject& other);
    virtual void copy(const BaseDynamicObject& other) = 0;
    virtual BoolResult write(BaseOArchive& archive) const;
    virtual BoolResult read(BaseIArchive& archive);
};

}  // namespace orvik
