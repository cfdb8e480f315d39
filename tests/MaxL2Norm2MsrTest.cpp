// The global maximum of the norm of two images.

#include "FamilyShapes.h"
#include "InstructionSets.h"

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

/// One strip as the definition has it: squares and sum in float, the root in double. Lines are handed over as whole blocks
/// of 64 samples and the rest. A strip that ends with a NaN counts as none.
double reference(const BaseImage& a, const BaseImage& b)
{
    const unsigned long sizeX = a.getSizeX(), blocks = sizeX < 64 ? sizeX : sizeX / 64 * 64;
    const double none = std::numeric_limits<double>::lowest();
    double largest = none;
    float m = 0;
    forEachSample(a.getGeometry().getSizes(), [&](auto x, auto... line) {
        const volatile float fa = static_cast<float>(sampleAt(a, x, line...)),
                             fb = static_cast<float>(sampleAt(b, x, line...));
        const volatile float aa = fa * fa, bb = fb * fb;
        const float s = bb + aa;
        const float before = x == 0 || x == blocks ? 0 : m;
        m = before > s ? before : s;
        const double root = std::sqrt(static_cast<double>(m));
        if (x + 1 == blocks || x + 1 == sizeX)
            largest = largest > root ? largest : root;
    });
    return std::isnan(largest) ? none : largest;
}

class MaxL2Norm2Msr : public KernelTest<MaxL2Norm2MsrLvl3>
{
protected:
    /// The widest set rounds a square and the sum once, the others twice: one unit in the last place of the sum, half of
    /// one of its root.
    void expectReference(const ImagePtr& a, const ImagePtr& b) const
    {
        const double expected = reference(*a, *b), found = maxL2Norm2Msr(a, b);
        if (set() == core::eIS_Avx512 && expected > 0 && !std::isinf(expected)) {
            EXPECT_NEAR(expected, found, expected * 1.2e-7);
        } else {
            EXPECT_EQ(expected, found);
        }
    }
};
INSTANTIATE_TEST_SUITE_P(AllKernels, MaxL2Norm2Msr, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(MaxL2Norm2Msr, EqualsTheDefinitionForAnyWidth)
{
    const ImagePtr empty = createImage(type(), {131, 2});
    EXPECT_EQ(0.0, maxL2Norm2Msr(empty, empty));
    EXPECT_EQ(5.0, maxL2Norm2Msr(drawnImage(type(), {131, 2}, {3}, 1), drawnImage(type(), {131, 2}, {4}, 1)));
    for (const unsigned long width : kWidths) {
        SCOPED_TRACE("width " + std::to_string(width));
        expectReference(randomImage(type(), {width, 3, 2}, 1), randomImage(type(), {width, 3, 2}, 2));
    }
}

TEST_P(MaxL2Norm2Msr, KeepsTheRuleForOddValuesWhereverTheyLie)
{
    for (const double odd : oddValues(type()))
        for (const unsigned long x : {0ul, 1ul, 17ul, 100ul, 190ul, 191ul, 193ul}) {
            SCOPED_TRACE(std::to_string(odd) + " at " + std::to_string(x));
            const ImagePtr a = randomImage(type(), {x == 193 ? 194ul : 192ul, 1}, 3), b = copyOf(*a);
            setSample(*a, odd, x, 0);
            setSample(*b, odd, x, 0);
            expectReference(a, b);
        }
}

TEST(MaxL2Norm2MsrCalls, RefuseWhatDoesNotFitInWords)
{
    const ImagePtr image = createImage(eIBT_Binary, {16, 16}), lower = createImage(eIBT_Binary, {16, 15});
    const ImagePtr labels = createImage(eIBT_Label8, {16, 16});  // the same samples, but another meaning
    const std::string refuses = "MaxL2Norm2MsrLvl1 refuses to run: ", unset = " has no value (unset or null)";
    expectRefusals(
        {},
        {
            {refuses + "mandatory attribute InImg1" + unset, [&] { maxL2Norm2Msr(nullptr, image); }},
            {refuses + "mandatory attribute InImg2" + unset, [&] { maxL2Norm2Msr(image, nullptr); }},
            {"failed: size X x Y x Z x C x T of InImg1 (16 x 16 x 1 x 1 x 1) equals that of InImg2 (16 x 15 x 1 x 1 x 1)",
             [&] { maxL2Norm2Msr(image, lower); }},
            {"failed: buffer type of InImg1 (binary (type 8)) equals that of InImg2 (label 8 bits (type 11))",
             [&] { getAsyncProcessorOutput(maxL2Norm2Msr_async(image, labels)); }},
            {"A null processor can't be run", [] { getAsyncProcessorOutput(boost::shared_ptr<MaxL2Norm2MsrLvl1>()); }},
        });
}

}  // namespace
}  // namespace orvik::test
