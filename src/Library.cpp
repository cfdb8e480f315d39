#include "Library.h"

#include "ORVIKIPLFeatureDetectionLogMessages.h"

#include "frame/processor/ClassStatics.h"

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

namespace orvik { namespace imaproc { namespace fd {

std::string Library::toolTip(unsigned int row)
{
    MessageMapRegistrator<eProcessorMessage>::process();
    const boost::lock_guard<boost::mutex> lock(processor::ToolTipMutex::get());
    return LogMessageFormater(getORVIKIPLFeatureDetectionLogMessageManager())
        .setMsgId(typeid(eProcessorMessage::domain).name(), static_cast<int>(row))
        .string();
}

}}}  // namespace orvik::imaproc::fd
