#include "ORVIKIPLFeatureDetectionLogMessages.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

/// Registers all maps while the library loads; a text asked for earlier registers its own.
const bool g_registered = MessageMapRegistrator<eProcessorMessage>::process()
                          && MessageMapRegistrator<eRuleMessage>::process()
                          && MessageMapRegistrator<eLibraryRuleMessage>::process()
                          && MessageMapRegistrator<eOutputInitializerMessage>::process()
                          && MessageMapRegistrator<eORVIKIPLFeatureDetectionMessage>::process();

}  // namespace

}}}  // namespace orvik::imaproc::fd
