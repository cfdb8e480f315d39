#include "ORVIKIPLFeatureDetectionLogMessages.h"

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>
#include <log4cplus/logger.h>

namespace orvik { namespace imaproc { namespace fd {

namespace {

// Guards of the first making of the statics below; made on first use, since they may be asked for during load.
struct ManagerMutex
{
    static boost::mutex& get()
    {
        static boost::mutex mutex;
        return mutex;
    }
};
struct LoggerNameMutex
{
    static boost::mutex& get()
    {
        static boost::mutex mutex;
        return mutex;
    }
};
struct LoggerMutex
{
    static boost::mutex& get()
    {
        static boost::mutex mutex;
        return mutex;
    }
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
    static const std::string name = getBaseLoggerName() + ".ORVIKIPLFeatureDetection";
    return name;
}

log4cplus::Logger& getORVIKIPLFeatureDetectionLogger()
{
    const std::string& name = getORVIKIPLFeatureDetectionLoggerName();
    const boost::lock_guard<boost::mutex> lock(LoggerMutex::get());
    static log4cplus::Logger logger = (getBaseLogger(), log4cplus::Logger::getInstance(name));
    return logger;
}

const LogSource g_featureDetectionLogSource = {&getORVIKIPLFeatureDetectionLogger,
                                               &getORVIKIPLFeatureDetectionLogMessageManager};

}}}  // namespace orvik::imaproc::fd
