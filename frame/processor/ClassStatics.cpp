#include "frame/processor/ClassStatics.h"

#include "frame/serialization/Archive.h"
#include "frame/util/FrameMessages.h"

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

namespace orvik { namespace processor {

namespace {

/// Never destroyed: names are asked for until the very end of the process.
boost::mutex& makeMutex()
{
    return *new boost::mutex;
}

}  // namespace

boost::mutex& TypeNameMutex::get()
{
    static boost::mutex& mutex = makeMutex();
    return mutex;
}

boost::mutex& VersionMutex::get()
{
    static boost::mutex& mutex = makeMutex();
    return mutex;
}

boost::mutex& ToolTipMutex::get()
{
    static boost::mutex& mutex = makeMutex();
    return mutex;
}

boost::mutex& DispatchPolicyMutex::get()
{
    static boost::mutex& mutex = makeMutex();
    return mutex;
}

boost::mutex& ForcedInstructionSetsMutex::get()
{
    static boost::mutex& mutex = makeMutex();
    return mutex;
}

std::string details::makeTypeName(const char* nameSpace, const char* name)
{
    const boost::lock_guard<boost::mutex> lock(TypeNameMutex::get());
    return std::string(nameSpace) + "::" + name;
}

unsigned int details::readVersionConstant(const unsigned int& version)
{
    const boost::lock_guard<boost::mutex> lock(VersionMutex::get());
    return version;
}

void details::initDispatchPolicy(ProcessorDispatchPolicy& policy)
{
    const boost::lock_guard<boost::mutex> lock(DispatchPolicyMutex::get());
    if (!policy.isInitialised())
        policy.initDefault();
}

BoolResult details::writeClassVersion(BaseOArchive& archive, const std::string& className, unsigned int version)
{
    if (archive.isClassVersionRegistred(className))
        return success();
    ArchiveSectionManager section(archive, className);
    archive << SerializationOItem<unsigned int>("version", version);
    archive.registerClassVersion(className, version);
    section.close();
    return success();
}

BoolResult details::readClassVersion(BaseIArchive& archive, const std::string& className, unsigned int version)
{
    unsigned int found = 0;
    if (archive.isClassVersionRegistred(className)) {
        found = archive.getRegisterClassVersion(className);
    } else {
        ArchiveSectionManager section(archive, className);
        archive >> SerializationIItem<unsigned int>("version", found);
        section.close();
        archive.registerClassVersion(className, found);
    }
    if (found > version)
        ORVIK_THROW(ORVIKSerializationException, g_serializationLogSource,
                    eORVIKSerializationMessage::eClassVersionTooRecent, className, std::to_string(found),
                    std::to_string(version));
    return success();
}

void details::throwCopyNotSupported(const std::string& className)
{
    ORVIK_THROW(ORVIKUtilException, g_utilLogSource, eORVIKUtilErrors::eCopyNotSupported, className);
}

void details::throwNullProcessor()
{
    ORVIK_THROW_PROCESSING("A null processor can't be run");
}

void details::throwValueMissing(const std::string& processorName, const std::string& attributeName)
{
    ORVIK_THROW(ORVIKBaseProcessingException, g_baseProcessingLogSource, eProcessorMessage::eMandatoryAttributeMissing,
                processorName, attributeName);
}

}}  // namespace orvik::processor
