// Gradients by derivatives of a Gaussian: the formula, what is exact, rounding, the calls.

#include "FamilyShapes.h"
#include "GaussianFormula.h"
#include "InstructionSets.h"

#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::filter;

/// Orders of summation differ, so a sum is off by some 1e-15 of the largest sample; 1e-13 leaves room, and hides nothing
/// that a wrong weight would do.
void expectFormula(const ImagePtr& in, bool alongX, double stdDevX, double stdDevY, double coverage, const BaseImage& out)
{
    const Plane plane = planeOf(*in);
    double largest = 0;
    for (const double sample : plane.samples)
        largest = std::max(largest, std::fabs(sample));
    expectPlane(gradient(plane, alongX, stdDevX, stdDevY, coverage), out, 1e-13 * largest);
}

typedef KernelTest<GaussianGradient2dImgLvl3> GradientKernel;
INSTANTIATE_TEST_SUITE_P(AllKernels, GradientKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(GradientKernel, IsTheFormulaAndThePlainCodeForAnyWidthAndResult)
{
    unsigned long turn = 0;
    for (const unsigned long width : kWidths) {
        const ImagePtr in = randomImage(type(), {width, 1 + width % 13}, 1);
        const eImageBufferType outType = kAllTypes[(turn++ + type()) % 11];
        const float stdDevX = width % 3 == 0 ? 3.0f : 0.8f, stdDevY = width % 2 == 0 ? 1.5f : 0.3f;
        const auto run = [&] {
            std::vector<ImagePtr> out;
            for (const eImageBufferType to : {eIBT_Real32, eIBT_Real32, outType, outType})
                out.push_back(createImageLike(*in, to));
            gaussianGradient2dImg(in, stdDevX, stdDevY, 3.5, out[0], out[1]);
            gaussianGradient2dImg(in, stdDevX, stdDevY, 3.5, out[2], ImagePtr());
            gaussianGradient2dImg(in, stdDevX, stdDevY, 3.5, ImagePtr(), out[3]);
            return out;
        };
        const std::vector<ImagePtr> plain = withPlainCode(run), found = run();
        for (unsigned long i = 0; i < 4; ++i) {
            EXPECT_TRUE(sameSamples(*plain[i], *found[i]));
            expectFormula(in, i % 2 == 0, static_cast<double>(stdDevX), static_cast<double>(stdDevY), 3.5, *found[i]);
        }
    }
}

typedef GradientKernel GradientOfFloats;
INSTANTIATE_TEST_SUITE_P(FloatKernels, GradientOfFloats, ::testing::ValuesIn(kernelsOf({eIBT_Real32})), kernelName);

TEST_P(GradientOfFloats, IsRoundedHalfToEvenAndSaturated)
{
    const struct
    {
        double slope;
        eImageBufferType type;
        double expected;
    } cases[] = {
        {2.5, eIBT_Int8, 2},           {3.5, eIBT_Int16, 4},    {-2.5, eIBT_Int32, -2},           {-3.5, eIBT_Int8, -4},
        {300, eIBT_UInt8, 255},        {-300, eIBT_Binary, 0},  {-300, eIBT_Int8, -128},          {7e4, eIBT_Label16, 65535},
        {3e9, eIBT_Int32, 2147483647}, {3e9, eIBT_UInt32, 3e9}, {1e30, eIBT_Label32, 4294967295}, {kNan, eIBT_Int16, 0}};
    for (const auto& each : cases) {
        // So narrow a Gaussian weighs the centre 1 and the neighbours 0.5: halves are met exactly.
        const ImagePtr in = createImage(type(), {3, 1}), out = createImage(each.type, {3, 1});
        for (unsigned long x = 0; x < 3; ++x)
            setSample(*in, each.slope * static_cast<double>(x), x, 0);
        gaussianGradient2dImg(in, 0.1f, 0.1f, 4.0, out, ImagePtr());
        EXPECT_EQ(each.expected, sampleAt(*out, 1, 0)) << each.slope;
        EXPECT_EQ(std::isnan(each.slope), std::isnan(sampleAt(*gaussianGradient2dImg(in, 0.1f).first, 1, 0)));
    }
}

TEST(GaussianGradient, OfARampIsExactlyOneAndOfAFlatImageZeroUpToItsBorders)
{
    for (const float stdDev : {0.01f, 0.5f, 1.0f, 2.3f, 5.0f}) {
        const unsigned long margin = static_cast<unsigned long>(std::max(1l, std::lround(4 * stdDev)));
        const ImagePtr ramp = createImage(eIBT_Int16, {80, 60});
        forEachSample({80, 60}, [&](auto x, auto y, auto...) { setSample(*ramp, static_cast<double>(x + 5000 - y), x, y); });
        const auto slopes = gaussianGradient2dImg(ramp, stdDev);
        forEachSample({80 - 2 * margin, 60 - 2 * margin}, [&](auto x, auto y, auto...) {
            ASSERT_EQ(1, sampleAt(*slopes.first, x + margin, y + margin)) << stdDev;
            ASSERT_EQ(-1, sampleAt(*slopes.second, x + margin, y + margin)) << stdDev;
        });
        for (const ImageSizes& sizes : {ImageSizes(1, 1), {70, 1}, {1, 70}, {67, 33}}) {
            const auto flat = gaussianGradient2dImg(drawnImage(eIBT_Real32, sizes, {1234.56789}, 1), stdDev);
            for (const ImagePtr& each : {flat.first, flat.second})
                EXPECT_TRUE(sameSamples(*createImage(eIBT_Real32, sizes), *each)) << stdDev;
        }
    }
}

TEST(GaussianGradient, ComputesTheOutputsThatWereGivenOrElseBoth)
{
    const ImagePtr in = randomImage(eIBT_UInt8, {20, 10}, 11);
    const auto run = ran<GaussianGradient2dImgLvl1, InImg, InStdDevX, InStdDevY>(in, 1.0f, 1.0f);
    const ImagePtr made = run->getStorage<OutOptGradYImg>(), given = createImage(eIBT_Real32, {20, 10});
    EXPECT_EQ(eIBT_Real32, run->getStorage<OutOptGradXImg>()->getBufferType());
    run->set<OutOptGradYImg>(given);
    processor::executeSyncRun(run);
    EXPECT_FALSE(run->getStorage<OutOptGradXImg>());
    EXPECT_EQ(given, run->getStorage<OutOptGradYImg>());
    EXPECT_TRUE(sameSamples(*made, *given));
}

TEST(GaussianGradient, RefusesWhatMakesNoKernelAndImagesThatDoNotGoTogether)
{
    const ImagePtr in = randomImage(eIBT_UInt8, {8, 8}, 13), x = randomImage(eIBT_Real32, {8, 8}, 14);
    const ImagePtr y = copyOf(*x), higher = randomImage(eIBT_Real32, {8, 9}, 15);
    const auto with = [&](float stdDevX, float stdDevY, double coverage) {
        return [=] { gaussianGradient2dImg(in, stdDevX, stdDevY, coverage, x, y); };
    };
    const auto to = [&](const ImagePtr& image, const ImagePtr& outX, const ImagePtr& outY) {
        return [=] { gaussianGradient2dImg(image, 1.0f, 1.0f, 4.0, outX, outY); };
    };
    const std::string finite = ", it must be a finite number above 0";
    const std::string fits =
        " is 1000000 and InOptGradientGaussianCoverage is 4, which makes a kernel of half-size 4000000, it "
        "must be at most 1048576";
    expectRefusals({x, y, higher},
                   {
                       {"failed: InStdDevX is -1" + finite, with(-1, 1, 4)},
                       {"failed: InStdDevY is 0" + finite, with(1, 0, 4)},
                       {"failed: InStdDevY is nan" + finite, with(1, std::nanf(""), 4)},
                       {"failed: InOptGradientGaussianCoverage is -2.5" + finite, with(1, 1, -2.5)},
                       {"failed: InOptGradientGaussianCoverage is inf" + finite, with(1, 1, kInfinity)},
                       {"failed: InStdDevX" + fits, with(1e6f, 1, 4)},
                       {"failed: InStdDevY" + fits, with(1, 1e6f, 4)},
                       {"OutOptGradXImg (8 x 9 x 1 x 1 x 1)", to(in, higher, y)},
                       {"OutOptGradYImg (8 x 9 x 1 x 1 x 1)", to(in, x, higher)},
                       {"gaussianGradient2dImg failed: outX and outY are both null", to(in, ImagePtr(), ImagePtr())},
                   });
    EXPECT_NO_THROW(with(1, 1048576, 1)()) << "the largest half-size";
}

}  // namespace
}  // namespace orvik::test
