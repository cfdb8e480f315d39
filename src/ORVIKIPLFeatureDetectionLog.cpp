#include "ORVIKIPLFeatureDetectionLogMessages.h"

#include "frame/util/KeptText.h"
#include "frame/util/Loggers.h"

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

#include <new>

namespace orvik { namespace imaproc { namespace fd {

namespace {

// Guards of the first making of the statics below; made on first use, since they may be asked for during load, and never
// destroyed, since a run on another thread may fail until the very end.
template<class Which>
struct NamedMutex
{
    static boost::mutex& get()
    {
        alignas(boost::mutex) static char place[sizeof(boost::mutex)];
        static boost::mutex& mutex = *new (place) boost::mutex;
        return mutex;
    }
};
struct ManagerMutex : NamedMutex<ManagerMutex>
{
};
struct LoggerNameMutex : NamedMutex<LoggerNameMutex>
{
};
struct LoggerMutex : NamedMutex<LoggerMutex>
{
};

}  // namespace

ORVIKIPLFeatureDetectionException::~ORVIKIPLFeatureDetectionException() = default;

LogMessageManager& getORVIKIPLFeatureDetectionLogMessageManager()
{
    const boost::lock_guard<boost::mutex> lock(ManagerMutex::get());
    static LogMessageManager& manager = LogMessageManager::getInstance("ORVIKIPLFeatureDetection");
    return manager;
}

const std::string& getORVIKIPLFeatureDetectionLoggerName()
{
    const boost::lock_guard<boost::mutex> lock(LoggerNameMutex::get());
    static const std::string& name = keptText(getBaseLoggerName() + ".ORVIKIPLFeatureDetection");
    return name;
}

log4cplus::Logger& getORVIKIPLFeatureDetectionLogger()
{
    const std::string& name = getORVIKIPLFeatureDetectionLoggerName();
    const boost::lock_guard<boost::mutex> lock(LoggerMutex::get());
    static log4cplus::Logger& logger = getLogger(name);
    return logger;
}

const LogSource g_featureDetectionLogSource = {&getORVIKIPLFeatureDetectionLogger,
                                               &getORVIKIPLFeatureDetectionLogMessageManager};

}}}  // namespace orvik::imaproc::fd
