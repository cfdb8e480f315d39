#pragma once

#include "frame/util/Log.h"

// The frame's own catalogues. Numbers are fixed: they are referred to from outside.

namespace orvik {

struct eORVIKUtilErrors
{
    enum domain { eCopyNotSupported = 3 };
};

struct eORVIKSerializationMessage
{
    enum domain { eClassVersionTooRecent = 25 };
};

namespace processor {

struct eProcessorMessage
{
    enum domain { eRunRefused = 1, eMandatoryAttributeMissing = 2, eRunFailed = 3, eProcessorNotInitialised = 33 };
};

struct eAlgorithmFunctionMessage
{
    enum domain { eRegistrationFailed = 12 };
};

ORVIK_API extern const LogSource g_baseProcessingLogSource;

}  // namespace processor

namespace imaproc {

struct eImageMessage
{
    enum domain { eInvalidImage = 0 };
};

ORVIK_API extern const LogSource g_imageProcessingLogSource;

}  // namespace imaproc

/// Throw site of a failure of processors that has its text already.
#define ORVIK_THROW_PROCESSING(text) \
    ORVIK_THROW_TEXT(::orvik::processor::ORVIKBaseProcessingException, ::orvik::processor::g_baseProcessingLogSource, text)

ORVIK_API extern const LogSource g_utilLogSource;
ORVIK_API extern const LogSource g_serializationLogSource;

}  // namespace orvik
