#pragma once

#include "frame/util/Export.h"

namespace orvik { namespace core {

/// Threads that a run may use, the caller's own included. 0 asks for the default: the environment variable
/// ORVIK_NUM_THREADS where it holds a number above 0, else one per processor that this process may use. Takes effect
/// for runs that start later. With 1 everything runs in order on the calling thread; so it does in a process that was made
/// by fork while the library was loaded, which has none of its threads: background runs, too, end there before they return.
ORVIK_API void setNbThreads(unsigned int nbThreads);
ORVIK_API unsigned int getNbThreads();

/// Lines per strip; 0 lets the dispatchers choose. Results do not depend on it: for tests and measurements. Strips that
/// read many lines beyond their own are no thinner than a sixteenth of those.
ORVIK_API void setStripGrain(unsigned long nbLines);
ORVIK_API unsigned long getStripGrain();

/// The text of a run that was cancelled.
ORVIK_API const char* getCancelledText();

}}  // namespace orvik::core
