// Measures of whole planes: samples of all types on buffers with gaps, values that are no numbers, limits.

#include "TestImages.h"
#include "TestRuns.h"

#include "siblings/GlobalMeasure/CumulativeHistogramData.h"
#include "siblings/GlobalMeasure/Processor/HistogramMsr/HistogramMsr2dLvl2.h"
#include "siblings/GlobalMeasure/Processor/StatsMsr/StatsMsr2dLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvik::test {
namespace {

using namespace imaproc::attr;
using imaproc::ORVIKImageProcessingException;
using namespace imaproc::glbmsr;
using processor::createInitialised;
using processor::ORVIKBaseProcessingException;

typedef std::vector<unsigned long> Counts;
typedef HistogramResult Histogram;

const double kNan = std::nan("");
const double kInfinity = std::numeric_limits<double>::infinity();
const double kFloatMax = std::numeric_limits<float>::max();

/// What the measure leaves of a record that held something else.
boost::shared_ptr<StatsResult> statsOf(const ImagePtr& image)
{
    const auto measure = createInitialised<StatsMsr2dLvl2>();
    measure->set<InSubImg2d>(image);
    measure->set<OutStatsResult>(StatsResult::createNode(1, 2, 3, 4, 5, 6));
    processor::executeSyncRun(measure);
    return measure->getStorage<OutStatsResult>();
}

boost::shared_ptr<Histogram> histogramOf(const ImagePtr& image)
{
    const auto measure = createInitialised<HistogramMsr2dLvl2>();
    measure->set<InSubImg2d>(image);
    measure->set<OutHistogramResult>(Histogram::createNode(true, 1, 2, 3, Counts(7, 7)));
    processor::executeSyncRun(measure);
    return measure->getStorage<OutHistogramResult>();
}

ImagePtr lineOf(image::eImageBufferType type, const std::vector<double>& values)
{
    const ImagePtr image = image::createImage(type, {values.size()});
    for (unsigned long x = 0; x < values.size(); ++x)
        setSample(*image, values[x], x, 0);
    return image;
}

boost::shared_ptr<const CumulativeHistogramData> cumulativeOf(image::eImageBufferType type,
                                                              const std::vector<double>& values)
{
    return createCumulativeHistogramData(*histogramOf(lineOf(type, values)));
}

/// Random samples, those of floats in eighths, some of them NaN: their sums need no rounding.
void fillEighths(image::BaseImage& image, unsigned int seed)
{
    fillRandom(image, seed);
    if (image.getBufferType() != image::eIBT_Real32)
        return;
    forEachSample(image.getGeometry().getSizes(), [&](auto x, auto y, auto z, auto c, auto t) {
        const double value = sampleAt(image, x, y, z, c, t);
        setSample(image, (x + y) % 7 == 3 ? kNan : std::floor(value * 8) / 8, x, y, z, c, t);
    });
}

std::vector<double> numbersIn(const image::BaseImage& image)
{
    std::vector<double> values;
    forEachSample(image.getGeometry().getSizes(), [&](auto x, auto y, auto, auto, auto) {
        if (!std::isnan(sampleAt(image, x, y)))
            values.push_back(sampleAt(image, x, y));
    });
    return values;
}

class PlaneMeasures : public ::testing::TestWithParam<image::eImageBufferType>
{
};

INSTANTIATE_TEST_SUITE_P(AllTypes, PlaneMeasures, ::testing::ValuesIn(kAllTypes),
                         [](const auto& info) { return "type" + std::to_string(info.param); });

TEST_P(PlaneMeasures, StatsAreThoseOfTheSamplesInAnyOrder)
{
    for (const unsigned long width : {1, 7, 8, 9, 63, 64, 65, 200}) {
        const GuardedImage guarded(GetParam(), {width, 5}, 3);
        fillEighths(*guarded.get(), static_cast<unsigned int>(width));
        const std::vector<double> values = numbersIn(*guarded.get());
        long double sum = 0, squares = 0;
        for (const double v : values)
            sum += v;
        const double nbSamples = static_cast<double>(values.size()), mean = static_cast<double>(sum) / nbSamples;
        for (const double v : values)
            squares += (static_cast<long double>(v) - mean) * (static_cast<long double>(v) - mean);
        const auto stats = statsOf(guarded.get());
        EXPECT_EQ(values.size(), stats->get<StatsResult::NbSamples>());
        EXPECT_EQ(static_cast<double>(sum), stats->get<StatsResult::Sum>());
        EXPECT_EQ(mean, stats->get<StatsResult::Mean>());
        EXPECT_EQ(*std::min_element(values.begin(), values.end()), stats->get<StatsResult::Min>());
        EXPECT_EQ(*std::max_element(values.begin(), values.end()), stats->get<StatsResult::Max>());
        // Each of at most 1000 squares, and of their sums, may be rounded.
        const double stdDev = std::sqrt(static_cast<double>(squares) / nbSamples);
        EXPECT_NEAR(stdDev, stats->get<StatsResult::StdDev>(), stdDev * 1e-13) << "width " << width;
    }
}

TEST_P(PlaneMeasures, HistogramsCountEachSampleInItsBin)
{
    for (const unsigned long width : {1, 65, 200})
        for (const unsigned long height : {1, 400}) {
            const GuardedImage guarded(GetParam(), {width, height}, 3);
            fillEighths(*guarded.get(), static_cast<unsigned int>(width));
            const std::vector<double> values = numbersIn(*guarded.get());
            const bool isFloat = GetParam() == image::eIBT_Real32;
            const auto eighths = [](double v) { return static_cast<long>(v * 8); };
            const double low = *std::min_element(values.begin(), values.end());
            const double high = *std::max_element(values.begin(), values.end());
            const long span = eighths(high) - eighths(low);
            const bool perValue = !isFloat && high - low < 65536;
            Counts expected(perValue ? static_cast<unsigned long>(span / 8 + 1) : span == 0 ? 1 : 65536);
            for (const double v : values) {
                const long place = eighths(v) - eighths(low);
                const long bin = perValue ? place / 8 : span == 0 ? 0 : std::min(place * 65536 / span, 65535l);
                ++expected[static_cast<unsigned long>(bin)];
            }
            const auto histogram = histogramOf(guarded.get());
            EXPECT_EQ(perValue, histogram->get<Histogram::ValuePerBin>());
            EXPECT_EQ(low, histogram->get<Histogram::FirstValue>());
            EXPECT_EQ(high, histogram->get<Histogram::LastValue>());
            EXPECT_EQ(perValue ? 1 : (high - low) / 65536, histogram->get<Histogram::BinWidth>());
            EXPECT_TRUE(expected == histogram->get<Histogram::Counts>()) << "size " << width << " x " << height;
        }
}

TEST_P(PlaneMeasures, OfAConstantHaveNoDeviationAndOneValue)
{
    const std::vector<double> values(77, GetParam() == image::eIBT_Real32 ? static_cast<double>(0.1f) : 1);
    const auto stats = statsOf(lineOf(GetParam(), values));
    EXPECT_EQ(0, stats->get<StatsResult::StdDev>());
    EXPECT_EQ(values[0], stats->get<StatsResult::Mean>());
    EXPECT_EQ(Counts{77}, histogramOf(lineOf(GetParam(), values))->get<Histogram::Counts>());
    const auto cumulative = cumulativeOf(GetParam(), values);
    for (const double percent : {-5, 0, 33, 50, 100, 250})
        EXPECT_EQ(values[0], cumulative->getQuantile(percent)) << percent;
}

TEST(StatsMsr2d, OfTheExtremesOf32BitsDoNotOverflow)
{
    const auto numbers = statsOf(lineOf(image::eIBT_Int32, {-2147483648.0, 2147483647.0}));
    EXPECT_EQ(-1, numbers->get<StatsResult::Sum>());
    EXPECT_EQ(2147483647.5, numbers->get<StatsResult::StdDev>());
    for (const auto type : {image::eIBT_UInt32, image::eIBT_Label32}) {
        const auto stats = statsOf(lineOf(type, {4294967295.0, 0, 4294967295.0, 0}));
        EXPECT_EQ(8589934590.0, stats->get<StatsResult::Sum>());
        EXPECT_EQ(2147483647.5, stats->get<StatsResult::StdDev>());
        EXPECT_EQ(4294967295.0, stats->get<StatsResult::Max>());
    }
}

TEST(StatsMsr2d, SkipNanAndCountInfinities)
{
    const auto none = statsOf(lineOf(image::eIBT_Real32, std::vector<double>(9, kNan)));
    EXPECT_EQ(0u, none->get<StatsResult::NbSamples>());
    EXPECT_EQ(0, none->get<StatsResult::Mean>());
    EXPECT_EQ(0, none->get<StatsResult::Min>());
    EXPECT_EQ(0, none->get<StatsResult::Max>());

    const auto infinite = statsOf(lineOf(image::eIBT_Real32, {3, kNan, kInfinity, -kFloatMax}));
    EXPECT_EQ(3u, infinite->get<StatsResult::NbSamples>());
    EXPECT_EQ(-kFloatMax, infinite->get<StatsResult::Min>());
    EXPECT_EQ(kInfinity, infinite->get<StatsResult::Max>());
    EXPECT_EQ(kInfinity, infinite->get<StatsResult::Sum>());
    EXPECT_TRUE(std::isnan(infinite->get<StatsResult::StdDev>()));
    const auto lowest = statsOf(lineOf(image::eIBT_Real32, {kNan, -kInfinity}));
    EXPECT_EQ(-kInfinity, lowest->get<StatsResult::Min>());
    EXPECT_EQ(-kInfinity, lowest->get<StatsResult::Max>());
}

TEST(HistogramMsr2d, HaveABinPerValueForUpTo65536Values)
{
    for (const double first : {-2147483648.0, -7.0, 2147483647.0 - 65535.0}) {
        const auto histogram = histogramOf(lineOf(image::eIBT_Int32, {first + 65535, first, first + 65535}));
        EXPECT_TRUE(histogram->get<Histogram::ValuePerBin>());
        ASSERT_EQ(65536u, histogram->get<Histogram::Counts>().size());
        EXPECT_EQ(1u, histogram->get<Histogram::Counts>().front());
        EXPECT_EQ(2u, histogram->get<Histogram::Counts>().back());
    }
    const auto wider = histogramOf(lineOf(image::eIBT_UInt32, {0, 65535, 65536}));
    EXPECT_FALSE(wider->get<Histogram::ValuePerBin>());
    ASSERT_EQ(65536u, wider->get<Histogram::Counts>().size());
    EXPECT_EQ(2u, wider->get<Histogram::Counts>().back());
    // 49 times the rounded 1 / 49 is less than 1.
    const auto onTheEdge = histogramOf(lineOf(image::eIBT_UInt32, {0, 49, 49 * 65536}));
    EXPECT_EQ(1u, onTheEdge->get<Histogram::Counts>()[1]);
}

TEST(HistogramMsr2d, PutInfinitiesToTheOutermostFiniteValuesAndSkipNan)
{
    struct Case
    {
        std::vector<double> values;
        double first, last;
        std::vector<std::pair<unsigned long, unsigned long> > bins;  // those that are not empty, with their counts
    };
    const double tiny = std::numeric_limits<float>::denorm_min();
    const Case cases[] = {{{kInfinity, kNan, 3, 1, -kInfinity, kInfinity}, 1, 3, {{0, 2}, {65535, 3}}},
                          {{-kInfinity, 5, kInfinity}, 5, 5, {{0, 3}}},
                          {{kNan, kInfinity}, kFloatMax, kFloatMax, {{0, 1}}},
                          {{-kInfinity, -kInfinity}, -kFloatMax, -kFloatMax, {{0, 2}}},
                          {{kInfinity, -kInfinity}, -kFloatMax, kFloatMax, {{0, 1}, {65535, 1}}},
                          {{0, kFloatMax, -kFloatMax}, -kFloatMax, kFloatMax, {{0, 1}, {32768, 1}, {65535, 1}}},
                          {{tiny, 0, tiny}, 0, tiny, {{0, 1}, {65535, 2}}},
                          {{kNan, kNan}, 0, 0, {}}};
    for (const Case& each : cases) {
        const auto histogram = histogramOf(lineOf(image::eIBT_Real32, each.values));
        std::vector<std::pair<unsigned long, unsigned long> > bins;
        const Counts& counts = histogram->get<Histogram::Counts>();
        for (unsigned long i = 0; i < counts.size(); ++i)
            if (counts[i] != 0)
                bins.emplace_back(i, counts[i]);
        EXPECT_EQ(each.first, histogram->get<Histogram::FirstValue>());
        EXPECT_EQ(each.last, histogram->get<Histogram::LastValue>());
        EXPECT_EQ(each.bins, bins) << "first sample " << each.values[0];
        EXPECT_FALSE(histogram->get<Histogram::ValuePerBin>());
    }
}

TEST(Measures, RefuseMoreThanOnePlane)
{
    const std::string text = "InSubImg2d: one plane is measured, not an image of size 4 x 3 x 1 x 2 x 1";
    const ImagePtr image = image::createImage(image::eIBT_UInt8, {4, 3, 1, 2});
    for (const std::string& refusal :
         {thrownText<ORVIKBaseProcessingException>([&] { statsOf(image); }),
          thrownText<ORVIKBaseProcessingException>([&] { histogramOf(image); })})
        EXPECT_NE(std::string::npos, refusal.find(text)) << refusal;
}

TEST(Quantiles, OfWholeNumbersAreTheLowestValueThatReachesTheShare)
{
    const auto known = cumulativeOf(image::eIBT_Int16, {40, -10, 30, 20});
    const double cases[][2] = {{-5, -10}, {0, -10}, {25, -10}, {25.001, 20}, {50, 20}, {75, 30}, {100, 40}, {250, 40}};
    for (const auto& each : cases)
        EXPECT_EQ(each[1], known->getQuantile(each[0])) << each[0];
    EXPECT_TRUE(std::isnan(known->getQuantile(kNan)));
    EXPECT_EQ(40, known->getQuantile(kInfinity));

    const ImagePtr image = randomImage(image::eIBT_Int8, {13, 17}, 3);
    std::vector<double> sorted = numbersIn(*image);
    std::sort(sorted.begin(), sorted.end());
    const auto cumulative = createCumulativeHistogramData(*histogramOf(image));
    for (unsigned long percent = 1; percent <= 100; ++percent)
        EXPECT_EQ(sorted[(percent * sorted.size() + 99) / 100 - 1],
                  cumulative->getQuantile(static_cast<double>(percent)));
}

TEST(Quantiles, OfEqualBinsLieEvenlyInThem)
{
    const auto of = [](double first, double last, const Counts& counts, double percent) {
        const double width = (last - first) / static_cast<double>(counts.size());
        const auto histogram = Histogram::createNode(false, first, last, width, counts);
        return createCumulativeHistogramData(*histogram)->getQuantile(percent);
    };
    const double cases[][2] = {{-5, 0}, {0, 0}, {12.5, 1}, {25, 2}, {62.5, 3}, {100, 4}, {250, 4}};
    for (const auto& each : cases)
        EXPECT_EQ(each[1], of(0, 4, {1, 3}, each[0])) << each[0];
    EXPECT_EQ(1, of(0, 4, {2, 0, 0, 2}, 50));  // bins without samples have no part in it
    EXPECT_EQ(3.5, of(0, 4, {2, 0, 0, 2}, 75));
    EXPECT_EQ(2, of(0, 4, {0, 4}, 0));
    EXPECT_EQ(1, of(-kFloatMax, 1, {1, 0, 1}, 100));
    for (const double percent : {-5, 0, 50, 250})
        EXPECT_EQ(0, of(0, 0, {}, percent));
    EXPECT_EQ(0, of(3, 4, {0, 0}, 50));

    const auto floats = cumulativeOf(image::eIBT_Real32, {0.5, 3.5, kNan, 1.5, 2.5});
    EXPECT_NEAR(1.5, floats->getQuantile(50), 3.0 / 65536);  // the end of its bin
    EXPECT_EQ(0.5, floats->getQuantile(0));
    EXPECT_EQ(3.5, floats->getQuantile(100));
}

TEST(Quantiles, OfAHistogramThatDisagreesWithItselfAreRefused)
{
    const auto refusal = [](bool perValue, double first, double last) {
        return thrownText<ORVIKImageProcessingException>(
            [&] { createCumulativeHistogramData(*Histogram::createNode(perValue, first, last, 1, {1, 1})); });
    };
    EXPECT_EQ("HistogramResult: values from 3.000000 to 2.000000 are no range of bins", refusal(false, 3, 2));
    EXPECT_EQ("HistogramResult: values from 0.000000 to inf are no range of bins", refusal(false, 0, kInfinity));
    EXPECT_EQ("HistogramResult: values from 3.000000 to 5.000000 need a bin each, there are 2", refusal(true, 3, 5));
}

}  // namespace
}  // namespace orvik::test
