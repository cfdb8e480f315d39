#pragma once

#include "frame/serialization/BaseDynamicObject.h"

#include <memory>

namespace orvik {

/// Makes objects by the name of their class. Libraries enter their classes while they load and take them out when they
/// are unloaded.
class ORVIK_API DynamicObjectFactory
{
public:
    typedef BaseDynamicObject* (*NewCreatorFcn)();
    typedef DynamicObjectPtr (*SharedCreatorFcn)();

    static DynamicObjectFactory& getInstance();

    void registerClass(const std::string& className, NewCreatorFcn newFcn, SharedCreatorFcn sharedFcn);
    void unRegisterClass(const std::string& className);
    bool isRegistered(const std::string& className) const;
    /// Null when the class is not known.
    DynamicObjectPtr createShared(const std::string& className) const;
    BaseDynamicObject* createNew(const std::string& className) const;

    DynamicObjectFactory(const DynamicObjectFactory&) = delete;
    DynamicObjectFactory& operator=(const DynamicObjectFactory&) = delete;

private:
    DynamicObjectFactory();
    ~DynamicObjectFactory();

    struct Classes;
    std::unique_ptr<Classes> m_classes;
};

/// Enters class `X` in the factory for as long as this object lives: one static per class, in its main unit.
template<class X>
struct DynamicRegistrator
{
    DynamicRegistrator()
    {
        DynamicObjectFactory::getInstance().registerClass(X::getTypeName(), &X::createNewObject, &X::createSharedObject);
    }
    ~DynamicRegistrator() { DynamicObjectFactory::getInstance().unRegisterClass(X::getTypeName()); }
    DynamicRegistrator(const DynamicRegistrator&) = delete;
    DynamicRegistrator& operator=(const DynamicRegistrator&) = delete;
};

}  // namespace orvik
