// Corners as lists of pixels: what is found where, the calls, what is refused. The response and the search for extrema
// have tests of their own.

#include "FamilyShapes.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

TEST(HarrisCorner2d, IsTheResponseAndItsExtremaByEveryCallForStripsAndThreads)
{
    const GuardedImage guarded(*randomImage(eIBT_UInt8, {70, 50, 2, 1, 2}, 30), 3);
    const ImagePtr &stack = guarded.get(), plane = stack->getView(PlanIndex(1, 0, 1), 1);
    const auto coverage = GaussianCoverage::createNode(3.0);
    const auto eigen = CornerDetectionParams::createNode(eCRT_MinEigenvalue, 0.0f);
    const double lowest = NumericLimits<float>::s_min;
    const auto plainly = [&](const ImagePtr& one) {
        return extractLocalExtrema2d(harrisCorner2dImg(one), 3, 3, createLocalExtremaConfig(lowest, 20));
    };
    const auto fully = [&](const ImagePtr& one) {
        const ImagePtr response = createImageLike(*one, eIBT_Real32);
        harrisCorner2dImg(one, 1.2f, coverage, eigen, response);
        return extractLocalExtrema2d(response, 4, 1, createLocalExtremaConfig(80.0, 1000));
    };
    ASSERT_TRUE(fully(plane)->size() > 5 && fully(plane)->size() < 100);
    const OfPlanes few(plane, stack, plainly), chosen(plane, stack, fully);
    const OfPlanes wider(plane, stack, [&](const ImagePtr& one) {
        return extractLocalExtrema2d(harrisCorner2dImg(one, 1.5f), 2, 2, createLocalExtremaConfig(lowest, 10));
    });
    expectSameForStripsAndThreads([&] {
        return std::vector<Call>{PLANE_CALLS(few, harrisCorner2d, 20, 3), PLANE_CALLS(wider, harrisCorner2d, 1.5f, 10, 2),
                                 PLANE_CALLS(chosen, harrisCorner2d, 1.2f, coverage, eigen, 1000, 80.0, 4, 1)};
    });
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
