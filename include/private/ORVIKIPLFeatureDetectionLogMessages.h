#pragma once

#include "ORVIKIPLFeatureDetectionLog.h"

// The texts of this library, by enumeration and number.

namespace orvik {

namespace imaproc { namespace fd {

/// Tool tips; the numbers of the rows are those of the classes.
struct eProcessorMessage
{
    enum domain
    {
        eFirst = 0
    };
};

struct eRuleMessage
{
    enum domain
    {
        eAttributeExpired = 0,
        eNotInitialised = 1,
        eSizeYGreaterOrEqualEvaluated = 2,
        eSizeYGreaterOrEqual = 3,
        eNullAttribute = 4
    };
};

/// What this library's rules say beyond the rows above, whose number is fixed.
struct eLibraryRuleMessage
{
    enum domain
    {
        eAccumulatorHasBins,
        eAccumulatorBins,
        eIsNumber,
        eIsNumberEvaluated
    };
};

struct eOutputInitializerMessage
{
    enum domain
    {
        eNullAttribute = 0
    };
};

struct eORVIKIPLFeatureDetectionMessage
{
    enum domain
    {
        eNone = 0
    };
};

/// Where failures of this library are logged, for ORVIK_THROW.
extern const LogSource g_featureDetectionLogSource;

}}  // namespace imaproc::fd

namespace details {

/// All maps of this library belong to one catalogue.
struct FeatureDetectionMap
{
    static const char* managerName() { return "ORVIKIPLFeatureDetection"; }
};

template<class Unused>
struct MsgMapRegistratorDerived<imaproc::fd::eProcessorMessage, Unused> : FeatureDetectionMap
{
    static void addRows(LogMessageManager& manager);
};
template<class Unused>
struct MsgMapRegistratorDerived<imaproc::fd::eRuleMessage, Unused> : FeatureDetectionMap
{
    static void addRows(LogMessageManager& manager);
};
template<class Unused>
struct MsgMapRegistratorDerived<imaproc::fd::eLibraryRuleMessage, Unused> : FeatureDetectionMap
{
    static void addRows(LogMessageManager& manager);
};
template<class Unused>
struct MsgMapRegistratorDerived<imaproc::fd::eOutputInitializerMessage, Unused> : FeatureDetectionMap
{
    static void addRows(LogMessageManager& manager);
};
/// Registered without rows: this library's own failures have no texts yet.
template<class Unused>
struct MsgMapRegistratorDerived<imaproc::fd::eORVIKIPLFeatureDetectionMessage, Unused> : FeatureDetectionMap
{
    static void addRows(LogMessageManager&) {}
};

template<>
void MsgMapRegistratorDerived<imaproc::fd::eProcessorMessage, void>::addRows(LogMessageManager& manager);
template<>
void MsgMapRegistratorDerived<imaproc::fd::eRuleMessage, void>::addRows(LogMessageManager& manager);
template<>
void MsgMapRegistratorDerived<imaproc::fd::eLibraryRuleMessage, void>::addRows(LogMessageManager& manager);
template<>
void MsgMapRegistratorDerived<imaproc::fd::eOutputInitializerMessage, void>::addRows(LogMessageManager& manager);

}  // namespace details

}  // namespace orvik
