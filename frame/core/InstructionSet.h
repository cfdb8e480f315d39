#pragma once

#include "frame/util/Export.h"

#include <cstddef>
#include <string>

namespace orvik { namespace core {

/// Sets of instructions that kernels are compiled for.
enum eInstructionSet : unsigned int
{
    eIS_Generic = 0,
    eIS_Sse2 = 1,
    eIS_Avx = 5,
    eIS_Fma = 6,
    eIS_Avx2 = 7,
    eIS_Avx512 = 8  ///< F, BW, DQ and VL together
};

/// Whether this machine runs code of that set. The environment variable ORVIK_MAX_INSTRUCTION_SET, read once while the
/// library loads (generic, sse2, avx, avx2, avx512), hides the sets above it.
ORVIK_API bool isAvailable(eInstructionSet set);

/// "generic", "sse2", "avx", "fma", "avx2", "avx512"; the number for a value that is none of them.
ORVIK_API std::string getInstructionSetName(eInstructionSet set);

/// One to three sets that a kernel needs together; empty stands for no choice made.
class ORVIK_API InstructionSetsIdentifier
{
public:
    InstructionSetsIdentifier() : m_nbSets(0), m_sets() {}

    void init(eInstructionSet set1);
    void init(eInstructionSet set1, eInstructionSet set2);
    void init(eInstructionSet set1, eInstructionSet set2, eInstructionSet set3);
    void clear() { m_nbSets = 0; }
    bool isEmpty() const { return m_nbSets == 0; }
    std::size_t getNbSets() const { return m_nbSets; }
    eInstructionSet getSet(std::size_t i) const { return m_sets[i]; }
    /// Whether this machine has all of them.
    bool areAvailable() const;
    /// Names joined by "+"; "none" when empty.
    std::string toString() const;

    bool operator==(const InstructionSetsIdentifier& other) const;

private:
    std::size_t m_nbSets;
    eInstructionSet m_sets[3];
};

}}  // namespace orvik::core
