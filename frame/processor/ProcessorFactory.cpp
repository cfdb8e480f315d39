#include "frame/processor/ProcessorFactory.h"

#include <boost/filesystem/path.hpp>

#include <map>
#include <mutex>
#include <stdexcept>

namespace orvik { namespace processor {

struct ProcessorFactory::Processors
{
    mutable std::mutex mutex;
    std::map<std::string, ProcessorInfo> infos;
};

ProcessorFactory::ProcessorFactory() : m_processors(new Processors) {}
ProcessorFactory::~ProcessorFactory() = default;

ProcessorFactory& ProcessorFactory::getInstance()
{
    static ProcessorFactory* const factory = new ProcessorFactory;
    return *factory;
}

std::string getRelativeFromRoot(const boost::filesystem::path& path, const boost::filesystem::path& root)
{
    return path.lexically_relative(root).replace_extension().generic_string();
}

ProcessorFactory::ProcessorInfo ProcessorFactory::makeInfo(const std::string& objectName, const std::string& toolTip,
                                                           const char* library, const char* header)
{
    const boost::filesystem::path path(header);
    boost::filesystem::path root;
    for (const char* const candidate : {"include/public", "include/private", "siblings"})
        if (std::string(header).compare(0, std::string(candidate).size(), candidate) == 0)
            root = candidate;
    ProcessorInfo info;
    info.objectName = objectName;
    info.toolTip = toolTip;
    info.libraryName = library;
    info.headerPath = root.empty() ? boost::filesystem::path(path).replace_extension().generic_string()
                                   : getRelativeFromRoot(path, root);
    return info;
}

void ProcessorFactory::registerProcessor(const std::string& typeName, const ProcessorInfo& info)
{
    const std::lock_guard<std::mutex> lock(m_processors->mutex);
    m_processors->infos[typeName] = info;
}

void ProcessorFactory::unRegisterProcessor(const std::string& typeName)
{
    const std::lock_guard<std::mutex> lock(m_processors->mutex);
    m_processors->infos.erase(typeName);
}

bool ProcessorFactory::isRegistered(const std::string& typeName) const
{
    const std::lock_guard<std::mutex> lock(m_processors->mutex);
    return m_processors->infos.count(typeName) != 0;
}

ProcessorFactory::ProcessorInfo ProcessorFactory::getInfo(const std::string& typeName) const
{
    const std::lock_guard<std::mutex> lock(m_processors->mutex);
    const auto found = m_processors->infos.find(typeName);
    if (found == m_processors->infos.end())
        throw std::out_of_range("No processor class " + typeName + " is loaded");
    return found->second;
}

std::vector<std::string> ProcessorFactory::getTypeNames() const
{
    const std::lock_guard<std::mutex> lock(m_processors->mutex);
    std::vector<std::string> names;
    for (const auto& info : m_processors->infos)
        names.push_back(info.first);
    return names;
}

boost::shared_ptr<BaseProcessor> ProcessorFactory::createProcessor(const std::string& typeName) const
{
    return boost::dynamic_pointer_cast<BaseProcessor>(DynamicObjectFactory::getInstance().createShared(typeName));
}

}}  // namespace orvik::processor
