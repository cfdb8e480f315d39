#include "ORVIKIPLFeatureDetectionLogMessages.h"

namespace orvik { namespace details {

template<>
void MsgMapRegistratorDerived<imaproc::fd::eRuleMessage, void>::addRows(LogMessageManager& manager)
{
    typedef imaproc::fd::eRuleMessage E;
    manager.addMessage(E::eAttributeExpired, "Attribute weak pointer has expired, can't get it");
    manager.addMessage(E::eNotInitialised, "Initialize rule before trying to use its data");
    manager.addMessage(E::eSizeYGreaterOrEqualEvaluated,
                       "Output image Y size (%d) is greater than or equals to NbThetaBins field of %s data item (%d)");
    manager.addMessage(E::eSizeYGreaterOrEqual,
                       "Output image Y size is greater than or equals to NbThetaBins field of %s data item");
    manager.addMessage(E::eNullAttribute, "Input attribute should not be null");
}

template<>
void MsgMapRegistratorDerived<imaproc::fd::eLibraryRuleMessage, void>::addRows(LogMessageManager& manager)
{
    typedef imaproc::fd::eLibraryRuleMessage E;
    manager.addMessage(E::eAccumulatorHasBins, "accumulator of %s has 1 to %d bins along rho and along theta");
    manager.addMessage(E::eAccumulatorBins, "%s: %d along rho, %d along theta");
    manager.addMessage(E::eIsNumber, "%s is a number");
    manager.addMessage(E::eIsNumberEvaluated, "%s: %s");
}

}}  // namespace orvik::details
