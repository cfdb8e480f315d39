#include "Kernels.h"

#include "frame/core/InstructionSet.h"
#include "frame/processor/AlgorithmFunctionSelector.h"

#include <pybind11/pybind11.h>

#include <set>

namespace py = pybind11;

namespace orvik { namespace python {

namespace {

std::string join(const std::set<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

processor::AlgorithmEntry& entryOf(const std::string& className)
{
    std::set<std::string> names;
    for (const std::string& typeName : processor::getAlgorithmNames()) {
        const std::string name = typeName.substr(typeName.rfind(':') + 1);
        if (className == name || className == typeName)
            return processor::getAlgorithmEntry(typeName);
        names.insert(name);
    }
    throw py::value_error("className: no class " + className + " has kernels; these have: " + join(names));
}

}  // namespace

std::vector<unsigned int> instructionSets()
{
    std::vector<unsigned int> sets;
    for (const core::eInstructionSet set :
         {core::eIS_Generic, core::eIS_Sse2, core::eIS_Avx, core::eIS_Fma, core::eIS_Avx2, core::eIS_Avx512})
        if (core::isAvailable(set))
            sets.push_back(set);
    return sets;
}

void forceInstructionSets(const std::string& className, const std::vector<unsigned int>& sets)
{
    const auto set = [&](std::size_t i) { return static_cast<core::eInstructionSet>(sets[i]); };
    processor::AlgorithmEntry& entry = entryOf(className);
    core::InstructionSetsIdentifier forced;
    switch (sets.size()) {
    case 1: forced.init(set(0)); break;
    case 2: forced.init(set(0), set(1)); break;
    case 3: forced.init(set(0), set(1), set(2)); break;
    default: throw py::value_error("sets: 1 to 3 are expected, not " + std::to_string(sets.size()));
    }
    std::set<std::string> known;
    bool found = false;
    for (const processor::AlgorithmFunctionIdentifier& kernel : entry.selector.getFunctions()) {
        known.insert(kernel.getInstructionSets().toString());
        found = found || kernel.getInstructionSets() == forced;
    }
    if (!found)
        throw py::value_error("sets: " + className + " has no kernel of " + forced.toString() + " on this machine; it has "
                              + join(known));
    entry.forcedSets = forced;
}

void releaseForcedInstructionSets(const std::string& className)
{
    entryOf(className).forcedSets.clear();
}

}}  // namespace orvik::python
