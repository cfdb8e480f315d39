#pragma once

#include <string>

namespace log4cplus {
class Logger;
}

namespace orvik {

/// What the frame asks of log4cplus, by the functions of a small library that it loads when there is a need. log4cplus makes
/// threads when it is loaded, which a process that logs nothing has no use for: they may not be had, and a process made by
/// fork waits for them at `exit` for ever.
struct LogLibrary
{
    /// A logger that is never destroyed; silent: with an appender that drops what it is given.
    log4cplus::Logger& (*makeLogger)(const std::string& name, bool silent);
    bool (*isEnabledFor)(const log4cplus::Logger& logger, int level);
    void (*log)(const log4cplus::Logger& logger, int level, const std::string& message, const std::string& file, int line);
};

/// The name and type of the function that gives them.
const char* const g_logLibraryFunction = "orvikLogLibrary";
typedef const LogLibrary* (*LogLibraryFunction)();

}  // namespace orvik
