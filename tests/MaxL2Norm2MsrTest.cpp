// The global maximum of the norm of two images.

#include "InstructionSets.h"
#include "TestImages.h"

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl3.h"

#include "frame/core/Scheduler.h"
#include "frame/util/BaseException.h"

#include <cmath>
#include <limits>

namespace orvik::test {
namespace {

using imaproc::fd::maxL2Norm2Msr;
using imaproc::fd::MaxL2Norm2MsrLvl3;

const float kNan = std::numeric_limits<float>::quiet_NaN();
const float kInfinity = std::numeric_limits<float>::infinity();

/// One run as the definition has it: squares and sum in float, the root in double.
double ofRun(const image::BaseImage& a, const image::BaseImage& b, unsigned long y, unsigned long z, unsigned long start,
             unsigned long end)
{
    float m = 0;
    for (unsigned long x = start; x < end; ++x) {
        const volatile float fa = static_cast<float>(sampleAt(a, x, y, z)), fb = static_cast<float>(sampleAt(b, x, y, z));
        const volatile float aa = fa * fa, bb = fb * fb;
        const float s = bb + aa;
        m = m > s ? m : s;
    }
    return std::sqrt(static_cast<double>(m));
}

/// One strip. Lines are handed over as whole blocks of 64 samples and the rest. A strip that ends with a NaN counts as
/// none.
double reference(const image::BaseImage& a, const image::BaseImage& b)
{
    const unsigned long sizeX = a.getSizeX(), blocks = sizeX < 64 ? sizeX : sizeX / 64 * 64;
    double m = std::numeric_limits<double>::lowest();
    for (unsigned long z = 0; z < a.getSizeZ(); ++z)
        for (unsigned long y = 0; y < a.getSizeY(); ++y)
            for (const auto& run : {std::make_pair(0ul, blocks), std::make_pair(blocks, sizeX)})
                if (run.first < run.second) {
                    const double l = ofRun(a, b, y, z, run.first, run.second);
                    m = m > l ? m : l;
                }
    return std::isnan(m) ? std::numeric_limits<double>::lowest() : m;
}

class MaxL2Norm2Msr : public KernelTest<MaxL2Norm2MsrLvl3>
{
protected:
    /// The widest set rounds a square and the sum once, the others twice: one unit in the last place of the sum, half
    /// of one of its root.
    void expectMeasure(double expected, double found) const
    {
        if (set() == core::eIS_Avx512) {
            EXPECT_NEAR(expected, found, expected * 1.2e-7);
        } else {
            EXPECT_EQ(expected, found);
        }
    }
};

INSTANTIATE_TEST_SUITE_P(AllKernels, MaxL2Norm2Msr, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(MaxL2Norm2Msr, EqualsTheDefinitionForAnyWidth)
{
    for (unsigned long width = 1; width <= 70; ++width)
        for (const unsigned long beyond : {0ul, 64ul, 192ul}) {
            if (beyond != 0 && width % 21 > 1)
                continue;
            const image::ImageSizes sizes(width + beyond, 3, 2);
            const ImagePtr a = randomImage(type(), sizes, 1), b = randomImage(type(), sizes, 2);
            SCOPED_TRACE(toString(sizes));
            expectMeasure(reference(*a, *b), maxL2Norm2Msr(a, b));
        }
    for (const auto& function : MaxL2Norm2MsrLvl3::retrieveFunctionSelector().getFunctions())
        if (function.getInstructionSets().getSet(0) == set()) {
            EXPECT_EQ(function.getEfficiency(),
                      processor::getAlgorithmEntry(MaxL2Norm2MsrLvl3::getTypeName()).lastEfficiency)
                << "another kernel than the forced one ran";
        }
}

TEST_P(MaxL2Norm2Msr, IsFiveForThreeAndFourAndExactAtTheTypesLimits)
{
    const image::ImageSizes sizes(131, 2);
    const ImagePtr a = image::createImage(type(), sizes), b = image::createImage(type(), sizes);
    EXPECT_EQ(0.0, maxL2Norm2Msr(a, b));
    forEachSample(sizes, [&](auto x, auto y, auto z, auto c, auto t) {
        setSample(*a, 3, x, y, z, c, t);
        setSample(*b, 4, x, y, z, c, t);
    });
    EXPECT_EQ(5.0, maxL2Norm2Msr(a, b));
    image::withSampleType(image::toDataType(type()), [&](auto sample) {
        typedef decltype(sample) T;
        if (std::is_floating_point<T>::value)
            return;
        for (const double value : {double(NumericLimits<T>::s_min), double(NumericLimits<T>::s_max), 16777217.0})
            for (const unsigned long x : {5ul, 130ul}) {
                if (value > double(NumericLimits<T>::s_max))
                    continue;
                setSample(*a, value, x, 1);
                setSample(*b, value, x, 1);
                expectMeasure(reference(*a, *b), maxL2Norm2Msr(a, b));
            }
    });
}

class MaxL2Norm2MsrOfFloats : public MaxL2Norm2Msr
{
};
INSTANTIATE_TEST_SUITE_P(FloatKernels, MaxL2Norm2MsrOfFloats, ::testing::ValuesIn(kernelsOf(image::eIBT_Real32)), kernelName);

TEST_P(MaxL2Norm2MsrOfFloats, KeepsTheRuleForValuesThatAreNoNumbers)
{
    const image::ImageSizes sizes(192, 1);
    for (const float odd : {kNan, kInfinity, -kInfinity, -0.0f, 3e38f, 1e-30f})
        for (const unsigned long x : {0ul, 1ul, 17ul, 100ul, 190ul, 191ul}) {
            const ImagePtr a = randomImage(type(), sizes, 3), b = randomImage(type(), sizes, 4);
            setSample(*a, odd, x, 0);
            const double expected = reference(*a, *b), found = maxL2Norm2Msr(a, b);
            SCOPED_TRACE(std::to_string(odd) + " at " + std::to_string(x));
            if (expected < 0 || std::isinf(expected)) {
                EXPECT_EQ(expected, found);
            } else {
                expectMeasure(expected, found);
            }
        }
}

TEST(MaxL2Norm2MsrCalls, GiveTheSameForAnyStripsThreadsAndBuffers)
{
    const image::ImageSizes sizes(333, 41, 3, 2, 2);
    const ImagePtr a = randomImage(image::eIBT_Int16, sizes, 5), b = randomImage(image::eIBT_Int16, sizes, 6);
    const double expected = maxL2Norm2Msr(a, b);
    for (const unsigned int nbThreads : {1u, 3u})
        for (const unsigned long grain : {1ul, 7ul, 1000ul}) {
            core::setNbThreads(nbThreads);
            core::setStripGrain(grain);
            EXPECT_EQ(expected, maxL2Norm2Msr(a, b));
            const auto running = imaproc::fd::maxL2Norm2Msr_async(a, b);
            EXPECT_EQ(expected, getAsyncProcessorOutput(running));
        }
    core::setNbThreads(0);
    core::setStripGrain(0);
    GuardedImage guarded(image::eIBT_Int16, sizes, 3);
    forEachSample(sizes, [&](auto x, auto y, auto z, auto c, auto t) {
        setSample(*guarded.get(), sampleAt(*a, x, y, z, c, t), x, y, z, c, t);
    });
    EXPECT_EQ(expected, maxL2Norm2Msr(guarded.get(), b));
}

TEST(MaxL2Norm2MsrCalls, RefuseWhatDoesNotFitInWords)
{
    const auto textOf = [](const ImagePtr& a, const ImagePtr& b) {
        try {
            maxL2Norm2Msr(a, b);
        } catch (const processor::ORVIKBaseProcessingException& e) {
            return std::string(e.what());
        }
        return std::string("accepted");
    };
    const ImagePtr image = image::createImage(image::eIBT_Binary, {16, 16});
    EXPECT_EQ("MaxL2Norm2MsrLvl1 refuses to run: mandatory attribute InImg2 has no value (unset or null)",
              textOf(image, nullptr));
    EXPECT_NE(std::string::npos, textOf(image, image::createImage(image::eIBT_Binary, {16, 15}))
                                     .find("failed: size X x Y x Z x C x T of InImg1 (16 x 16 x 1 x 1 x 1) equals that of "
                                           "InImg2 (16 x 15 x 1 x 1 x 1)"));
    // The same samples, but another meaning.
    EXPECT_NE(std::string::npos,
              textOf(image, image::createImage(image::eIBT_Label8, {16, 16}))
                  .find("failed: buffer type of InImg1 (binary (type 8)) equals that of InImg2 (label 8 bits (type 11))"));
}

}  // namespace
}  // namespace orvik::test
