// Corners as lists of voxels: what is found where, the calls, what is refused. The response and the search for extrema have
// tests of their own.

#include "FamilyShapes.h"

#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl1.h"
#include "Processor/HarrisCorner3d/HarrisCorner3dLvl1.h"
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl1.h"

#include <set>

namespace orvik::test { namespace {

using namespace imaproc::fd;

TEST(HarrisCorner3d, IsTheResponseAndItsExtrema)
{
    const ImagePtr volume = randomImage(eIBT_UInt8, {40, 20, 13}, 30), response = createImageLike(*volume, eIBT_Real32);
    const auto coverage = GaussianCoverage::createNode(3.0);
    const auto eigen = CornerDetectionParams::createNode(eCRT_MinEigenvalue, 0.0f);
    harrisCorner3dImg(volume, 1.2f, coverage, eigen, response);
    const auto expectCorners = [](const auto& corners, const ImagePtr& measure, unsigned int distX, unsigned int distY,
                                  unsigned int distZ, double threshold, unsigned long most) {
        const auto expected = extractLocalExtrema3d(measure, distX, distY, distZ, createLocalExtremaConfig(threshold, most));
        EXPECT_LT(5u, expected->size());
        EXPECT_TRUE(same(numbersOf(expected), numbersOf(corners)));
    };
    const double lowest = NumericLimits<float>::s_min;
    expectCorners(harrisCorner3d(volume, 20, 3), harrisCorner3dImg(volume), 3, 3, 3, lowest, 20);
    expectCorners(harrisCorner3d(volume, 1.5f, 10, 2), harrisCorner3dImg(volume, 1.5f), 2, 2, 2, lowest, 10);
    expectCorners(harrisCorner3d(volume, 1.2f, coverage, eigen, 1000, 20.0, 4, 1, 2), response, 4, 1, 2, 20.0, 1000);
    EXPECT_EQ(0u, harrisCorner3d(volume, 0, 3)->size());
    EXPECT_EQ(40u * 20u * 13u, harrisCorner3d(volume, NumericLimits<unsigned long>::s_max, 0)->size());
}

TEST(HarrisCorner3d, FindsTheCornersOfABoxFirst)
{
    const ImagePtr volume = createImage(eIBT_UInt8, {40, 36, 32});
    forEachSample({20, 18, 16}, [&](auto x, auto y, auto z, auto...) { setSample(*volume, 200, x + 10, y + 9, z + 8); });
    std::set<Numbers> expected, found;  // the response is strongest a voxel within
    for (const double x : {11, 28})
        for (const double y : {10, 25})
            for (const double z : {9, 22})
                expected.insert({x, y, z});
    const Numbers corners = numbersOf(harrisCorner3d(volume, 8, 5));
    for (std::size_t i = 1; i < corners.size(); i += 4)
        found.insert({corners[i], corners[i + 1], corners[i + 2]});
    EXPECT_EQ(expected, found);
}

TEST(HarrisCorner3d, OfAFlatVolumePassesAThresholdOfZero)
{
    const ImagePtr flat = drawnImage(eIBT_Int16, {12, 9, 5}, {-300}, 1);
    const auto corners = [&](double threshold) {
        return harrisCorner3d(flat, 1.0f, nullptr, nullptr, 5, threshold, 20, 20, 20)->size();
    };
    EXPECT_EQ(1u, corners(0)) << "the cube root of the epsilon is above 0, and the first voxel stands for all";
    EXPECT_EQ(0u, corners(0.005));
}

TEST(HarrisCorner3d, OfStacksIsOneListForEachVolume)
{
    const ImagePtr stack = drawnImage(eIBT_UInt16, {20, 12, 9, 2, 2}, {0, 1, 2, 3, 40, 50}, 34);
    const auto list = [](const ImagePtr& volume) { return harrisCorner3d(volume, 1.0f, 30, 2); };
    Numbers each;
    forEachSample({1, 1, 1, 2, 2}, [&](auto, auto, auto, auto c, auto t) {
        append(each, numbersOf(list(stack->getView(PlanIndex(0, c, t), 9))));
    });
    expectForStripsAndThreads(each, [&] { return multiSlice_harrisCorner3d(stack, 1.0f, 30, 2); });
    EXPECT_TRUE(same(each,
                     numbersOf(getAsyncProcessorMultiSliceOutput(multiSlice_harrisCorner3d_async(stack, 1.0f, 30, 2)))));
}

boost::shared_ptr<HarrisCorner3dLvl1> cornersWith(const ImagePtr& in, const ImagePtr& wk1, const ImagePtr& wk6)
{
    return ran<HarrisCorner3dLvl1, InImg3d, InLocalExtremaConfig, InFeaturesDistX, InFeaturesDistY, InFeaturesDistZ,
               OutWk1Img, OutWk6Img>(in, createLocalExtremaConfig(), 2, 2, 2, wk1, wk6);
}

TEST(HarrisCorner3d, LeavesTheResponseInTheFirstWorkingImage)
{
    const ImagePtr in = randomImage(eIBT_UInt8, {30, 10, 7}, 31), wk1 = createImage(eIBT_Real32, {30, 10, 7});
    cornersWith(in, wk1, nullptr);
    EXPECT_TRUE(sameSamples(*harrisCorner3dImg(in), *wk1));
}

TEST(HarrisCorner3d, RefusesBeforeAnyWorkAndSaysWhy)
{
    const ImagePtr in = randomImage(eIBT_Real32, {8, 8, 3}, 32), deeper = createImage(eIBT_Real32, {8, 8, 4});
    const ImagePtr stack = createImage(eIBT_Real32, {8, 8, 3, 2, 1}), a = copyOf(*in), b = copyOf(*in);
    const std::string volumes =
        "failed: entries of OutPIVoxels3d are the volumes (0, c, t) of InImg3d: 1 entries, 2 volumes";
    expectRefusals(
        {in, a, b, deeper},
        {
            {"failed: InOptGradStdDev is 0, it must be a finite number above 0", [&] { harrisCorner3d(in, 0.0f, 5, 1); }},
            {volumes, [&] { harrisCorner3d(stack, 5, 1); }},
            {volumes, [&] { getAsyncProcessorOutput(harrisCorner3d_async(stack, 5, 1)); }},
            {"OutWk1Img (8 x 8 x 4 x 1 x 1)", [&] { cornersWith(in, deeper, b); }},
            {"OutWk6Img (8 x 8 x 4 x 1 x 1)", [&] { cornersWith(in, a, deeper); }},
        },
        "HarrisCorner3dLvl1 refuses to run:");
}

}  // namespace
}  // namespace orvik::test
