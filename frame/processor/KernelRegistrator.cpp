#include "frame/processor/KernelRegistrator.h"

#include "frame/util/FrameMessages.h"

#include <log4cplus/logger.h>

namespace orvik { namespace processor {

void logFailedRegistrations(const std::string& failures, const char* file)
{
    log4cplus::Logger& logger = getORVIKBaseProcessingLogger();
    if (!logger.isEnabledFor(log4cplus::TRACE_LOG_LEVEL))
        return;
    LogMessageFormater formater(getORVIKBaseProcessingLogMessageManager());
    formater[eAlgorithmFunctionMessage::eRegistrationFailed] % failures % std::string(file);
    logMessage(logger, log4cplus::TRACE_LOG_LEVEL, formater.string(), file, __LINE__);
}

}}  // namespace orvik::processor
