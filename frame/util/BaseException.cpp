#include "frame/util/BaseException.h"

namespace orvik {

BaseException::BaseException(const std::string& message, const char* function, const char* file, unsigned int line)
    : m_message(message), m_function(function), m_file(file), m_line(line)
{
}

BaseException::BaseException(const std::string& message, const char* function, const char* file, unsigned int line,
                             const BaseException& cause)
    : m_message(message), m_function(function), m_file(file), m_line(line), m_cause(cause.getMessage())
{
}

BaseException::BaseException(const std::string& message, const char* function, const char* file, unsigned int line,
                             const std::exception& cause)
    : m_message(message), m_function(function), m_file(file), m_line(line), m_cause(cause.what())
{
}

BaseException::~BaseException() = default;

UnHandleException::~UnHandleException() = default;

const char* UnHandleException::what() const noexcept
{
    return "Unhandled exception";
}

ORVIKUtilException::~ORVIKUtilException() = default;
ORVIKSerializationException::~ORVIKSerializationException() = default;
processor::ORVIKBaseProcessingException::~ORVIKBaseProcessingException() = default;
imaproc::ORVIKImageProcessingException::~ORVIKImageProcessingException() = default;

}  // namespace orvik
