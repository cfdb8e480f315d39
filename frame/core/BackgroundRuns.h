#pragma once

#include "frame/util/Export.h"

#include <boost/shared_ptr.hpp>

namespace orvik { namespace core {

class BaseAction;

/// Starts `work` on a thread of the frame and hands it the reference that keeps the action alive; `work` ends by
/// `forgetBackgroundRun`. Until then the end of the process cancels the action and waits for it.
ORVIK_API void runInBackground(const boost::shared_ptr<BaseAction>& action,
                               void (*work)(boost::shared_ptr<BaseAction> action));
ORVIK_API void forgetBackgroundRun(const BaseAction& action);

}}  // namespace orvik::core
