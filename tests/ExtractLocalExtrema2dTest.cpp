// Local extrema of planes: which pixels are listed, in which order, the calls.

#include "InstructionSets.h"
#include "TestImages.h"
#include "TestRuns.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvik::test {
namespace {

using namespace imaproc::attr;
using namespace imaproc::fd;

const unsigned long kAll = NumericLimits<unsigned long>::s_max;

struct Listed
{
    double x, y, value;
    bool operator==(const Listed& other) const { return x == other.x && y == other.y && value == other.value; }
};
void PrintTo(const Listed& pixel, std::ostream* out)
{
    *out << "(" << pixel.x << ", " << pixel.y << "): " << pixel.value;
}
typedef std::vector<Listed> List;

List listOf(const Pixels2d& pixels)
{
    List result;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        result.push_back({pixels[i].get<Pixel2d::X>(), pixels[i].get<Pixel2d::Y>(), pixels[i].get<Pixel2d::Value>()});
    return result;
}

/// The list of one plane from the definition. Of pixels beyond `wholeBlocks` columns only the next ones in the line count.
List expectedList(const image::BaseImage& image, long distX, long distY, eLocalExtremumType type, double threshold,
                  unsigned long maxNb = kAll, unsigned long z = 0, long wholeBlocks = 1l << 40)
{
    const bool minima = type == eLET_Minima || type == eLET_StrictMinima;
    const bool strict = type == eLET_StrictMaxima || type == eLET_StrictMinima;
    const long sizeX = static_cast<long>(image.getSizeX()), sizeY = static_cast<long>(image.getSizeY());
    double border = 0;
    image::withSampleType(image::toDataType(image.getBufferType()), [&](auto sample) {
        typedef NumericLimits<decltype(sample)> Limits;
        border = static_cast<double>(minima ? Limits::s_max : Limits::s_min);
    });
    const auto at = [&](long x, long y) {
        const bool inside = x >= 0 && y >= 0 && x < sizeX && y < sizeY;
        return inside ? sampleAt(image, static_cast<unsigned long>(x), static_cast<unsigned long>(y), z) : border;
    };
    const auto beats = [&](double a, double b) { return minima ? a < b : a > b; };
    List list;
    for (long y = 0; y < sizeY; ++y)
        for (long x = 0; x < sizeX; ++x) {
            const double v = at(x, y);
            bool kept = beats(v, border);
            for (long ny = std::max(-1l, y - distY); kept && ny <= std::min(sizeY, y + distY); ++ny)
                for (long nx = std::max(-1l, x - distX); kept && nx <= std::min(sizeX, x + distX); ++nx) {
                    const double other = at(nx, ny);
                    const bool before = ny < y || (ny == y && nx < x);
                    if (ny == y && (nx == x || x >= wholeBlocks))
                        continue;
                    if (ny != y && other != other)
                        continue;
                    kept = beats(v, other) || (!before && !strict && v == other);
                }
            if (kept && x >= wholeBlocks) {
                const double left = at(x - 1, y), right = at(x + 1, y);
                const bool leftBeats = left == v || beats(left, v);
                kept = !(leftBeats && (beats(right, v) || (strict && right == v)));
            }
            const float narrow = static_cast<float>(v), limit = static_cast<float>(threshold);
            if (kept && (minima ? narrow <= limit : narrow >= limit))
                list.push_back({static_cast<double>(x), static_cast<double>(y), v});
        }
    const std::size_t count = std::min<std::size_t>(list.size(), maxNb);
    std::partial_sort(list.begin(), list.begin() + static_cast<long>(count), list.end(),
                      [&](const Listed& a, const Listed& b) { return beats(a.value, b.value); });
    list.resize(count);
    return list;
}

boost::shared_ptr<const LocalExtremaConfig> configOf(eLocalExtremumType type, double threshold, unsigned long maxNb = kAll)
{
    return LocalExtremaConfig::createNode(type, threshold, maxNb);
}

const eLocalExtremumType kTypes[] = {eLET_Maxima, eLET_Minima, eLET_StrictMaxima, eLET_StrictMinima};

double noThreshold(eLocalExtremumType type)
{
    return type == eLET_Minima || type == eLET_StrictMinima ? 1e300 : -1e300;
}

/// Few distinct values, so that ties and plateaus are everywhere; the first and the last are those given.
ImagePtr fewValues(image::eImageBufferType type, const image::ImageSizes& sizes, std::vector<double> values,
                   unsigned int seed)
{
    const ImagePtr image = image::createImage(type, sizes);
    std::mt19937 random(seed);
    forEachSample(sizes, [&](auto x, auto y, auto z, auto c, auto t) {
        setSample(*image, values[random() % values.size()], x, y, z, c, t);
    });
    return image;
}

class ExtremaKernel : public KernelTest<ExtractLocalExtrema2dLvl3>
{
protected:
    void expectReference(const ImagePtr& image, unsigned int distX, unsigned int distY, eLocalExtremumType extremum,
                         double threshold) const
    {
        SCOPED_TRACE(toString(image->getGeometry().getSizes()) + ", distances " + std::to_string(distX) + ", "
                     + std::to_string(distY) + ", kind " + std::to_string(extremum) + ", threshold "
                     + std::to_string(threshold));
        const auto pixels = extractLocalExtrema2d(image, distX, distY, configOf(extremum, threshold));
        EXPECT_EQ(expectedList(*image, distX, distY, extremum, threshold), listOf(*pixels));
    }
};

INSTANTIATE_TEST_SUITE_P(AllKernels, ExtremaKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(ExtremaKernel, ListsWhatTheDefinitionSaysForAnyWidthAndDistance)
{
    const std::pair<unsigned int, unsigned int> distances[] = {{0, 0}, {1, 1}, {2, 7}, {7, 2}, {0, 3}, {3, 0}, {5, 4}, {90, 90}};
    unsigned int turn = 0;
    for (const unsigned long width : {1ul, 2ul, 3ul, 15ul, 16ul, 17ul, 33ul, 63ul, 64ul, 65ul, 70ul, 128ul, 255ul, 256ul,
                                      257ul, 300ul}) {
        const ImagePtr image = fewValues(type(), {width, 1 + width % 23}, {1, 2, 3, 5}, 31 + turn);
        for (unsigned int k = 0; k < 3; ++k, ++turn)
            expectReference(image, distances[turn % 8].first, distances[turn % 8].second, kTypes[turn % 4],
                            turn % 3 ? noThreshold(kTypes[turn % 4]) : 3.0);
    }
    const ImagePtr rich = randomImage(type(), {70, 24}, 3);
    for (const auto& distance : distances)
        for (const eLocalExtremumType extremum : kTypes)
            expectReference(rich, distance.first, distance.second, extremum, 50.0);
    EXPECT_NE(0u, processor::getAlgorithmEntry(ExtractLocalExtrema2dLvl3::getTypeName()).lastEfficiency
                      + (set() == core::eIS_Generic ? 1 : 0))
        << "plain code ran instead of the forced set";
}

TEST_P(ExtremaKernel, ListsWhatTheDefinitionSaysAtTheTypesLimits)
{
    std::vector<double> values;
    image::withSampleType(image::toDataType(type()), [&](auto sample) {
        typedef decltype(sample) T;
        values = {static_cast<double>(NumericLimits<T>::s_min), static_cast<double>(NumericLimits<T>::s_max), 0, 1,
                  static_cast<double>(static_cast<T>(NumericLimits<T>::s_max - 1))};
        if (std::is_floating_point<T>::value)
            for (const double odd : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(), -0.0, 2.0, 3.0, 4.0, 5.0})
                values.push_back(odd);
    });
    const ImagePtr image = fewValues(type(), {150, 20}, values, 32);
    for (const eLocalExtremumType extremum : kTypes)
        for (const auto& distance : {std::make_pair(0u, 0u), std::make_pair(1u, 1u), std::make_pair(2u, 3u)})
            for (const double threshold : {noThreshold(extremum), 2147483648.0, -noThreshold(extremum),
                                           std::numeric_limits<double>::quiet_NaN(), 1e-300})
                expectReference(image, distance.first, distance.second, extremum, threshold);
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
    const unsigned long block = 4 * vector / image::getImageBufferBaseSize(type());
    for (const unsigned long width : {block, block + 1, 2 * block - 1, 7ul})
        for (const eLocalExtremumType extremum : kTypes)
            for (const unsigned int dist : {0u, 1u, 4u}) {
                SCOPED_TRACE(std::to_string(width) + " columns, kind " + std::to_string(extremum) + ", distance "
                             + std::to_string(dist));
                const ImagePtr image = fewValues(type(), {width, 9}, {1, 2, 3}, 33);
                const auto algorithm = boost::make_shared<UnpaddedLvl3>();
                const auto pixels = Pixels2d::createNode();
                algorithm->init(processor::ePRP_WithRules);
                algorithm->set<InKnlYStrip2d>(boost::make_shared<image::InputImageYStrip2dWithKernel>(
                    image, PlanIndex(), 0, 9, image::StripMargins{dist, dist, dist, dist, 0, 0}));
                algorithm->set<InLocalExtremaConfig>(configOf(extremum, noThreshold(extremum)));
                algorithm->set<OutPixels2d>(pixels);
                processor::executeSyncRun(algorithm);
                const unsigned long whole = set() == core::eIS_Generic ? width : width - width % block;
                List expected = expectedList(*image, dist, dist, extremum, noThreshold(extremum), kAll, 0,
                                             static_cast<long>(whole));
                std::sort(expected.begin(), expected.end(),
                          [](const Listed& a, const Listed& b) { return a.y != b.y ? a.y < b.y : a.x < b.x; });
                EXPECT_EQ(expected, listOf(*pixels));
            }
}

TEST(Extrema, AreTheSameForAnyStripsThreadsAndBuffers)
{
    const image::ImageSizes sizes(120, 90);
    GuardedImage image(image::eIBT_UInt16, sizes, 3);
    forEachSample(sizes, [&](auto x, auto y, auto, auto, auto) { setSample(*image.get(), (x * 7 + y * y * 5) % 11, x, y); });
    for (const unsigned int distY : {0u, 1u, 3u, 40u}) {
        const List expected = expectedList(*image.get(), 2, distY, eLET_Maxima, 0, 60);
        for (const unsigned int nbThreads : {1u, 3u})
            for (const unsigned long grain : {1ul, 7ul, 1000ul}) {
                const WithThreads threads(nbThreads);
                const WithGrain lines(grain);
                EXPECT_EQ(expected, listOf(*extractLocalExtrema2d(image.get(), 2, distY, configOf(eLET_Maxima, 0, 60))));
            }
    }
    EXPECT_TRUE(image.areGuardsIntact());
}

TEST(Extrema, AreListedByEveryCallShape)
{
    const ImagePtr plane = fewValues(image::eIBT_UInt8, {30, 20}, {1, 2, 3, 4, 5, 6, 7, 8, 9}, 34);
    const auto config = configOf(eLET_StrictMinima, 3, 5);
    const List all = expectedList(*plane, 2, 1, eLET_Maxima, -1e300);
    const List some = expectedList(*plane, 2, 1, eLET_StrictMinima, 3, 5);
    ASSERT_EQ(5u, some.size());
    EXPECT_EQ(all, listOf(*extractLocalExtrema2d(plane, 2, 1)));
    EXPECT_EQ(all, listOf(*extractLocalExtrema2d(plane, 2, 1, nullptr)));
    EXPECT_EQ(some, listOf(*extractLocalExtrema2d(plane, 2, 1, config)));
    EXPECT_EQ(all, listOf(*getAsyncProcessorOutput(extractLocalExtrema2d_async(plane, 2, 1))));
    EXPECT_EQ(some, listOf(*getAsyncProcessorOutput(extractLocalExtrema2d_async(plane, 2, 1, config))));
    EXPECT_TRUE(listOf(*extractLocalExtrema2d(plane, 2, 1, createLocalExtremaConfig(0ul))).empty());
    // A number beyond the four reads as maxima.
    EXPECT_EQ(all, listOf(*extractLocalExtrema2d(plane, 2, 1, configOf(static_cast<eLocalExtremumType>(7), -1e300))));

    const ImagePtr stack = fewValues(image::eIBT_Real32, {30, 20, 3, 2, 2}, {1, 2, 3, 4, 5, 6, 7, 8, 9}, 35);
    const auto lists = multiSlice_extractLocalExtrema2d(stack, 2, 1);
    EXPECT_EQ(12u, lists->getNbPlans());
    EXPECT_EQ(expectedList(*stack->getView(PlanIndex(2, 1, 1), 1), 2, 1, eLET_Maxima, -1e300),
              listOf(*lists->getEntry(PlanIndex(2, 1, 1))));
    EXPECT_EQ(listOf(*lists->getEntry(PlanIndex(1, 0, 1))),
              listOf(*getAsyncProcessorMultiSliceOutput(multiSlice_extractLocalExtrema2d_async(stack, 2, 1))
                          ->getEntry(PlanIndex(1, 0, 1))));
    const auto minima = multiSlice_extractLocalExtrema2d(stack, 2, 1, config);
    EXPECT_EQ(expectedList(*stack, 2, 1, eLET_StrictMinima, 3, 5, 1), listOf(*minima->getEntry(PlanIndex(1, 0, 0))));
    EXPECT_EQ(listOf(*minima->getEntry(PlanIndex(0, 1, 0))),
              listOf(*getAsyncProcessorMultiSliceOutput(multiSlice_extractLocalExtrema2d_async(stack, 2, 1, config))
                          ->getEntry(PlanIndex(0, 1, 0))));
}

TEST(Extrema, ListsOfTheCallersAreEmptiedFirst)
{
    const ImagePtr plane = fewValues(image::eIBT_Int16, {30, 20}, {1, 2, 3, 4}, 36);
    const auto processor = processor::createInitialised<ExtractLocalExtrema2dLvl1>();
    const auto lists = PlanIndexedPixels2d::createOfOnePlane();
    processor->set<InImg>(plane);
    processor->set<InFeaturesDistX>(1);
    processor->set<InFeaturesDistY>(1);
    processor->set<OutPIPixels2d>(lists);
    for (int run = 0; run < 2; ++run) {
        processor::executeSyncRun(processor);
        EXPECT_EQ(expectedList(*plane, 1, 1, eLET_Maxima, -1e300), listOf(*lists->getEntry(PlanIndex())));
    }
}

TEST(Extrema, RefuseWhatDoesNotFitInWords)
{
    typedef processor::ORVIKBaseProcessingException Refusal;
    const ImagePtr plane = image::createImage(image::eIBT_UInt8, {4, 3}), stack = image::createImage(image::eIBT_UInt8, {4, 3, 2});
    EXPECT_EQ("ExtractLocalExtrema2dLvl1 refuses to run: mandatory attribute InImg has no value (unset or null)",
              thrownText<Refusal>([] { extractLocalExtrema2d(nullptr, 1, 1); }));
    EXPECT_NE(std::string::npos, thrownText<Refusal>([&] { extractLocalExtrema2d(stack, 1, 1); })
                                     .find("failed: entries of OutPIPixels2d are the planes (z, c, t) of InImg: 1 entries, 2 planes"));
}

TEST(Extrema, WithinAnyDistanceBeyondTheImageAreThoseOfItsSize)
{
    const ImagePtr plane = randomImage(image::eIBT_Int16, {40, 30}, 8);
    for (const unsigned int distX : {3u, 40u}) {
        const List expected = listOf(*extractLocalExtrema2d(plane, distX, 30));
        EXPECT_LE(distX == 3 ? 2u : 1u, expected.size());
        for (const unsigned int beyond : {3000000000u, 4294967295u})
            EXPECT_EQ(expected, listOf(*extractLocalExtrema2d(plane, distX == 3 ? distX : beyond, beyond)));
    }
}

}  // namespace
}  // namespace orvik::test
