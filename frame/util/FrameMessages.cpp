#include "frame/util/FrameMessages.h"

namespace orvik {

namespace {

template<class TDomain>
void addRows(LogMessageManager& manager, std::initializer_list<std::pair<TDomain, const char*>> rows)
{
    for (const std::pair<TDomain, const char*>& row : rows)
        manager.addMessage(row.first, row.second);
}

void addProcessingRows(LogMessageManager& manager)
{
    using namespace processor;
    addRows<eAlgorithmFunctionMessage::domain>(
        manager, {{eAlgorithmFunctionMessage::eRegistrationFailed, "Kernels could not be registered (%2%):\n%1%"}});
    addRows<eProcessorMessage::domain>(
        manager, {{eProcessorMessage::eRunRefused, "%s refuses to run:\n%s"},
                  {eProcessorMessage::eMandatoryAttributeMissing,
                   "%s refuses to run: mandatory attribute %s has no value (unset or null)"},
                  {eProcessorMessage::eRunFailed, "%s failed: %s"},
                  {eProcessorMessage::eProcessorNotInitialised, "Processor %s has not been initialised, call init first"}});
    addRows<eRuleMessage::domain>(manager,
                                  {{eRuleMessage::eAttributeExpired, "Attribute weak pointer has expired, can't get it"},
                                   {eRuleMessage::eNotInitialised, "Initialize rule before trying to use its data"},
                                   {eRuleMessage::eNullAttribute, "Input attribute should not be null"},
                                   {eRuleMessage::eHolds, "ok: "},
                                   {eRuleMessage::eFails, "failed: "},
                                   {eRuleMessage::eBothHold, "%s && %s"},
                                   {eRuleMessage::eAllHold, "all hold:"},
                                   {eRuleMessage::eIf, "If(%s, %s, %s)"},
                                   {eRuleMessage::eAsConditionHolds, "as %s holds:"},
                                   {eRuleMessage::eAsConditionFails, "as %s does not hold:"},
                                   {eRuleMessage::eNot, "Not(%s)"},
                                   {eRuleMessage::eDoesNotHold, "does not hold:"},
                                   {eRuleMessage::eNone, "none"},
                                   {eRuleMessage::eNoCondition, "no condition"},
                                   {eRuleMessage::eIsSet, "%s is set"}});
    addRows<eOutputInitializerMessage::domain>(
        manager,
        {{eOutputInitializerMessage::eAttributeExpired, "Attribute weak pointer has expired, can't get it"},
         {eOutputInitializerMessage::eNotInitialised, "Initialize output initializer before trying to use its data"},
         {eOutputInitializerMessage::eNullAttribute, "Input attribute should not be null"},
         {eOutputInitializerMessage::eNewRecord, "%s: a new %s"}});
}

void addImageRows(LogMessageManager& manager)
{
    using namespace imaproc;
    addRows<eImageMessage::domain>(manager, {{eImageMessage::eInvalidImage, "Invalid image: %s"}});
    addRows<eImageRuleMessage::domain>(
        manager,
        {{eImageRuleMessage::eEqualSizes, "size X x Y x Z x C x T of %s equals that of %s"},
         {eImageRuleMessage::eEqualSizeX, "size X of %s equals that of %s"},
         {eImageRuleMessage::eEqualSizeY, "size Y of %s equals that of %s"},
         {eImageRuleMessage::eEqualSizeZ, "size Z of %s equals that of %s"},
         {eImageRuleMessage::eEqualNbPlanes, "number of planes Z x C x T of %s equals that of %s"},
         {eImageRuleMessage::eEqualBufferTypes, "buffer type of %s equals that of %s"},
         {eImageRuleMessage::eEqualColorGeometries, "colour geometry of %s equals that of %s"},
         {eImageRuleMessage::eEqualVolumeGeometries, "volume geometry of %s equals that of %s"},
         {eImageRuleMessage::eApart, "memory of %s lies apart from that of %s"},
         {eImageRuleMessage::eSameOrApart, "memory of %s is, or lies apart from, that of %s"},
         {eImageRuleMessage::eAllApart, "each of %s that is written lies apart in memory from the others"},
         {eImageRuleMessage::eButForSame, ", but %s and %s may be the same"},
         {eImageRuleMessage::eBeginsBefore, ": %s shares memory with %s and begins %d bytes before it"},
         {eImageRuleMessage::eBeginsAtOnce, ": %s shares memory with %s and begins where it does"},
         {eImageRuleMessage::eBeginsAfter, ": %s shares memory with %s and begins %d bytes after it"},
         {eImageRuleMessage::eEqualStripSizes, "size of the strip, X x lines, of %s equals that of %s"},
         {eImageRuleMessage::eEqualStripBufferTypes, "buffer type of the strip of %s equals that of %s"},
         {eImageRuleMessage::eSideWithValue, "%s (%s)"},
         {eImageRuleMessage::eSideWithoutValue, "%s (no value yet)"},
         {eImageRuleMessage::eNbChannels, "%d channels"},
         {eImageRuleMessage::eNbSlices, "%d slices"},
         {eImageRuleMessage::eSizesAndType, "%s, %s"},
         {eImageRuleMessage::eStripSize, "%d x %d"},
         {eImageRuleMessage::ePlanesMatch, "entries of %s are the planes (z, c, t) of %s"},
         {eImageRuleMessage::ePlanesFound, "%s: %d entries, %d planes (z, c, t) in %s"},
         {eImageRuleMessage::eVolumesMatch, "entries of %s are the volumes (0, c, t) of %s"},
         {eImageRuleMessage::eVolumesFound, "%s: %d entries, %d volumes (0, c, t) in %s"},
         {eImageRuleMessage::eCheckedSizeX, "size X, "},
         {eImageRuleMessage::eCheckedSizeY, "size Y, "},
         {eImageRuleMessage::eCheckedBufferType, "buffer type, "},
         {eImageRuleMessage::eAsComputed, "%sof %s as computed from the inputs"},
         {eImageRuleMessage::eSizeXAgainst, ": X %d against %d"},
         {eImageRuleMessage::eSizeYAgainst, ": Y %d against %d"},
         {eImageRuleMessage::eBufferTypeAgainst, ": %s against %s"},
         {eImageRuleMessage::eEitherBufferType, "%s or %s"},
         {eImageRuleMessage::eScalarInXY, "%s is not negative, and beyond the smaller of X and Y of %s narrowed to it"},
         {eImageRuleMessage::eScalarInHalfXY,
          "%s is not negative, and beyond half of the smaller of X and Y of %s narrowed to it"},
         {eImageRuleMessage::eScalarInXYZ, "%s is not negative, and beyond the smallest of X, Y and Z of %s narrowed to it"},
         {eImageRuleMessage::eScalarInHalfXYZ,
          "%s is not negative, and beyond half of the smallest of X, Y and Z of %s narrowed to it"},
         {eImageRuleMessage::eScalarFound, "%s: %s"},
         {eImageRuleMessage::eScalarImageFound, "%s, image %s"}});
    addRows<eImageInitializerMessage::domain>(
        manager, {{eImageInitializerMessage::eInputUnset, "Attribute %s has no value, no output can be made"},
                  {eImageInitializerMessage::eCustomInputUnset, "The input image of an output initializer has no value"},
                  {eImageInitializerMessage::eLikeInput, "%s: a new image of the size of %s, %s"},
                  {eImageInitializerMessage::eOfItsType, "of its type"},
                  {eImageInitializerMessage::eAsComputed, "%s: a new image of a size computed from the inputs"},
                  {eImageInitializerMessage::eNewImage, "%s: a new image of size %s, %s"},
                  {eImageInitializerMessage::eEntryPerPlane, "%s: an empty entry per plane of %s"},
                  {eImageInitializerMessage::eEntryPerVolume, "%s: an empty entry per volume of %s"},
                  {eImageInitializerMessage::eEntriesOf, "%s (%s)"}});
}

/// A catalogue with its rows.
LogMessageManager& filled(const char* name, void (*addAllRows)(LogMessageManager& manager))
{
    LogMessageManager& manager = LogMessageManager::getInstance(name);
    addAllRows(manager);
    return manager;
}

}  // namespace

// Each is filled when it is first asked for: a process in which nothing fails never makes it.

LogMessageManager& getORVIKUtilLogMessageManager()
{
    static LogMessageManager& manager = filled("ORVIKUtil", [](LogMessageManager& util) {
        util.addMessage(eORVIKUtilErrors::eCopyNotSupported, "Objects of class %s can't be copied");
    });
    return manager;
}

LogMessageManager& getORVIKSerializationLogMessageManager()
{
    static LogMessageManager& manager = filled("ORVIKSerialization", [](LogMessageManager& serialization) {
        serialization.addMessage(
            eORVIKSerializationMessage::eClassVersionTooRecent,
            "The archive holds version %2% of class %1%, which is more recent than the version in use (%3%)");
    });
    return manager;
}

LogMessageManager& processor::getORVIKBaseProcessingLogMessageManager()
{
    static LogMessageManager& manager = filled("ORVIKBaseProcessing", &addProcessingRows);
    return manager;
}

LogMessageManager& imaproc::getORVIKImageProcessingLogMessageManager()
{
    static LogMessageManager& manager = filled("ORVIKImageProcessing", &addImageRows);
    return manager;
}

const LogSource g_utilLogSource = {&getORVIKUtilLogger, &getORVIKUtilLogMessageManager};
const LogSource g_serializationLogSource = {&getORVIKSerializationLogger, &getORVIKSerializationLogMessageManager};
const LogSource processor::g_baseProcessingLogSource = {&getORVIKBaseProcessingLogger,
                                                        &getORVIKBaseProcessingLogMessageManager};
const LogSource imaproc::g_imageProcessingLogSource = {&getORVIKImageProcessingLogger,
                                                       &getORVIKImageProcessingLogMessageManager};

}  // namespace orvik
