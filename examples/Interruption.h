#pragma once

#include <stdexcept>

namespace orvik::examples {

/// Someone has pressed Ctrl-C. Thrown where work can be left, so that nothing half-written stays behind.
class Interrupted : public std::runtime_error
{
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

/// From here on the first Ctrl-C, or another request to end, is only noted; a second one ends the process at once. Where
/// they are ignored, as in the background of a script, they stay ignored.
void noteInterruptions();

/// Throws Interrupted once one was noted.
void throwIfInterrupted();

/// Ends the process by the signal that was noted, as its parent expects.
void endByInterruption();

}  // namespace orvik::examples
