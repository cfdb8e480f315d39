#pragma once

#include "frame/util/Log.h"

namespace orvik {

/// The logger of that name, which the base one is made before; the same one each time, never destroyed, so that a library
/// which is unloaded leaves nothing behind. Loads log4cplus where the process has not done so.
ORVIK_API log4cplus::Logger& getLogger(const std::string& name);

/// Whether a record would be seen: log4cplus is in the process, which does not end yet, and the logger takes that level.
/// Loggers are asked for by function, since making one loads log4cplus.
ORVIK_API bool isLogged(log4cplus::Logger& (*logger)(), int level);

}  // namespace orvik
