#pragma once

#include "frame/util/BaseException.h"
#include "frame/util/LogMessageManager.h"

#include <initializer_list>

namespace log4cplus {
class Logger;
}

namespace orvik {

/// Root of the kit's logger names; every library logs below it.
ORVIK_API const std::string& getBaseLoggerName();
/// Has a silent appender of its own, so that a program that configures no logging sees no complaint; what the program
/// attaches to the root of all loggers still receives everything.
ORVIK_API log4cplus::Logger& getBaseLogger();

ORVIK_API log4cplus::Logger& getORVIKUtilLogger();
ORVIK_API LogMessageManager& getORVIKUtilLogMessageManager();
ORVIK_API log4cplus::Logger& getORVIKSerializationLogger();
ORVIK_API LogMessageManager& getORVIKSerializationLogMessageManager();

namespace processor {
ORVIK_API log4cplus::Logger& getORVIKBaseProcessingLogger();
ORVIK_API LogMessageManager& getORVIKBaseProcessingLogMessageManager();
}  // namespace processor

namespace imaproc {
ORVIK_API log4cplus::Logger& getORVIKImageProcessingLogger();
ORVIK_API LogMessageManager& getORVIKImageProcessingLogMessageManager();
}  // namespace imaproc

/// Sends a text to a logger with the position of the caller. Levels are log4cplus' own: ERROR 40000, TRACE 0.
ORVIK_API void logMessage(log4cplus::Logger& logger, const int& level, const std::string& message, const std::string& file,
                          int line);

/// Logger and catalogue of one library, as a throw site needs them.
struct LogSource
{
    log4cplus::Logger& (*logger)();
    LogMessageManager& (*manager)();
};

/// First half of a throw site: builds the text and logs it at ERROR when that level is enabled.
/// A failure in here is logged on the base logger and leaves as BaseException with the failure as its cause.
ORVIK_API std::string formatAndLogError(const LogSource& source, const std::string& domainName, int id,
                                        std::initializer_list<std::string> arguments, const char* function, const char* file,
                                        unsigned int line);

/// Logs a failure that already has its text, at ERROR.
ORVIK_API void logError(const LogSource& source, const std::string& text, const char* file, unsigned int line);

/// Throw site of a catalogued failure: ORVIK_THROW(ExceptionClass, source, enumerator, arguments as strings...).
#define ORVIK_THROW(ExceptionClass, source, enumerator, ...) \
    throw ExceptionClass(::orvik::formatAndLogError(source, typeid(enumerator).name(), static_cast<int>(enumerator), \
                                                    {__VA_ARGS__}, __PRETTY_FUNCTION__, __FILE__, __LINE__), \
                         __PRETTY_FUNCTION__, __FILE__, __LINE__)

/// Throw site of a failure that has its text already.
#define ORVIK_THROW_TEXT(ExceptionClass, source, text) \
    do { \
        const std::string& failureText = text; \
        ::orvik::logError(source, failureText, __FILE__, __LINE__); \
        throw ExceptionClass(failureText, __PRETTY_FUNCTION__, __FILE__, __LINE__); \
    } while (false)

}  // namespace orvik
