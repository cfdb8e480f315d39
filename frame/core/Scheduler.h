#pragma once

#include "frame/core/ActionProvider.h"

#include <functional>

namespace orvik { namespace core {

/// Threads that a run may use, the caller's own included. 0 asks for the default: the environment variable
/// ORVIK_NUM_THREADS where it holds a number above 0, else one per processor that this process may use. Takes effect
/// for runs that start later. With 1 everything runs in order on the calling thread; so it does in a process that was made
/// by fork while the library was loaded, which has none of its threads: background runs, too, end there before they return.
ORVIK_API void setNbThreads(unsigned int nbThreads);
ORVIK_API unsigned int getNbThreads();

/// Lines per strip; 0 lets the dispatchers choose. Results do not depend on it: for tests and measurements.
ORVIK_API void setStripGrain(unsigned long nbLines);
ORVIK_API unsigned long getStripGrain();

// --- the frame's own part

/// Runs all actions of a provider, on as many threads as are useful, and returns when they have ended. The first
/// failure stops the handing out of others: a false result is returned, an exception raised again.
ORVIK_API BoolResult runProvider(BaseActionProvider& provider, const BaseRequestOrigin& origin);

/// Starts `work` on a thread of the frame and hands it the reference that keeps the action alive; `work` ends by
/// `forgetBackgroundRun`. Until then the end of the process cancels the action and waits for it.
ORVIK_API void runInBackground(const boost::shared_ptr<BaseAction>& action,
                               void (*work)(boost::shared_ptr<BaseAction> action));
ORVIK_API void forgetBackgroundRun(const BaseAction& action);

/// The text of a run that was cancelled.
ORVIK_API const char* getCancelledText();

}}  // namespace orvik::core
