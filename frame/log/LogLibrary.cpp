// The library that logs by log4cplus, of which the frame itself links nothing.

#include "frame/log/LogLibrary.h"

#include "frame/util/Export.h"

#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

#include <memory>

namespace {

log4cplus::Logger& makeLogger(const std::string& name, bool silent)
{
    std::unique_ptr<log4cplus::Logger> made(new log4cplus::Logger(log4cplus::Logger::getInstance(name)));
    if (silent)
        made->addAppender(log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    return *made.release();
}

bool isEnabledFor(const log4cplus::Logger& logger, int level)
{
    return logger.isEnabledFor(level);
}

void log(const log4cplus::Logger& logger, int level, const std::string& message, const std::string& file, int line)
{
    logger.log(level, message, file.c_str(), line);
}

}  // namespace

extern "C" ORVIK_API const orvik::LogLibrary* orvikLogLibrary()
{
    static const orvik::LogLibrary library = {&makeLogger, &isEnabledFor, &log};
    return &library;
}
