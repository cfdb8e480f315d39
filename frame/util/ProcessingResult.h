#pragma once

#include <string>
#include <type_traits>
#include <utility>

namespace orvik {

/// The value of a result of this type when something went wrong. Enumerations have a function of their own beside them;
/// their value 0 is that of success.
constexpr bool failedValue(bool)
{
    return false;
}

/// What an operation of the flow answers: a value, and a message that is empty unless something went wrong.
template<class T>
class ProcessingResult
{
public:
    ProcessingResult(const T& value = T(), std::string message = std::string())
        : m_value(value), m_message(std::move(message))
    {
    }
    /// Success or failure of something that this result is the answer to.
    template<class U, class = typename std::enable_if<std::is_same<U, bool>::value && !std::is_same<T, bool>::value>::type>
    ProcessingResult(const ProcessingResult<U>& result)
        : m_value(result ? T() : failedValue(T())), m_message(result.getMessage())
    {
    }

    /// Whether nothing went wrong.
    explicit operator bool() const { return m_value != failedValue(m_value); }

    const T& getValue() const { return m_value; }
    const std::string& getMessage() const { return m_message; }

private:
    T m_value;
    std::string m_message;
};

/// True with an empty message is success; false carries the reason.
typedef ProcessingResult<bool> BoolResult;

inline BoolResult success()
{
    return BoolResult(true);
}

inline BoolResult failure(std::string reason)
{
    return BoolResult(false, std::move(reason));
}

}  // namespace orvik
