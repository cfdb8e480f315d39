// Local extrema of planes: which pixels are listed, in which order, the calls.

#include "ExtremaReference.h"
#include "InstructionSets.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl3.h"

#include "frame/attr/StripAttributes.h"

#include <algorithm>

namespace orvik::test { namespace {

using namespace imaproc::fd;

Numbers listOf(const Pixels& pixels)
{
    Numbers list = {static_cast<double>(pixels.size())};
    for (const auto& pixel : pixels)
        append(list, {pixel[0], pixel[1], pixel[3]});
    return list;
}

Numbers expectedList(const BaseImage& plane, long distX, long distY, eLocalExtremumType kind, double threshold,
                     unsigned long maxNb = kAll)
{
    return listOf(mostExtreme(pixelsOf(plane, distX, distY, kind, threshold), kind, maxNb));
}

class ExtremaKernel : public KernelTest<ExtractLocalExtrema2dLvl3>
{
protected:
    void expectReference(const ImagePtr& image, const std::pair<unsigned int, unsigned int>& dist, eLocalExtremumType kind,
                         double threshold) const
    {
        EXPECT_TRUE(same(expectedList(*image, dist.first, dist.second, kind, threshold),
                         numbersOf(extractLocalExtrema2d(image, dist.first, dist.second, configOf(kind, threshold)))))
            << toString(image->getGeometry().getSizes()) << ", distances " << dist.first << ", " << dist.second << ", kind "
            << kind << ", threshold " << threshold;
    }
};
INSTANTIATE_TEST_SUITE_P(AllKernels, ExtremaKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(ExtremaKernel, ListsWhatTheDefinitionSaysForAnyWidthAndDistance)
{
    const std::pair<unsigned int, unsigned int> distances[] = {{0, 0}, {1, 1}, {2, 7}, {7, 2},
                                                               {0, 3}, {3, 0}, {5, 4}, {90, 90}};
    unsigned int turn = 0;
    for (const unsigned long width : kWidths) {
        const ImagePtr image = drawnImage(type(), {width, 1 + width % 23}, {1, 2, 3, 5}, 31 + turn);
        for (unsigned int k = 0; k < 3; ++k, ++turn)
            expectReference(image, distances[turn % 8], kKinds[turn % 4], turn % 3 ? noThreshold(kKinds[turn % 4]) : 3.0);
    }
    const ImagePtr rich = randomImage(type(), {70, 24}, 3);
    for (const auto& distance : distances)
        for (const eLocalExtremumType kind : kKinds)
            expectReference(rich, distance, kind, 50.0);
}

TEST_P(ExtremaKernel, ListsWhatTheDefinitionSaysAtTheTypesLimits)
{
    const ImagePtr image = drawnImage(type(), {150, 20}, oddValues(type()), 32);
    for (const eLocalExtremumType kind : kKinds)
        for (const unsigned int dist : {0u, 1u, 2u})
            for (const double threshold : {noThreshold(kind), 2147483648.0, -noThreshold(kind), kNan, 1e-300})
                expectReference(image, {dist, dist + dist / 2}, kind, threshold);
}

/// Its runs are not padded, so that they have a remainder.
class UnpaddedLvl3 : public ExtractLocalExtrema2dLvl3
{
public:
    unsigned long getRunGranularity() const override { return 1; }
};

TEST_P(ExtremaKernel, ComparesWhatIsLeftOfARunWithItsNextPixelsAlone)
{
    const unsigned long vector = set() == core::eIS_Avx512 ? 64 : set() == core::eIS_Avx2 ? 32 : 16;
    const unsigned long block = 4 * vector / getImageBufferBaseSize(type());
    for (const unsigned long width : {block, block + 1, 2 * block - 1, 7ul})
        for (const eLocalExtremumType kind : kKinds)
            for (const unsigned int dist : {0u, 1u, 4u}) {
                const ImagePtr image = drawnImage(type(), {width, 9}, {1, 2, 3}, 33);
                const auto algorithm = boost::make_shared<UnpaddedLvl3>();
                const auto pixels = Pixels2d::createNode();
                algorithm->init(processor::ePRP_WithRules);
                algorithm->set<InKnlYStrip2d>(boost::make_shared<InputImageYStrip2dWithKernel>(
                    image, PlanIndex(), 0, 9, StripMargins{dist, dist, dist, dist, 0, 0}));
                algorithm->set<InLocalExtremaConfig>(configOf(kind, noThreshold(kind)));
                algorithm->set<OutPixels2d>(pixels);
                processor::executeSyncRun(algorithm);
                const unsigned long whole = set() == core::eIS_Generic ? width : width - width % block;
                EXPECT_TRUE(same(listOf(pixelsOf(*image, dist, dist, kind, noThreshold(kind), static_cast<long>(whole))),
                                 numbersOf(pixels)))
                    << width << " columns, kind " << kind << ", distance " << dist;
            }
}

TEST(Extrema, AreAllMaximaOrTheHighestOfThose)
{
    const ImagePtr plane = drawnImage(eIBT_UInt16, {60, 90}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 34);
    const Numbers all = expectedList(*plane, 2, 3, eLET_Maxima, -1e300);
    EXPECT_TRUE(same(all, numbersOf(extractLocalExtrema2d(plane, 2, 3))));
    EXPECT_TRUE(same(all, numbersOf(extractLocalExtrema2d(plane, 2, 3, nullptr))));
    EXPECT_TRUE(same(expectedList(*plane, 2, 3, eLET_StrictMinima, 3, 40),
                     numbersOf(extractLocalExtrema2d(plane, 2, 3, configOf(eLET_StrictMinima, 3, 40)))));
}

TEST(Extrema, ListsOfTheCallersAreEmptiedFirst)
{
    const ImagePtr plane = drawnImage(eIBT_Int16, {30, 20}, {1, 2, 3, 4}, 36);
    const auto lists = PlanIndexedPixels2d::createOfOnePlane();
    for (int run = 0; run < 2; ++run) {
        ran<ExtractLocalExtrema2dLvl1, InImg, InFeaturesDistX, InFeaturesDistY, OutPIPixels2d>(plane, 1, 1, lists);
        EXPECT_TRUE(same(expectedList(*plane, 1, 1, eLET_Maxima, -1e300), numbersOf(lists)));
    }
}

TEST(Extrema, AreNoneOrMaximaForValuesBeyondTheUsual)
{
    const ImagePtr plane = drawnImage(eIBT_UInt8, {30, 20}, {1, 2, 3, 4}, 37);
    EXPECT_EQ(Numbers{0}, numbersOf(extractLocalExtrema2d(plane, 2, 1, createLocalExtremaConfig(0ul))));
    EXPECT_TRUE(same(expectedList(*plane, 2, 1, eLET_Maxima, -1e300),
                     numbersOf(extractLocalExtrema2d(plane, 2, 1, configOf(static_cast<eLocalExtremumType>(7), -1e300)))));
}

TEST(Extrema, RefuseWhatDoesNotFitInWords)
{
    const ImagePtr stack = blank(4, 3, 2);
    const boost::shared_ptr<ExtractLocalExtrema2dLvl1> none;
    const std::string plans = "failed: entries of OutPIPixels2d are the planes (z, c, t) of InImg: 1 entries, 2 planes";
    expectRefusals({}, {{"ExtractLocalExtrema2dLvl1 refuses to run: mandatory attribute InImg has no value (unset or null)",
                         [] { multiSlice_extractLocalExtrema2d(nullptr, 1, 1); }},
                        {plans, [&] { extractLocalExtrema2d(stack, 1, 1); }},
                        {plans, [&] { getAsyncProcessorOutput(extractLocalExtrema2d_async(stack, 1, 1)); }},
                        {"A null processor can't be run", [&] { getAsyncProcessorOutput(none); }},
                        {"A null processor can't be run", [&] { getAsyncProcessorMultiSliceOutput(none); }}});
}

TEST(Extrema, WithinAnyDistanceBeyondTheImageAreThoseOfItsSize)
{
    const ImagePtr plane = randomImage(image::eIBT_Int16, {40, 30}, 8);
    for (const unsigned int distX : {3u, 40u}) {
        const auto expected = numbersOf(extractLocalExtrema2d(plane, distX, 30));
        EXPECT_LE(distX == 3 ? 2 : 1, expected.at(0));
        for (const unsigned int beyond : {3000000000u, 4294967295u})
            EXPECT_EQ(expected, numbersOf(extractLocalExtrema2d(plane, distX == 3 ? distX : beyond, beyond)));
    }
}

TEST(Extrema, WithinTheWholeOfATallImageTakeNoLongerInStripsForThreads)
{
    const unsigned long height = 4742;
    const ImagePtr plane = randomImage(eIBT_UInt16, {1, height}, 38);
    const Numbers expected = expectedList(*plane, 0, 5, eLET_Maxima, -1e300),
                  highest = numbersOf(extractLocalExtrema2d(plane, height, height));
    EXPECT_LE(1, highest.at(0));
    const auto search =
        processorWith<ExtractLocalExtrema2dLvl2, InSubImg2d, InFeaturesDistX, InFeaturesDistY, InLocalExtremaConfig>(
            plane, 0, height, createLocalExtremaConfig());
    for (const unsigned long grain : {1ul, 64ul}) {
        const WithGrain lines(grain);
        processor::ProviderPtr provider;
        ASSERT_TRUE(search->retrieveProvider(core::BasePriority(), provider));
        // Each strip reads the whole image, and as many lines again outside of it.
        EXPECT_GE(8ul, provider->start(1));
        EXPECT_TRUE(same(highest, numbersOf(extractLocalExtrema2d(plane, height, height))));
        EXPECT_TRUE(same(expected, numbersOf(extractLocalExtrema2d(plane, 0, 5)))) << "in strips as thin as was asked for";
    }
}

}  // namespace
}  // namespace orvik::test
