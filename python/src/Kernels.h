#pragma once

#include "frame/core/InstructionSet.h"

#include <string>
#include <vector>

namespace orvik { namespace python {

/// The sets that this machine has and the library may use.
std::vector<core::eInstructionSet> instructionSets();

/// Later runs of a class, "CannyEdges2dImgLvl3" as an example, use its kernels of exactly these sets.
/// @throws ValueError for a class that has no kernels, or none of these sets on this machine.
void forceInstructionSets(const std::string& className, const std::vector<core::eInstructionSet>& sets);
void releaseForcedInstructionSets(const std::string& className);

}}  // namespace orvik::python
