// Corners as lists of pixels: what is found where, the calls, what is refused. The response and the search for extrema
// have tests of their own.

#include "FamilyShapes.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

TEST(HarrisCorner2d, IsTheResponseAndItsExtrema)
{
    const ImagePtr plane = randomImage(eIBT_UInt8, {70, 50}, 30), response = createImageLike(*plane, eIBT_Real32);
    const auto coverage = GaussianCoverage::createNode(3.0);
    const auto eigen = CornerDetectionParams::createNode(eCRT_MinEigenvalue, 0.0f);
    harrisCorner2dImg(plane, 1.2f, coverage, eigen, response);
    const auto expectCorners = [](const auto& corners, const ImagePtr& measure, unsigned int distX, unsigned int distY,
                                  double threshold, unsigned long most) {
        const auto expected = extractLocalExtrema2d(measure, distX, distY, createLocalExtremaConfig(threshold, most));
        EXPECT_LT(5u, expected->size());
        EXPECT_TRUE(same(numbersOf(expected), numbersOf(corners)));
    };
    const double lowest = NumericLimits<float>::s_min;
    expectCorners(harrisCorner2d(plane, 20, 3), harrisCorner2dImg(plane), 3, 3, lowest, 20);
    expectCorners(harrisCorner2d(plane, 1.5f, 10, 2), harrisCorner2dImg(plane, 1.5f), 2, 2, lowest, 10);
    expectCorners(harrisCorner2d(plane, 1.2f, coverage, eigen, 1000, 80.0, 4, 1), response, 4, 1, 80.0, 1000);
    EXPECT_EQ(0u, harrisCorner2d(plane, 0, 3)->size());
    EXPECT_EQ(70u * 50u, harrisCorner2d(plane, NumericLimits<unsigned long>::s_max, 0)->size());
}

boost::shared_ptr<HarrisCorner2dLvl1> cornersWith(const ImagePtr& in, const ImagePtr& wk1, const ImagePtr& wk2,
                                                  const ImagePtr& wk3)
{
    return ran<HarrisCorner2dLvl1, InImg, InLocalExtremaConfig, InFeaturesDistX, InFeaturesDistY, OutWk1Img, OutWk2Img,
               OutWk3Img>(in, createLocalExtremaConfig(), 2, 2, wk1, wk2, wk3);
}

TEST(HarrisCorner2d, LeavesTheResponseInTheFirstWorkingImage)
{
    const ImagePtr in = randomImage(eIBT_Int16, {40, 30}, 31), wk1 = createImage(eIBT_Real32, {40, 30});
    cornersWith(in, wk1, nullptr, nullptr);
    EXPECT_TRUE(sameSamples(*harrisCorner2dImg(in), *wk1));
}

TEST(HarrisCorner2d, RefusesBeforeAnyWorkAndSaysWhy)
{
    const ImagePtr in = randomImage(eIBT_Real32, {8, 8}, 32), planes = blank(8, 8, 3),
                   higher = createImage(eIBT_Real32, {8, 9});
    const ImagePtr a = copyOf(*in), b = copyOf(*in), c = copyOf(*in);
    const auto on = [&](const ImagePtr& wk1, const ImagePtr& wk2, const ImagePtr& wk3) {
        return [=] { cornersWith(in, wk1, wk2, wk3); };
    };
    expectRefusals(
        {in, a, b, c, higher},
        {
            {"failed: InOptGradStdDev is 0, it must be a finite number above 0", [&] { harrisCorner2d(in, 0.0f, 5, 1); }},
            {"failed: entries of OutPIPixels2d are the planes (z, c, t) of InImg: 1 entries, 3 planes",
             [&] { harrisCorner2d(planes, 5, 1); }},
            {"OutWk1Img (8 x 9 x 1 x 1 x 1)", on(higher, b, c)},
            {"OutWk2Img (8 x 9 x 1 x 1 x 1)", on(a, higher, c)},
        },
        "HarrisCorner2dLvl1 refuses to run:");
}

}  // namespace
}  // namespace orvik::test
