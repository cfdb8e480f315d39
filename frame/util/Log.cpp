#include "frame/util/Log.h"

#include <log4cplus/logger.h>
#include <log4cplus/loglevel.h>
#include <log4cplus/nullappender.h>

#include <memory>

namespace orvik {

namespace {

/// A logger below the base one. Never destroyed, so that a failure at the end of the process can still be logged.
log4cplus::Logger& makeLogger(const std::string& suffix)
{
    getBaseLogger();
    return *new log4cplus::Logger(log4cplus::Logger::getInstance(getBaseLoggerName() + suffix));
}

const char* const g_messageFailureText = "Exception thrown while processing message";

void logMessageFailure(const char* function, const char* file, unsigned int line)
{
    try {
        logMessage(getBaseLogger(), log4cplus::ERROR_LOG_LEVEL, std::string(g_messageFailureText) + " in " + function, file,
                   static_cast<int>(line));
    } catch (...) {
        // A log that can't be written may be the failure itself; the exception that follows tells of it.
    }
}

}  // namespace

const std::string& getBaseLoggerName()
{
    static const std::string* const name = new std::string("orvik");
    return *name;
}

log4cplus::Logger& getBaseLogger()
{
    static log4cplus::Logger* const logger = [] {
        std::unique_ptr<log4cplus::Logger> made(new log4cplus::Logger(log4cplus::Logger::getInstance(getBaseLoggerName())));
        made->addAppender(log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
        return made.release();
    }();
    return *logger;
}

log4cplus::Logger& getORVIKUtilLogger()
{
    static log4cplus::Logger& logger = makeLogger(".ORVIKUtil");
    return logger;
}

log4cplus::Logger& getORVIKSerializationLogger()
{
    static log4cplus::Logger& logger = makeLogger(".ORVIKSerialization");
    return logger;
}

log4cplus::Logger& processor::getORVIKBaseProcessingLogger()
{
    static log4cplus::Logger& logger = makeLogger(".ORVIKBaseProcessing");
    return logger;
}

log4cplus::Logger& imaproc::getORVIKImageProcessingLogger()
{
    static log4cplus::Logger& logger = makeLogger(".ORVIKImageProcessing");
    return logger;
}

void logMessage(log4cplus::Logger& logger, const int& level, const std::string& message, const std::string& file, int line)
{
    logger.log(level, message, file.c_str(), line);
}

void logError(const LogSource& source, const std::string& text, const char* file, unsigned int line)
{
    log4cplus::Logger& logger = source.logger();
    if (logger.isEnabledFor(log4cplus::ERROR_LOG_LEVEL))
        logMessage(logger, log4cplus::ERROR_LOG_LEVEL, text, file, static_cast<int>(line));
}

std::string formatAndLogError(const LogSource& source, const std::string& domainName, int id,
                              std::initializer_list<std::string> arguments, const char* function, const char* file,
                              unsigned int line)
{
    try {
        LogMessageFormater formater(source.manager());
        formater.setMsgId(domainName, id);
        for (const std::string& argument : arguments)
            formater % argument;
        const std::string text = formater.string();
        logError(source, text, file, line);
        return text;
    } catch (const BaseException& cause) {
        logMessageFailure(function, file, line);
        throw BaseException(g_messageFailureText, function, file, line, cause);
    } catch (const std::exception& cause) {
        logMessageFailure(function, file, line);
        throw BaseException(g_messageFailureText, function, file, line, cause);
    } catch (...) {
        logMessageFailure(function, file, line);
        throw BaseException(g_messageFailureText, function, file, line, UnHandleException());
    }
}

}  // namespace orvik
