#pragma once

#include "frame/util/Export.h"

#include <exception>
#include <string>

namespace orvik {

/// Root of all exceptions of the kit: a message, the place that raised it and, where there is one, the text of its cause.
class ORVIK_API BaseException : public std::exception
{
public:
    BaseException(const std::string& message, const char* function, const char* file, unsigned int line);
    BaseException(const std::string& message, const char* function, const char* file, unsigned int line,
                  const BaseException& cause);
    BaseException(const std::string& message, const char* function, const char* file, unsigned int line,
                  const std::exception& cause);
    ~BaseException() override;

    const char* what() const noexcept override { return m_message.c_str(); }
    const std::string& getMessage() const { return m_message; }
    /// Full signature of the function that raised it, as the compiler prints it.
    const std::string& getFunction() const { return m_function; }
    const std::string& getFile() const { return m_file; }
    unsigned int getLine() const { return m_line; }
    /// Text of the exception that led to this one; empty when there was none.
    const std::string& getCause() const { return m_cause; }

private:
    std::string m_message;
    std::string m_function;
    std::string m_file;
    unsigned int m_line;
    std::string m_cause;
};

/// Stands as the cause where an exception of unknown type was caught.
class ORVIK_API UnHandleException : public std::exception
{
public:
    ~UnHandleException() override;
    const char* what() const noexcept override;
};

/// Declares the exception class of one library of the kit; it adds nothing to the base but its type.
#define ORVIK_EXCEPTION(Name) \
    class ORVIK_API Name : public ::orvik::BaseException \
    { \
    public: \
        using ::orvik::BaseException::BaseException; \
        ~Name() override; \
    }

ORVIK_EXCEPTION(ORVIKUtilException);
ORVIK_EXCEPTION(ORVIKSerializationException);

namespace processor {
ORVIK_EXCEPTION(ORVIKBaseProcessingException);
}

namespace imaproc {
ORVIK_EXCEPTION(ORVIKImageProcessingException);
}

}  // namespace orvik
