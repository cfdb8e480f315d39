#pragma once

// Running a class with each of its kernels in turn.

#include "frame/core/InstructionSet.h"
#include "frame/processor/AlgorithmFunctionSelector.h"

#include "TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <tuple>

namespace orvik::test {

/// A sample type and the one or two sets of a kernel.
typedef std::tuple<image::eImageBufferType, core::InstructionSetsIdentifier> TypeAndSets;

template<class... Sets>
core::InstructionSetsIdentifier setsOf(Sets... sets)
{
    core::InstructionSetsIdentifier identifier;
    identifier.init(sets...);
    return identifier;
}

/// Types with all of these sets, but AVX, which has kernels for floats alone, whole-number operations being no wider there.
inline std::vector<TypeAndSets> kernelsOf(const std::vector<image::eImageBufferType>& types,
                                          const std::vector<core::InstructionSetsIdentifier>& all)
{
    std::vector<TypeAndSets> kernels;
    for (const image::eImageBufferType type : types)
        for (const core::InstructionSetsIdentifier& sets : all)
            if (sets.getSet(0) != core::eIS_Avx || type == image::eIBT_Real32)
                kernels.emplace_back(type, sets);
    return kernels;
}

inline std::vector<TypeAndSets> kernelsOf(const std::vector<image::eImageBufferType>& types)
{
    return kernelsOf(types, {setsOf(core::eIS_Generic), setsOf(core::eIS_Sse2), setsOf(core::eIS_Avx),
                             setsOf(core::eIS_Avx2), setsOf(core::eIS_Avx512)});
}

inline std::vector<TypeAndSets> allKernels()
{
    return kernelsOf({std::begin(kAllTypes), std::end(kAllTypes)});
}

inline std::string kernelName(const ::testing::TestParamInfo<TypeAndSets>& info)
{
    std::string sets = std::get<1>(info.param).toString();
    std::replace(sets.begin(), sets.end(), '+', '_');
    return "type" + std::to_string(std::get<0>(info.param)) + "_" + sets;
}

/// Forces these sets on Level 3 class `X` for as long as it lives.
template<class X>
class ForcedSet
{
public:
    explicit ForcedSet(core::eInstructionSet set) { X::forceInstructionSets(setsOf(set)); }
    explicit ForcedSet(const core::InstructionSetsIdentifier& sets) { X::forceInstructionSets(sets); }
    ~ForcedSet() { X::releaseForcedInstructionSets(); }
};

/// The rank of the kernel of class `X` for that type and sets, or `none`: it depends on the class and on the machine.
template<class X>
unsigned int rankOf(unsigned int bufferType, const core::InstructionSetsIdentifier& sets, unsigned int none)
{
    for (const auto& function : X::retrieveFunctionSelector().getFunctions())
        if (function.getDataTypes().getType() == bufferType && function.getInstructionSets() == sets)
            return function.getEfficiency();
    return none;
}

/// Widths around whole vectors and blocks of any set.
constexpr unsigned long kWidths[] = {1, 2, 3, 15, 16, 17, 31, 33, 62, 63, 64, 65, 66, 70, 127, 128, 129, 200, 257, 300};

/// A test of Level 3 class `X` with one of its kernels, which is forced meanwhile and must be the one that ran last;
/// skipped where there is none.
template<class X>
class KernelTest : public ::testing::TestWithParam<TypeAndSets>
{
protected:
    void SetUp() override
    {
        if (rankOf<X>(type(), sets(), s_noKernel) == s_noKernel)
            GTEST_SKIP() << "no kernel for " << toString(type()) << " and " << sets().toString();
        m_forced = std::make_unique<ForcedSet<X>>(sets());
        lastEfficiency() = s_noKernel;
    }
    void TearDown() override
    {
        if (!m_forced)
            return;
        m_forced.reset();
        const unsigned int last = lastEfficiency();
        ASSERT_NE(s_noKernel, last) << "the test ran no kernel at all";
        EXPECT_EQ(rankOf<X>(type(), sets(), s_noKernel), last)
            << "another kernel ran last than that of " << sets().toString();
    }
    image::eImageBufferType type() const { return std::get<0>(GetParam()); }
    core::InstructionSetsIdentifier sets() const { return std::get<1>(GetParam()); }
    core::eInstructionSet set() const { return sets().getSet(sets().getNbSets() - 1); }
    /// What `f` gives with plain code, which is not taken for the run of the kernel.
    template<class F>
    auto withPlainCode(F&& f)
    {
        m_forced.reset();
        m_forced = std::make_unique<ForcedSet<X>>(sets().getNbSets() == 2 ? setsOf(core::eIS_Generic, core::eIS_Generic)
                                                                          : setsOf(core::eIS_Generic));
        const auto result = f();
        m_forced.reset();
        m_forced = std::make_unique<ForcedSet<X>>(sets());
        lastEfficiency() = s_noKernel;
        return result;
    }

private:
    static constexpr unsigned int s_noKernel = 0xFFFFFFFF;  // ranks are far below

    static std::atomic<unsigned int>& lastEfficiency()
    {
        return processor::getAlgorithmEntry(X::getTypeName()).lastEfficiency;
    }

    std::unique_ptr<ForcedSet<X>> m_forced;
};

}  // namespace orvik::test
