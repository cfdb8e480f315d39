#pragma once

#include "frame/util/Export.h"

#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

namespace orvik {

/// The catalogue of texts of one library, by the run-time name of an enumeration's domain and a number.
/// Filled while libraries load; safe to read from any thread.
class ORVIK_API LogMessageManager
{
public:
    /// The one catalogue of that name; made at the first call, never destroyed.
    static LogMessageManager& getInstance(const std::string& name);

    /// Adds a row, or replaces the text that the number had.
    void addMessage(const std::string& domainName, int id, const std::string& text);

    template<class TDomain>
    void addMessage(const TDomain& value, const std::string& text)
    {
        addMessage(typeid(TDomain).name(), static_cast<int>(value), text);
    }

    /// @throws std::out_of_range when there is no such row.
    std::string getMessage(const std::string& domainName, int id) const;
    /// Number of rows of a domain; 0 for one that is unknown or empty.
    std::size_t getNbMessages(const std::string& domainName) const;

    LogMessageManager(const LogMessageManager&) = delete;
    LogMessageManager& operator=(const LogMessageManager&) = delete;

private:
    LogMessageManager();
    ~LogMessageManager();

    struct Rows;
    std::unique_ptr<Rows> m_rows;
};

/// Builds one text of a catalogue: choose the row, bind its arguments in order, take the string.
class ORVIK_API LogMessageFormater
{
public:
    explicit LogMessageFormater(const LogMessageManager& manager);

    LogMessageFormater& setMsgId(const std::string& domainName, int id);

    template<class TDomain>
    LogMessageFormater& operator[](const TDomain& value)
    {
        return setMsgId(typeid(TDomain).name(), static_cast<int>(value));
    }

    LogMessageFormater& operator%(const std::string& argument);
    LogMessageFormater& operator%(const unsigned int& argument);

    /// The text with its `%d` and `%s` filled. @throws boost::io::format_error when arguments and fields do not agree.
    std::string string() const;

private:
    const LogMessageManager& m_manager;
    std::string m_pattern;
    std::vector<std::string> m_arguments;
};

/// A text of a catalogue with its arguments. The row is looked up now: not to be called before somebody wants to read it.
template<class TDomain, class... Arguments>
std::string messageText(const LogMessageManager& manager, const TDomain& value, const Arguments&... arguments)
{
    LogMessageFormater formater(manager);
    static_cast<void>((formater[value] % ... % arguments));
    return formater.string();
}

/// Adds the rows of one enumeration to its catalogue, once per process. `Derived` tells which catalogue and which rows.
template<class E, class Derived>
class MsgMapRegistrator
{
public:
    static bool registerMessageMap()
    {
        if (!g_bAlreadyRegistred) {
            g_bAlreadyRegistred = true;
            Derived::addRows(LogMessageManager::getInstance(Derived::managerName()));
        }
        return true;
    }

private:
    inline static bool g_bAlreadyRegistred = false;
};

namespace details {
/// Specialised per enumeration: `managerName()` and `addRows(LogMessageManager&)`.
template<class E, class Unused>
struct MsgMapRegistratorDerived;
}  // namespace details

/// Makes sure that the texts of enumeration `E` are registered. Called from static initialisers, and by whoever reads a
/// text during load, when the order of initialisers is not known.
template<class E, class Unused = void>
struct MessageMapRegistrator
{
    static bool process()
    {
        return MsgMapRegistrator<E, details::MsgMapRegistratorDerived<E, Unused>>::registerMessageMap();
    }
};

}  // namespace orvik
