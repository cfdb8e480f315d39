#pragma once

// Running a class with each of its kernels in turn.

#include "frame/core/InstructionSet.h"

#include "TestImages.h"

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

namespace orvik::test {

typedef std::tuple<image::eImageBufferType, core::eInstructionSet> TypeAndSet;

/// All types with all sets, but AVX, which has kernels for floats alone, whole-number operations being no wider there.
inline std::vector<TypeAndSet> allKernels()
{
    std::vector<TypeAndSet> kernels;
    for (const image::eImageBufferType type : kAllTypes)
        for (const core::eInstructionSet set :
             {core::eIS_Generic, core::eIS_Sse2, core::eIS_Avx, core::eIS_Avx2, core::eIS_Avx512})
            if (set != core::eIS_Avx || type == image::eIBT_Real32)
                kernels.emplace_back(type, set);
    return kernels;
}

inline std::vector<TypeAndSet> kernelsOf(image::eImageBufferType type)
{
    std::vector<TypeAndSet> kernels;
    for (const TypeAndSet& kernel : allKernels())
        if (std::get<0>(kernel) == type)
            kernels.push_back(kernel);
    return kernels;
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

/// Whether class `X` has a kernel for that type and set, which depends on the class and on the machine.
template<class X>
bool hasKernel(unsigned int bufferType, core::eInstructionSet set)
{
    for (const auto& function : X::retrieveFunctionSelector().getFunctions())
        if (function.getDataTypes().getType() == bufferType && function.getInstructionSets().getSet(0) == set)
            return true;
    return false;
}

/// A test of Level 3 class `X` with one of its kernels, which is forced meanwhile; skipped where there is none.
template<class X>
class KernelTest : public ::testing::TestWithParam<TypeAndSet>
{
protected:
    void SetUp() override
    {
        if (!hasKernel<X>(type(), set()))
            GTEST_SKIP() << "no kernel for " << toString(type()) << " and " << core::getInstructionSetName(set());
        m_forced = std::make_unique<ForcedSet<X> >(set());
    }
    image::eImageBufferType type() const { return std::get<0>(GetParam()); }
    core::eInstructionSet set() const { return std::get<1>(GetParam()); }

private:
    std::unique_ptr<ForcedSet<X> > m_forced;
};

}  // namespace orvik::test
