#include "frame/serialization/DynamicObjectFactory.h"

#include "frame/util/ProcessEnd.h"

#include <map>
#include <mutex>

namespace orvik {

namespace {

struct Creators
{
    DynamicObjectFactory::NewCreatorFcn newFcn;
    DynamicObjectFactory::SharedCreatorFcn sharedFcn;
};

}  // namespace

struct DynamicObjectFactory::Classes
{
    mutable std::mutex mutex;
    std::map<std::string, Creators> creators;

    Creators find(const std::string& className) const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = creators.find(className);
        return found == creators.end() ? Creators{nullptr, nullptr} : found->second;
    }
};

DynamicObjectFactory::DynamicObjectFactory() : m_classes(new Classes) {}
DynamicObjectFactory::~DynamicObjectFactory() = default;

DynamicObjectFactory& DynamicObjectFactory::getInstance()
{
    // Never destroyed: libraries that are unloaded late still take their classes out.
    static DynamicObjectFactory* const factory = new DynamicObjectFactory;
    return *factory;
}

void DynamicObjectFactory::registerClass(const std::string& className, NewCreatorFcn newFcn, SharedCreatorFcn sharedFcn)
{
    noteLoad();
    const std::lock_guard<std::mutex> lock(m_classes->mutex);
    m_classes->creators[className] = Creators{newFcn, sharedFcn};
}

void DynamicObjectFactory::unRegisterClass(const std::string& className)
{
    const std::lock_guard<std::mutex> lock(m_classes->mutex);
    m_classes->creators.erase(className);
}

bool DynamicObjectFactory::isRegistered(const std::string& className) const
{
    return m_classes->find(className).newFcn != nullptr;
}

DynamicObjectPtr DynamicObjectFactory::createShared(const std::string& className) const
{
    const Creators creators = m_classes->find(className);
    return creators.sharedFcn ? creators.sharedFcn() : DynamicObjectPtr();
}

BaseDynamicObject* DynamicObjectFactory::createNew(const std::string& className) const
{
    const Creators creators = m_classes->find(className);
    return creators.newFcn ? creators.newFcn() : nullptr;
}

}  // namespace orvik
