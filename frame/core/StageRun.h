#pragma once

#include "frame/core/ActionProvider.h"

namespace orvik { namespace core {

/// Runs all actions of a provider, on as many threads as are useful, and returns when they have ended. The first
/// failure stops the handing out of others: a false result is returned, an exception raised again.
ORVIK_API BoolResult runProvider(BaseActionProvider& provider, const BaseRequestOrigin& origin);

}}  // namespace orvik::core
