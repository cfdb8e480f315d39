// Corners as lists of pixels: what is found where, the calls, what is refused. The response and the search for extrema
// have tests of their own.

#include "TestImages.h"
#include "TestRuns.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace orvik::test {
namespace {

using namespace imaproc::attr;
using imaproc::fd::harrisCorner2d;
using imaproc::fd::harrisCorner2d_async;
using imaproc::fd::HarrisCorner2dLvl1;
using imaproc::fd::multiSlice_harrisCorner2d;
using imaproc::fd::multiSlice_harrisCorner2d_async;

const unsigned long kAll = std::numeric_limits<unsigned long>::max();

typedef std::vector<std::array<double, 3> > List;

List listOf(const boost::shared_ptr<Pixels2d>& pixels)
{
    List list;
    for (const auto& pixel : pixels->access<Pixels2d::Coll>().accessNodes())
        list.push_back({pixel->get<Pixel2d::X>(), pixel->get<Pixel2d::Y>(), pixel->get<Pixel2d::Value>()});
    return list;
}

/// Bright rectangles on a dark ground; corners of the darker one are weaker.
ImagePtr rectangles(image::eImageBufferType type)
{
    const ImagePtr image = image::createImage(type, {90, 60});
    forEachSample({90, 60}, [&](auto x, auto y, auto...) {
        const bool first = x >= 12 && x < 40 && y >= 15 && y < 45, second = x >= 55 && x < 80 && y >= 20 && y < 50;
        setSample(*image, first ? 100 : second ? 60 : 5, x, y);
    });
    return image;
}

TEST(HarrisCorner2d, FindsTheCornersOfRectanglesStrongestFirst)
{
    for (const image::eImageBufferType type : kAllTypes) {
        if (type == image::eIBT_Binary)
            continue;  // holds but two greys
        SCOPED_TRACE(toString(type));
        for (const eCornerResponseType response : {eCRT_MinEigenvalue, eCRT_Harris}) {
            const auto params = CornerDetectionParams::createNode(response, 0.04f);
            const List corners = listOf(harrisCorner2d(rectangles(type), 1.0f, nullptr, params, 8, 0.0, 5, 5));
            ASSERT_EQ(8u, corners.size());
            for (unsigned long i = 1; i < 8; ++i)
                EXPECT_GE(corners[i - 1][2], corners[i][2]);
            // The four of the brighter one first; within a pixel of the true place, inwards as smoothing shifts them.
            for (const auto& [begin, x0, x1, y0, y1] : {std::array<double, 5>{0, 12, 39, 15, 44}, {4, 55, 79, 20, 49}})
                for (const double x : {x0, x1})
                    for (const double y : {y0, y1}) {
                        const auto first = corners.begin() + static_cast<long>(begin);
                        EXPECT_EQ(1, std::count_if(first, first + 4, [&, x = x, y = y](const auto& corner) {
                                      return std::fabs(corner[0] - x) <= 1 && std::fabs(corner[1] - y) <= 1;
                                  })) << x << ", " << y;
                    }
        }
    }
}

TEST(HarrisCorner2d, IsTheResponseAndItsExtremaByEveryCallShape)
{
    const image::ImageSizes sizes(70, 50, 2, 1, 2);
    const ImagePtr planes = randomImage(image::eIBT_UInt8, sizes, 30), plane = planes->getView(PlanIndex(1, 0, 1), 1);
    const auto coverage = GaussianCoverage::createNode(3.0);
    const auto eigen = CornerDetectionParams::createNode(eCRT_MinEigenvalue, 0.0f);
    const auto expected = [](const ImagePtr& response, unsigned int distX, unsigned int distY, double threshold,
                             unsigned long count) {
        const auto config = createLocalExtremaConfig(threshold, count);
        return listOf(imaproc::fd::extractLocalExtrema2d(response, distX, distY, config));
    };
    const double lowest = NumericLimits<float>::s_min;
    const List plain = expected(imaproc::fd::harrisCorner2dImg(plane), 3, 3, lowest, 20);
    const List wider = expected(imaproc::fd::harrisCorner2dImg(plane, 1.5f), 2, 2, lowest, 10);
    const ImagePtr response = image::createImageLike(*plane, image::eIBT_Real32);
    imaproc::fd::harrisCorner2dImg(plane, 1.2f, coverage, eigen, response);
    const List full = expected(response, 4, 1, 80.0, 1000);
    ASSERT_TRUE(plain.size() == 20 && wider.size() == 10 && full.size() > 5 && full.size() < 100);
    EXPECT_LE(80.0, full.back()[2]);

    EXPECT_EQ(plain, listOf(harrisCorner2d(plane, 20, 3)));
    EXPECT_EQ(wider, listOf(harrisCorner2d(plane, 1.5f, 10, 2)));
    EXPECT_EQ(full, listOf(harrisCorner2d(plane, 1.2f, coverage, eigen, 1000, 80.0, 4, 1)));
    EXPECT_EQ(plain, listOf(getAsyncProcessorOutput(harrisCorner2d_async(plane, 20, 3))));
    EXPECT_EQ(wider, listOf(getAsyncProcessorOutput(harrisCorner2d_async(plane, 1.5f, 10, 2))));
    EXPECT_EQ(full, listOf(getAsyncProcessorOutput(harrisCorner2d_async(plane, 1.2f, coverage, eigen, 1000, 80.0, 4, 1))));
    const auto expectPlanes = [&](const List& list, const boost::shared_ptr<PlanIndexedPixels2d>& all) {
        EXPECT_EQ(4u, all->getNbPlans());
        EXPECT_EQ(list, listOf(all->getEntry(PlanIndex(1, 0, 1))));
        EXPECT_NE(list, listOf(all->getEntry(PlanIndex(0, 0, 1))));
    };
    expectPlanes(plain, multiSlice_harrisCorner2d(planes, 20, 3));
    expectPlanes(wider, multiSlice_harrisCorner2d(planes, 1.5f, 10, 2));
    expectPlanes(full, multiSlice_harrisCorner2d(planes, 1.2f, coverage, eigen, 1000, 80.0, 4, 1));
    expectPlanes(plain, getAsyncProcessorMultiSliceOutput(multiSlice_harrisCorner2d_async(planes, 20, 3)));
    expectPlanes(wider, getAsyncProcessorMultiSliceOutput(multiSlice_harrisCorner2d_async(planes, 1.5f, 10, 2)));
    expectPlanes(full, getAsyncProcessorMultiSliceOutput(
                           multiSlice_harrisCorner2d_async(planes, 1.2f, coverage, eigen, 1000, 80.0, 4, 1)));
    for (const unsigned long grain : {1ul, 13ul}) {
        const WithThreads threads(3);
        const WithGrain strips(grain);
        EXPECT_EQ(plain, listOf(harrisCorner2d(plane, 20, 3))) << "strips of " << grain;
    }
    EXPECT_TRUE(listOf(harrisCorner2d(plane, 0, 3)).empty());
    EXPECT_EQ(sizes.x * sizes.y, listOf(harrisCorner2d(plane, kAll, 0)).size());
}

TEST(HarrisCorner2d, LeavesTheResponseInTheFirstWorkingImage)
{
    const ImagePtr in = randomImage(image::eIBT_Int16, {40, 30}, 31), wk1 = image::createImage(image::eIBT_Real32, {40, 30});
    const auto processor = processor::createInitialised<HarrisCorner2dLvl1>();
    processor->set<InImg>(in);
    processor->set<InLocalExtremaConfig>(createLocalExtremaConfig());
    processor->set<InFeaturesDistX>(2);
    processor->set<InFeaturesDistY>(2);
    processor->set<OutWk1Img>(wk1);
    processor::executeSyncRun(processor);
    EXPECT_TRUE(sameSamples(*imaproc::fd::harrisCorner2dImg(in), *wk1));
}

TEST(HarrisCorner2d, RefusesBeforeAnyWorkAndSaysWhy)
{
    const ImagePtr in = randomImage(image::eIBT_UInt8, {8, 8}, 32), planes = randomImage(image::eIBT_UInt8, {8, 8, 3}, 33);
    const auto expectPart = [](const std::string& part, const auto& call) {
        const std::string text = thrownText<processor::ORVIKBaseProcessingException>(call);
        EXPECT_NE(text.find(part), std::string::npos) << text;
    };
    expectPart("failed: InOptGradStdDev is 0, it must be a finite number above 0", [&] { harrisCorner2d(in, 0.0f, 5, 1); });
    expectPart("OutPIPixels2d", [&] { harrisCorner2d(planes, 5, 1); });
    expectPart("mandatory attribute InImg has no value", [&] { multiSlice_harrisCorner2d(nullptr, 5, 1); });
    const auto processor = harrisCorner2d_async(planes, 5, 1);
    expectPart("OutPIPixels2d", [&] { getAsyncProcessorOutput(processor); });
}

}  // namespace
}  // namespace orvik::test
