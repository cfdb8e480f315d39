#include "frame/processor/AlgorithmFunctionSelector.h"

#include "frame/image/BufferType.h"
#include "frame/processor/ClassStatics.h"

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

#include <algorithm>
#include <map>
#include <memory>

namespace orvik { namespace processor {

namespace {

std::map<std::string, std::unique_ptr<AlgorithmEntry>>& entries()
{
    static std::map<std::string, std::unique_ptr<AlgorithmEntry>>* const all =
        new std::map<std::string, std::unique_ptr<AlgorithmEntry>>;
    return *all;
}

}  // namespace

BoolResult AlgorithmFunctionSelector::registerFunction(const AlgorithmFunctionIdentifier& identifier)
{
    for (const AlgorithmFunctionIdentifier& known : m_functions)
        if (known.getDataTypes().getType() == identifier.getDataTypes().getType()
            && known.getInstructionSets() == identifier.getInstructionSets())
            return failure("A kernel for type " + std::to_string(identifier.getDataTypes().getType()) + " and set "
                           + identifier.getInstructionSets().toString() + " is registered already");
    m_functions.push_back(identifier);
    return success();
}

void AlgorithmFunctionSelector::unRegisterFunctions(const core::InstructionSetsIdentifier& sets)
{
    m_functions.erase(
        std::remove_if(m_functions.begin(), m_functions.end(),
                       [&](const AlgorithmFunctionIdentifier& known) { return known.getInstructionSets() == sets; }),
        m_functions.end());
}

BoolResult AlgorithmFunctionSelector::select(const DataTypeIdentifierColl& dataTypes,
                                             const core::InstructionSetsIdentifier& forced,
                                             AlgorithmFunctionIdentifier& selected) const
{
    const AlgorithmFunctionIdentifier* best = nullptr;
    for (const AlgorithmFunctionIdentifier& known : m_functions) {
        if (known.getDataTypes().getType() != dataTypes.getType())
            continue;
        if (forced.isEmpty() ? !best || known.getEfficiency() > best->getEfficiency() : known.getInstructionSets() == forced)
            best = &known;
    }
    if (!best) {
        std::string text = "no kernel serves buffer type "
                           + image::toString(static_cast<image::eImageBufferType>(dataTypes.getType()));
        if (!forced.isEmpty())
            text += " with the forced instruction set " + forced.toString()
                    + (forced.areAvailable() ? "" : ", which this machine does not have");
        return failure(text);
    }
    selected = *best;
    return success();
}

AlgorithmEntry& getAlgorithmEntry(const std::string& typeName)
{
    const boost::lock_guard<boost::mutex> lock(ForcedInstructionSetsMutex::get());
    std::unique_ptr<AlgorithmEntry>& entry = entries()[typeName];
    if (!entry)
        entry = std::make_unique<AlgorithmEntry>();
    return *entry;
}

std::vector<std::string> getAlgorithmNames()
{
    const boost::lock_guard<boost::mutex> lock(ForcedInstructionSetsMutex::get());
    std::vector<std::string> names;
    for (const auto& entry : entries())
        if (!entry.second->selector.getFunctions().empty())
            names.push_back(entry.first);
    return names;
}

}}  // namespace orvik::processor
