#include "frame/core/InstructionSet.h"

#include "frame/core/Environment.h"

namespace orvik { namespace core {

namespace {

/// The highest set that the environment allows; all of them when the variable is unset or holds no known name.
eInstructionSet readCeiling()
{
    const char* const variable = "ORVIK_MAX_INSTRUCTION_SET";
    const std::string name = readEnvironment(variable);
    for (const eInstructionSet set : {eIS_Generic, eIS_Sse2, eIS_Avx, eIS_Avx2, eIS_Avx512})
        if (getInstructionSetName(set) == name)
            return set;
    if (!name.empty())
        warnOfEnvironment(variable, name, "generic, sse2, avx, avx2 or avx512");
    return eIS_Avx512;
}

}  // namespace

bool isAvailable(eInstructionSet set)
{
    static const eInstructionSet ceiling = readCeiling();
    if (set > ceiling)
        return false;
    __builtin_cpu_init();
    switch (set) {
    case eIS_Generic: return true;
    case eIS_Sse2: return __builtin_cpu_supports("sse2");
    case eIS_Avx: return __builtin_cpu_supports("avx");
    case eIS_Fma: return __builtin_cpu_supports("fma");
    case eIS_Avx2: return __builtin_cpu_supports("avx2");
    case eIS_Avx512:
#ifdef ORVIK_EMULATE_AVX512
        return true;  // any machine runs those
#else
        return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq")
               && __builtin_cpu_supports("avx512vl");
#endif
    }
    return false;
}

std::string getInstructionSetName(eInstructionSet set)
{
    switch (set) {
    case eIS_Generic: return "generic";
    case eIS_Sse2: return "sse2";
    case eIS_Avx: return "avx";
    case eIS_Fma: return "fma";
    case eIS_Avx2: return "avx2";
    case eIS_Avx512: return "avx512";
    }
    return std::to_string(static_cast<unsigned int>(set));
}

void InstructionSetsIdentifier::init(eInstructionSet set1)
{
    m_nbSets = 1;
    m_sets[0] = set1;
}

void InstructionSetsIdentifier::init(eInstructionSet set1, eInstructionSet set2)
{
    init(set1);
    m_nbSets = 2;
    m_sets[1] = set2;
}

void InstructionSetsIdentifier::init(eInstructionSet set1, eInstructionSet set2, eInstructionSet set3)
{
    init(set1, set2);
    m_nbSets = 3;
    m_sets[2] = set3;
}

bool InstructionSetsIdentifier::areAvailable() const
{
    for (std::size_t i = 0; i < m_nbSets; ++i)
        if (!isAvailable(m_sets[i]))
            return false;
    return true;
}

std::string InstructionSetsIdentifier::toString() const
{
    std::string text;
    for (std::size_t i = 0; i < m_nbSets; ++i)
        text += (i ? "+" : "") + getInstructionSetName(m_sets[i]);
    return text.empty() ? "none" : text;
}

bool InstructionSetsIdentifier::operator==(const InstructionSetsIdentifier& other) const
{
    if (m_nbSets != other.m_nbSets)
        return false;
    for (std::size_t i = 0; i < m_nbSets; ++i)
        if (m_sets[i] != other.m_sets[i])
            return false;
    return true;
}

}}  // namespace orvik::core
