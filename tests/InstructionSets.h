#pragma once

// Running a class with each of its kernels in turn.

#include "frame/core/InstructionSet.h"
#include "frame/processor/AlgorithmFunctionSelector.h"

#include "TestImages.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <tuple>

namespace orvik::test {

typedef std::tuple<image::eImageBufferType, core::eInstructionSet> TypeAndSet;

/// Types with all sets, but AVX, which has kernels for floats alone, whole-number operations being no wider there.
inline std::vector<TypeAndSet> kernelsOf(const std::vector<image::eImageBufferType>& types)
{
    std::vector<TypeAndSet> kernels;
    for (const image::eImageBufferType type : types)
        for (const core::eInstructionSet set :
             {core::eIS_Generic, core::eIS_Sse2, core::eIS_Avx, core::eIS_Avx2, core::eIS_Avx512})
            if (set != core::eIS_Avx || type == image::eIBT_Real32)
                kernels.emplace_back(type, set);
    return kernels;
}

inline std::vector<TypeAndSet> allKernels()
{
    return kernelsOf({std::begin(kAllTypes), std::end(kAllTypes)});
}

inline std::string kernelName(const ::testing::TestParamInfo<TypeAndSet>& info)
{
    return "type" + std::to_string(std::get<0>(info.param)) + "_" + core::getInstructionSetName(std::get<1>(info.param));
}

/// Forces one set on Level 3 class `X` for as long as it lives.
template<class X>
class ForcedSet
{
public:
    explicit ForcedSet(core::eInstructionSet set)
    {
        core::InstructionSetsIdentifier sets;
        sets.init(set);
        X::forceInstructionSets(sets);
    }
    ~ForcedSet() { X::releaseForcedInstructionSets(); }
};

/// The rank of the kernel of class `X` for that type and set, or `none`: it depends on the class and on the machine.
template<class X>
unsigned int rankOf(unsigned int bufferType, core::eInstructionSet set, unsigned int none)
{
    for (const auto& function : X::retrieveFunctionSelector().getFunctions())
        if (function.getDataTypes().getType() == bufferType && function.getInstructionSets().getSet(0) == set)
            return function.getEfficiency();
    return none;
}

/// Widths around whole vectors and blocks of any set.
constexpr unsigned long kWidths[] = {1, 2, 3, 15, 16, 17, 31, 33, 62, 63, 64, 65, 66, 70, 127, 128, 129, 200, 257, 300};

/// A test of Level 3 class `X` with one of its kernels, which is forced meanwhile and must be the one that ran last;
/// skipped where there is none.
template<class X>
class KernelTest : public ::testing::TestWithParam<TypeAndSet>
{
protected:
    void SetUp() override
    {
        if (rankOf<X>(type(), set(), s_noKernel) == s_noKernel)
            GTEST_SKIP() << "no kernel for " << toString(type()) << " and " << core::getInstructionSetName(set());
        m_forced = std::make_unique<ForcedSet<X>>(set());
        lastEfficiency() = s_noKernel;
    }
    void TearDown() override
    {
        if (!m_forced)
            return;
        m_forced.reset();
        const unsigned int last = lastEfficiency();
        ASSERT_NE(s_noKernel, last) << "the test ran no kernel at all";
        EXPECT_EQ(rankOf<X>(type(), set(), s_noKernel), last)
            << "another kernel ran last than that of " << core::getInstructionSetName(set());
    }
    image::eImageBufferType type() const { return std::get<0>(GetParam()); }
    core::eInstructionSet set() const { return std::get<1>(GetParam()); }
    /// What `f` gives with plain code, which is not taken for the run of the kernel.
    template<class F>
    auto withPlainCode(F&& f)
    {
        m_forced.reset();
        m_forced = std::make_unique<ForcedSet<X>>(core::eIS_Generic);
        const auto result = f();
        m_forced.reset();
        m_forced = std::make_unique<ForcedSet<X>>(set());
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
