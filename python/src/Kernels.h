#pragma once

#include <string>
#include <vector>

namespace orvik { namespace python {

// Sets are numbers here, those of core::eInstructionSet.

/// The sets that this machine has and the library may use.
std::vector<unsigned int> instructionSets();

/// Later runs of a class, "CannyEdges2dImgLvl3" as an example, use its kernels of exactly these sets.
/// @throws ValueError for a class that has no kernels, or none of these sets on this machine.
void forceInstructionSets(const std::string& className, const std::vector<unsigned int>& sets);
void releaseForcedInstructionSets(const std::string& className);

}}  // namespace orvik::python
