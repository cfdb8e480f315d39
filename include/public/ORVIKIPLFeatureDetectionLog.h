#pragma once

#include "frame/util/Log.h"

namespace orvik { namespace imaproc { namespace fd {

/// What the feature-detection library raises when one of its own functions finds a failure.
class ORVIK_API ORVIKIPLFeatureDetectionException : public BaseException
{
public:
    using BaseException::BaseException;
    ~ORVIKIPLFeatureDetectionException() override;
};

/// The kit's root logger name followed by ".ORVIKIPLFeatureDetection".
ORVIK_API const std::string& getORVIKIPLFeatureDetectionLoggerName();
ORVIK_API log4cplus::Logger& getORVIKIPLFeatureDetectionLogger();
ORVIK_API LogMessageManager& getORVIKIPLFeatureDetectionLogMessageManager();

}}}  // namespace orvik::imaproc::fd
