#include "frame/processor/KernelRegistrator.h"

#include "frame/util/FrameMessages.h"
#include "frame/util/Loggers.h"

#include <log4cplus/loglevel.h>

namespace orvik { namespace processor {

void logFailedRegistrations(const std::string& failures, const char* file)
{
    if (!isLogged(&getORVIKBaseProcessingLogger, log4cplus::TRACE_LOG_LEVEL))
        return;
    LogMessageFormater formater(getORVIKBaseProcessingLogMessageManager());
    formater[eAlgorithmFunctionMessage::eRegistrationFailed] % failures % std::string(file);
    logMessage(getORVIKBaseProcessingLogger(), log4cplus::TRACE_LOG_LEVEL, formater.string(), file, __LINE__);
}

}}  // namespace orvik::processor
