#include "ORVIKIPLFeatureDetectionLogMessages.h"

namespace orvik { namespace details {

template<>
void MsgMapRegistratorDerived<imaproc::fd::eOutputInitializerMessage, void>::addRows(LogMessageManager& manager)
{
    manager.addMessage(imaproc::fd::eOutputInitializerMessage::eNullAttribute, "Input attribute should not be null");
}

}}  // namespace orvik::details
