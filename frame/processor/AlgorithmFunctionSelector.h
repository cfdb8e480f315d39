#pragma once

#include "frame/core/InstructionSet.h"
#include "frame/util/ProcessingResult.h"

#include <atomic>
#include <string>
#include <vector>

namespace orvik { namespace processor {

class BaseProcessingAlgorithm;

/// What a kernel receives: one run of samples of a line.
struct ProcessingInfo
{
    unsigned long nbAlignedData;  ///< samples that buffers may be read and written up to; equals nbData for whole blocks
    unsigned long nbData;         ///< samples of the run
    unsigned long partIndex;      ///< 0, 1 or 2: which of a line's runs this is
    unsigned long lineIndex;      ///< line in the strip; of a volume, counted over all its slices
    unsigned long firstColumn;    ///< column of the run's first sample
};

/// The type of data that a kernel is written for, as a number.
class BaseDataTypeIdentifier
{
public:
    explicit BaseDataTypeIdentifier(unsigned int type = 0) : m_type(type) {}
    unsigned int getType() const { return m_type; }

protected:
    unsigned int m_type;
};

/// The types that choose a kernel; every algorithm of this kit has one.
class DataTypeIdentifierColl
{
public:
    void init(const BaseDataTypeIdentifier& identifier) { m_type = identifier.getType(); }
    unsigned int getType() const { return m_type; }

private:
    unsigned int m_type = 0;
};

/// The rank of a combination of sets: the kernel of the highest one that the machine has is taken.
template<unsigned int S1, unsigned int S2, unsigned int S3>
struct AlgorithmFunctionEfficiency
{
    /// The newest set decides, then the next: a kernel of one family either names one set or two everywhere.
    static constexpr unsigned int getEfficiency()
    {
        // NOLINTNEXTLINE(bugprone-branch-clone): of a kernel of one set alone both are that
        constexpr unsigned int high = S1 > S2 ? S1 : S2, low = S1 > S2 ? S2 : S1;
        // A pair with fused operations beats the same pair without.
        return (high * 16 + (low == core::eIS_Fma ? 15 : low)) * 16 + S3;
    }
};

typedef ProcessingResult<bool> (BaseProcessingAlgorithm::*AlgorithmFunction)(const ProcessingInfo&);

/// A kernel with what it serves.
class ORVIK_API AlgorithmFunctionIdentifier
{
public:
    void init(const DataTypeIdentifierColl& dataTypes, const core::InstructionSetsIdentifier& sets, unsigned int efficiency,
              AlgorithmFunction function)
    {
        m_dataTypes = dataTypes;
        m_sets = sets;
        m_efficiency = efficiency;
        m_function = function;
    }
    const DataTypeIdentifierColl& getDataTypes() const { return m_dataTypes; }
    const core::InstructionSetsIdentifier& getInstructionSets() const { return m_sets; }
    unsigned int getEfficiency() const { return m_efficiency; }
    AlgorithmFunction getFunction() const { return m_function; }

private:
    DataTypeIdentifierColl m_dataTypes;
    core::InstructionSetsIdentifier m_sets;
    unsigned int m_efficiency = 0;
    AlgorithmFunction m_function = nullptr;
};

/// The kernels of one Level 3 class. Filled while its library loads, read-only afterwards.
class ORVIK_API AlgorithmFunctionSelector
{
public:
    /// Whether kernels of these sets may be registered: whether the machine runs them.
    bool isSupported(const core::InstructionSetsIdentifier& sets) const { return sets.areAvailable(); }
    /// False when there is a kernel of that type and those sets already.
    BoolResult registerFunction(const AlgorithmFunctionIdentifier& identifier);
    void unRegisterFunctions(const core::InstructionSetsIdentifier& sets);
    /// The kernel for a type: the one of exactly the forced sets, or the most efficient one when none is forced.
    /// False with a message that names type and sets when there is none.
    BoolResult select(const DataTypeIdentifierColl& dataTypes, const core::InstructionSetsIdentifier& forced,
                      AlgorithmFunctionIdentifier& selected) const;
    const std::vector<AlgorithmFunctionIdentifier>& getFunctions() const { return m_functions; }

private:
    std::vector<AlgorithmFunctionIdentifier> m_functions;
};

/// What the frame keeps for each Level 3 class, found by its type name, so that every library and every caller by name
/// sees the same.
struct AlgorithmEntry
{
    AlgorithmFunctionSelector selector;
    core::InstructionSetsIdentifier forcedSets;
    std::atomic<unsigned int> lastEfficiency{0};  ///< rank of the kernel that ran last, whichever thread ran it
};

/// Made at the first call for a name; never destroyed.
ORVIK_API AlgorithmEntry& getAlgorithmEntry(const std::string& typeName);
/// Names of the classes that have kernels.
ORVIK_API std::vector<std::string> getAlgorithmNames();

}}  // namespace orvik::processor
