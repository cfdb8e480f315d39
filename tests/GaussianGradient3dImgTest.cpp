// Gradients of volumes: the formula along three axes, what is exact, the calls.

#include "FamilyShapes.h"
#include "GaussianFormula.h"
#include "InstructionSets.h"

#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl3.h"

#include <array>

namespace orvik::test { namespace {

using namespace imaproc::filter;

/// Along x first, then y and z: the processors go the other way round, which differs in the last bits of doubles alone.
void expectFormula(const ImagePtr& in, int axis, const std::array<double, 3>& stdDevs, double coverage, const BaseImage& out)
{
    const ImageSizes sizes = in->getGeometry().getSizes();
    std::vector<double> samples = samplesOf(*in);
    double largest = 0;
    for (const double sample : samples)
        largest = std::max(largest, std::fabs(sample));
    for (int along = 0; along < 3; ++along)
        samples = filteredAlong(samples, sizes, along, along == axis, stdDevs[static_cast<std::size_t>(along)], coverage);
    expectVolume(samples, out, 1e-13 * largest);
}

typedef KernelTest<GaussianGradient3dImgLvl3> Gradient3dKernel;
INSTANTIATE_TEST_SUITE_P(AllKernels, Gradient3dKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(Gradient3dKernel, IsTheFormulaAndThePlainCodeForAnySizeAndResult)
{
    unsigned long turn = 0;
    for (const ImageSizes& sizes : {ImageSizes(1, 1, 1), {70, 1, 5}, {3, 19, 1}, {64, 9, 12}, {131, 4, 3}}) {
        const ImagePtr in = randomImage(type(), sizes, 1);
        const eImageBufferType outType = kAllTypes[(turn++ + type()) % 11];
        const std::array<float, 3> stdDevs = {turn % 3 == 0 ? 2.5f : 0.8f, turn % 2 == 0 ? 1.5f : 0.3f, 1.1f};
        const auto run = [&] {
            std::vector<ImagePtr> out;
            for (const eImageBufferType to : {eIBT_Real32, eIBT_Real32, eIBT_Real32, outType})
                out.push_back(createImageLike(*in, to));
            gaussianGradient3dImg(in, stdDevs[0], stdDevs[1], stdDevs[2], 3.5, out[0], out[1], out[2]);
            gaussianGradient3dImg(in, stdDevs[0], stdDevs[1], stdDevs[2], 3.5, nullptr, nullptr, out[3]);
            return out;
        };
        const std::vector<ImagePtr> plain = withPlainCode(run), found = run();
        for (int i = 0; i < 4; ++i) {
            const std::size_t place = static_cast<std::size_t>(i);
            EXPECT_TRUE(sameSamples(*plain[place], *found[place]));
            expectFormula(in, std::min(i, 2),
                          {static_cast<double>(stdDevs[0]), static_cast<double>(stdDevs[1]),
                           static_cast<double>(stdDevs[2])},
                          3.5, *found[place]);
        }
    }
}

TEST(Gradient3d, OfARampIsExactlyOneAndOfAFlatVolumeZero)
{
    const ImagePtr ramp = createImage(eIBT_Int16, {30, 28, 26});
    forEachSample({30, 28, 26}, [&](auto x, auto y, auto z, auto...) {
        setSample(*ramp, static_cast<double>(x + 3 * z) - 2 * static_cast<double>(y), x, y, z);
    });
    const auto [x, y, z] = gaussianGradient3dImg(ramp, 1.0f);
    EXPECT_EQ(1, sampleAt(*x, 15, 14, 13));
    EXPECT_EQ(-2, sampleAt(*y, 15, 14, 13));
    EXPECT_EQ(3, sampleAt(*z, 15, 14, 13));
    const auto [flatX, flatY, flatZ] = gaussianGradient3dImg(drawnImage(eIBT_Real32, {9, 8, 7}, {1234.56789}, 1), 2.3f);
    for (const ImagePtr& each : {flatX, flatY, flatZ})
        EXPECT_TRUE(sameSamples(*createImage(eIBT_Real32, {9, 8, 7}), *each));
}

TEST(Gradient3d, OfStripsThreadsAndStacksIsThatOfEachVolume)
{
    const GuardedImage guarded(*drawnImage(eIBT_UInt8, {61, 11, 13, 2, 2}, {0, 0, 1, 7, 20}, 34), 3);
    const ImagePtr& stack = guarded.get();
    const auto gradients = [](const ImagePtr& in) { return gaussianGradient3dImg(in, 1.2f); };
    Numbers each[3];
    forEachSample({1, 1, 1, 2, 2}, [&](auto, auto, auto, auto c, auto t) {
        const auto [x, y, z] = gradients(stack->getView(PlanIndex(0, c, t), 13));
        append(each[0], numbersOf(x));
        append(each[1], numbersOf(y));
        append(each[2], numbersOf(z));
    });
    expectForStripsAndThreads(each[0], [&] { return std::get<0>(gradients(stack)); });
    expectForStripsAndThreads(each[1], [&] { return std::get<1>(gradients(stack)); });
    expectForStripsAndThreads(each[2], [&] { return std::get<2>(gradients(stack)); });
}

TEST(Gradient3d, RefusesWhatMakesNoKernelAndImagesThatDoNotGoTogether)
{
    const ImagePtr in = randomImage(eIBT_UInt8, {8, 8, 3}, 13), out = randomImage(eIBT_Real32, {8, 8, 3}, 14);
    const ImagePtr deeper = randomImage(eIBT_Real32, {8, 8, 4}, 15);
    const auto with = [&](float stdDevZ, double coverage, const ImagePtr& outZ) {
        return [=] { gaussianGradient3dImg(in, 1, 1, stdDevZ, coverage, out, nullptr, outZ); };
    };
    const std::string finite = ", it must be a finite number above 0";
    expectRefusals(
        {out, deeper},
        {{"failed: InStdDevZ is nan" + finite, with(std::nanf(""), 4, nullptr)},
         {"failed: InStdDevZ is 1000000 and InOptGradientGaussianCoverage is 4", with(1e6f, 4, nullptr)},
         {"failed: InOptGradientGaussianCoverage is -2.5" + finite, with(1, -2.5, nullptr)},
         {"OutOptGradZImg3d (8 x 8 x 4 x 1 x 1)", with(1, 4, deeper)},
         {"OutOptGradZImg3d", with(1, 4, out)},
         {"outX, outY and outZ are all null", [&] { gaussianGradient3dImg(in, 1, 1, 1, 4, nullptr, nullptr, nullptr); }}});
}

}  // namespace
}  // namespace orvik::test
