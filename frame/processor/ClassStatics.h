#pragma once

#include "frame/processor/ProcessorDispatchPolicy.h"
#include "frame/processor/BaseProcessor.h"

namespace boost {
class mutex;
}

namespace orvik { namespace processor {

// Guards of what every processor class keeps once per process.
struct ORVIK_API TypeNameMutex
{
    static boost::mutex& get();
};
struct ORVIK_API VersionMutex
{
    static boost::mutex& get();
};
struct ORVIK_API ToolTipMutex
{
    static boost::mutex& get();
};
struct ORVIK_API DispatchPolicyMutex
{
    static boost::mutex& get();
};
struct ORVIK_API ForcedInstructionSetsMutex
{
    static boost::mutex& get();
};

// The bodies behind the statics of Processor, so that its header needs no mutex, archive or logger.
namespace details {
ORVIK_API std::string makeTypeName(const char* nameSpace, const char* name);
ORVIK_API unsigned int readVersionConstant(const unsigned int& version);
ORVIK_API void initDispatchPolicy(ProcessorDispatchPolicy& policy);
/// Writes the version of a class, once per archive.
ORVIK_API BoolResult writeClassVersion(BaseOArchive& archive, const std::string& className, unsigned int version);
/// @throws ORVIKSerializationException when the archive's version is more recent than `version`.
ORVIK_API BoolResult readClassVersion(BaseIArchive& archive, const std::string& className, unsigned int version);
[[noreturn]] ORVIK_API void throwCopyNotSupported(const std::string& className);
[[noreturn]] ORVIK_API void throwNullProcessor();
/// A call refuses, since it needs a value of an attribute that has none.
[[noreturn]] ORVIK_API void throwValueMissing(const std::string& processorName, const std::string& attributeName);
}  // namespace details

}}  // namespace orvik::processor
