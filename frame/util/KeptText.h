#pragma once

#include "frame/util/Export.h"

#include <string>

namespace orvik {

/// One text of that content, never destroyed: names are asked for until the very end of the process. It lies here, so that a
/// library which is loaded again finds it.
ORVIK_API const std::string& keptText(const std::string& text);

}  // namespace orvik
