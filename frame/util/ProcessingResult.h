#pragma once

#include <string>
#include <utility>

namespace orvik {

/// What an operation of the flow answers: a value, and a message that is empty unless something went wrong.
template<class T>
class ProcessingResult
{
public:
    ProcessingResult(const T& value = T(), std::string message = std::string())
        : m_value(value), m_message(std::move(message))
    {
    }

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
