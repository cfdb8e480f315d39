// What all public functions have in common: strips and threads change nothing, stacks are served plane by plane. That their
// forms in the background give the same is judged by the fuzz target Calls.

#include "PublicCalls.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;
using imaproc::filter::gaussianGradient2dImg;

TEST(PublicCalls, GiveTheSameForStripsAndThreads)
{
    for (const PublicCall& call : publicCalls(90, 77)) {
        SCOPED_TRACE(call.name);
        const WithGrain oneStrip(1000);
        expectForStripsAndThreads(call.call()(), [&] { return call.call()(); });
    }
}

TEST(PublicCalls, OfStacksGiveWhatEachPlaneGives)
{
    const GuardedImage guarded(*drawnImage(eIBT_UInt8, {60, 70, 2, 2, 2}, {0, 0, 0, 1, 7, 20}, 34), 3);
    const ImagePtr& stack = guarded.get();
    const auto thresholds = CannyThresholds::createNode(1, 2);
    const auto coverage = GaussianCoverage::createNode(3.0);
    const auto eigen = CornerDetectionParams::createNode(eCRT_MinEigenvalue, 0.0f);
    const auto extrema = createLocalExtremaConfig(eLET_StrictMinima, 5);
    const auto votes = HoughLinesImgParams::createNode(0.7, 0.1, 3.0, 50u, 1.0f);
    const auto lines = HoughLinesExtractionParams::createNode(eHLTT_Absolute, 20.0, 6u);
    const auto radii = createHoughCirclesRadiusRange(3, 9);
    const auto expectPlanes = [&](const auto& ofStack, const auto& ofPlane) {
        EXPECT_TRUE(same(planeByPlane(stack, ofPlane), numbersOf(ofStack)));
    };
    const auto expectEach = [&](const auto& f) { expectPlanes(f(stack), f); };
    expectEach([&](const ImagePtr& in) { return cannyEdges2dImg(in, in, thresholds); });
    expectEach([](const ImagePtr& in) { return gaussianGradient2dImg(in, 1.4f).first; });
    expectEach([](const ImagePtr& in) { return gaussianGradient2dImg(in, 1.4f).second; });
    expectEach([](const ImagePtr& in) { return harrisCorner2dImg(in); });
    expectEach([](const ImagePtr& in) { return houghLines2dImg(in); });
    expectEach([&](const ImagePtr& in) { return houghLines2dImg(in, votes); });
    expectEach([&](const ImagePtr& in) { return houghCircles2dImg(in, in, radii); });
    expectEach([&](const ImagePtr& in) { return houghCirclesPhaseCoded2dImg(in, in, radii).second; });
    expectPlanes(multiSlice_extractLocalExtrema2d(stack, 2, 3),
                 [](const ImagePtr& in) { return extractLocalExtrema2d(in, 2, 3); });
    expectPlanes(multiSlice_extractLocalExtrema2d(stack, 2, 3, extrema),
                 [&](const ImagePtr& in) { return extractLocalExtrema2d(in, 2, 3, extrema); });
    expectPlanes(multiSlice_harrisCorner2d(stack, 20, 3), [](const ImagePtr& in) { return harrisCorner2d(in, 20, 3); });
    expectPlanes(multiSlice_harrisCorner2d(stack, 1.5f, 10, 2),
                 [](const ImagePtr& in) { return harrisCorner2d(in, 1.5f, 10, 2); });
    expectPlanes(multiSlice_harrisCorner2d(stack, 1.2f, coverage, eigen, 1000, 8.0, 4, 1),
                 [&](const ImagePtr& in) { return harrisCorner2d(in, 1.2f, coverage, eigen, 1000, 8.0, 4, 1); });
    expectPlanes(multiSlice_houghLines2d(stack).first, [](const ImagePtr& in) { return houghLines2d(in).first; });
    expectPlanes(multiSlice_houghLines2d(stack, votes, lines).first,
                 [&](const ImagePtr& in) { return houghLines2d(in, votes, lines).first; });
    expectPlanes(multiSlice_houghLines2d(stack).second, [](const ImagePtr& in) { return houghLines2d(in).second; });
    const WithThreads one(1);  // sums of floats depend on the order of threads
    expectEach([](const ImagePtr& in) { return houghLinesGradient2dImg(in, in); });
    expectPlanes(multiSlice_houghLinesGradient2d(stack, stack).first,
                 [](const ImagePtr& in) { return houghLinesGradient2d(in, in).first; });
}

}  // namespace
}  // namespace orvik::test
