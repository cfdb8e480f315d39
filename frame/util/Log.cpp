#include "frame/util/Log.h"

#include "frame/log/LogLibrary.h"
#include "frame/util/Loggers.h"
#include "frame/util/ProcessEnd.h"

#include <log4cplus/loglevel.h>

#include <atomic>
#include <cstdio>
#include <map>
#include <mutex>

#include <dlfcn.h>

namespace orvik {

namespace {

/// Beside the frame's own library, wherever that was installed.
std::string pathOfLogLibrary()
{
    const std::string name = "liborviklog.so";
    Dl_info frame;
    if (dladdr(&g_logLibraryFunction, &frame) == 0 || !frame.dli_fname)
        return name;
    const std::string path(frame.dli_fname);
    return path.substr(0, path.rfind('/') + 1) + name;
}

/// Loads it, and log4cplus where that is not there. It stays loaded: its loggers do.
const LogLibrary& logLibrary()
{
    static const LogLibrary& library = []() -> const LogLibrary& {
        const std::string path = pathOfLogLibrary();
        void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        void* const function = handle ? dlsym(handle, g_logLibraryFunction) : nullptr;
        if (!function) {
            const char* const reason = dlerror();
            throw BaseException("Nothing can be logged: " + std::string(reason ? reason : path), __PRETTY_FUNCTION__,
                                __FILE__, __LINE__);
        }
        noteLoad();
        return *reinterpret_cast<LogLibraryFunction>(function)();
    }();
    return library;
}

/// Whether somebody may listen, which takes log4cplus in the process. It may come at any time and does not go: whoever brings
/// it is in use as long as it logs.
bool isLogUsed()
{
    static std::atomic<bool> used(false);
    if (!used)
        if (void* const there = dlopen(ORVIK_LOG4CPLUS, RTLD_LAZY | RTLD_NOLOAD)) {
            dlclose(there);
            try {
                logLibrary();
                used = true;
            } catch (const BaseException& e) {
                // The failure that was to be logged is told all the same.
                static std::once_flag told;
                std::call_once(told, [&] { std::fprintf(stderr, "orvik: %s\n", e.what()); });
            }
        }
    return used;
}

/// Runs something that uses log4cplus, which the end of the process then waits for; not once that has begun.
template<class F>
void withLog(const F& f)
{
    Work work;
    if (!work.begin())
        return;
    struct End
    {
        ~End() { ended.end(); }
        Work& ended;
    } const end{work};
    const WithinWork within(work, WithinWork::eOwn);
    f();
}

/// A logger below the base one.
log4cplus::Logger& makeLogger(const char* suffix)
{
    return getLogger(getBaseLoggerName() + suffix);
}

const char* const g_messageFailureText = "Exception thrown while processing message";

void logMessageFailure(const char* function, const char* file, unsigned int line)
{
    try {
        if (isLogged(&getBaseLogger, log4cplus::ERROR_LOG_LEVEL))
            logMessage(getBaseLogger(), log4cplus::ERROR_LOG_LEVEL, std::string(g_messageFailureText) + " in " + function,
                       file, static_cast<int>(line));
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
    static log4cplus::Logger& logger = logLibrary().makeLogger(getBaseLoggerName(), true);
    return logger;
}

log4cplus::Logger& getLogger(const std::string& name)
{
    static std::mutex mutex;
    static auto* const loggers = new std::map<std::string, log4cplus::Logger*>;
    getBaseLogger();
    const std::lock_guard<std::mutex> lock(mutex);
    log4cplus::Logger*& logger = (*loggers)[name];
    if (!logger)
        logger = &logLibrary().makeLogger(name, false);
    return *logger;
}

bool isLogged(log4cplus::Logger& (*logger)(), int level)
{
    bool is = false;
    withLog([&] { is = isLogUsed() && logLibrary().isEnabledFor(logger(), level); });
    return is;
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
    withLog([&] { logLibrary().log(logger, level, message, file, line); });
}

void logError(const LogSource& source, const std::string& text, const char* file, unsigned int line)
{
    if (isLogged(source.logger, log4cplus::ERROR_LOG_LEVEL))
        logMessage(source.logger(), log4cplus::ERROR_LOG_LEVEL, text, file, static_cast<int>(line));
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
