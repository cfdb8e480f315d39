#include "frame/util/LogMessageManager.h"

#include <boost/format.hpp>

#include <map>
#include <mutex>
#include <stdexcept>

namespace orvik {

struct LogMessageManager::Rows
{
    mutable std::mutex mutex;
    std::map<std::string, std::map<int, std::string>> texts;
};

LogMessageManager::LogMessageManager() : m_rows(new Rows) {}

LogMessageManager::~LogMessageManager() = default;

LogMessageManager& LogMessageManager::getInstance(const std::string& name)
{
    static std::mutex mutex;
    // Never destroyed: a failure may still want its text while the process ends.
    static std::map<std::string, LogMessageManager*>* const managers = new std::map<std::string, LogMessageManager*>;
    const std::lock_guard<std::mutex> lock(mutex);
    LogMessageManager*& manager = (*managers)[name];
    if (!manager)
        manager = new LogMessageManager;
    return *manager;
}

void LogMessageManager::addMessage(const std::string& domainName, int id, const std::string& text)
{
    const std::lock_guard<std::mutex> lock(m_rows->mutex);
    m_rows->texts[domainName][id] = text;
}

std::string LogMessageManager::getMessage(const std::string& domainName, int id) const
{
    const std::lock_guard<std::mutex> lock(m_rows->mutex);
    const auto domain = m_rows->texts.find(domainName);
    if (domain != m_rows->texts.end()) {
        const auto row = domain->second.find(id);
        if (row != domain->second.end())
            return row->second;
    }
    throw std::out_of_range("No message " + std::to_string(id) + " in domain " + domainName);
}

std::size_t LogMessageManager::getNbMessages(const std::string& domainName) const
{
    const std::lock_guard<std::mutex> lock(m_rows->mutex);
    const auto domain = m_rows->texts.find(domainName);
    return domain == m_rows->texts.end() ? 0 : domain->second.size();
}

LogMessageFormater::LogMessageFormater(const LogMessageManager& manager) : m_manager(manager) {}

LogMessageFormater& LogMessageFormater::setMsgId(const std::string& domainName, int id)
{
    m_pattern = m_manager.getMessage(domainName, id);
    m_arguments.clear();
    return *this;
}

LogMessageFormater& LogMessageFormater::operator%(const std::string& argument)
{
    m_arguments.push_back(argument);
    return *this;
}

LogMessageFormater& LogMessageFormater::operator%(const unsigned int& argument)
{
    m_arguments.push_back(std::to_string(argument));
    return *this;
}

std::string LogMessageFormater::string() const
{
    boost::format format(m_pattern);
    for (const std::string& argument : m_arguments)
        format % argument;
    return format.str();
}

}  // namespace orvik
