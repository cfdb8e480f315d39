#pragma once

#include <boost/shared_ptr.hpp>

namespace orvik { namespace core {

class BaseAction;

/// Starts `work` on a thread of the frame and hands it the reference that keeps the action alive. Where there are
/// no such threads, as in a process that was made by fork, it has ended when this returns.
void runInBackground(const boost::shared_ptr<BaseAction>& action, void (*work)(boost::shared_ptr<BaseAction> action));

}}  // namespace orvik::core
