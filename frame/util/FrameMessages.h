#pragma once

#include "frame/util/Log.h"

// The frame's own catalogues. The numbers that stand here are fixed: they are referred to from outside.

namespace orvik {

struct eORVIKUtilErrors
{
    enum domain
    {
        eCopyNotSupported = 3
    };
};

struct eORVIKSerializationMessage
{
    enum domain
    {
        eClassVersionTooRecent = 25
    };
};

namespace processor {

struct eProcessorMessage
{
    enum domain
    {
        eRunRefused = 1,
        eMandatoryAttributeMissing = 2,
        eRunFailed = 3,
        eProcessorNotInitialised = 33
    };
};

struct eAlgorithmFunctionMessage
{
    enum domain
    {
        eRegistrationFailed = 12
    };
};

/// What rules and their combinations say.
struct eRuleMessage
{
    enum domain
    {
        eAttributeExpired,
        eNotInitialised,
        eNullAttribute,
        eHolds,
        eFails,
        eBothHold,
        eAllHold,
        eIf,
        eAsConditionHolds,
        eAsConditionFails,
        eNot,
        eDoesNotHold,
        eNone,
        eNoCondition,
        eIsSet
    };
};

/// What initialisers of outputs say.
struct eOutputInitializerMessage
{
    enum domain
    {
        eAttributeExpired,
        eNotInitialised,
        eNullAttribute,
        eNewRecord
    };
};

ORVIK_API extern const LogSource g_baseProcessingLogSource;

}  // namespace processor

namespace imaproc {

struct eImageMessage
{
    enum domain
    {
        eInvalidImage = 0
    };
};

/// What rules on images and strips say.
struct eImageRuleMessage
{
    enum domain
    {
        eEqualSizes,
        eEqualSizeX,
        eEqualSizeY,
        eEqualSizeZ,
        eEqualNbPlanes,
        eEqualBufferTypes,
        eEqualColorGeometries,
        eEqualVolumeGeometries,
        eApart,
        eSameOrApart,
        eAllApart,
        eButForSame,
        eBeginsBefore,
        eBeginsAtOnce,
        eBeginsAfter,
        eEqualStripSizes,
        eEqualStripBufferTypes,
        eSideWithValue,
        eSideWithoutValue,
        eNbChannels,
        eNbSlices,
        eSizesAndType,
        eStripSize,
        ePlanesMatch,
        ePlanesFound,
        eVolumesMatch,
        eVolumesFound,
        eCheckedSizeX,
        eCheckedSizeY,
        eCheckedBufferType,
        eAsComputed,
        eSizeXAgainst,
        eSizeYAgainst,
        eBufferTypeAgainst,
        eEitherBufferType,
        eScalarInXY,
        eScalarInHalfXY,
        eScalarInXYZ,
        eScalarInHalfXYZ,
        eScalarFound,
        eScalarImageFound
    };
};

/// What initialisers of images, and of lists per plane, say.
struct eImageInitializerMessage
{
    enum domain
    {
        eInputUnset,
        eCustomInputUnset,
        eLikeInput,
        eOfItsType,
        eAsComputed,
        eNewImage,
        eEntryPerPlane,
        eEntryPerVolume,
        eEntriesOf
    };
};

ORVIK_API extern const LogSource g_imageProcessingLogSource;

}  // namespace imaproc

/// Throw site of a failure of processors that has its text already.
#define ORVIK_THROW_PROCESSING(text) \
    ORVIK_THROW_TEXT(::orvik::processor::ORVIKBaseProcessingException, ::orvik::processor::g_baseProcessingLogSource, text)

ORVIK_API extern const LogSource g_utilLogSource;
ORVIK_API extern const LogSource g_serializationLogSource;

}  // namespace orvik
