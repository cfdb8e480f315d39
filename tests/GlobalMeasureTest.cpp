// Measures of whole planes: samples of all types on buffers with gaps, values that are no numbers, limits.

#include "FamilyShapes.h"

#include "siblings/GlobalMeasure/CumulativeHistogramData.h"
#include "siblings/GlobalMeasure/Processor/HistogramMsr/HistogramMsr2dLvl2.h"
#include "siblings/GlobalMeasure/Processor/StatsMsr/StatsMsr2dLvl2.h"
#include "siblings/GlobalMeasure/Processor/StatsMsr/StatsMsrLvl1.h"

#include <numeric>

namespace orvik::test { namespace {

using namespace imaproc::glbmsr;
typedef HistogramResult Histogram;
typedef std::vector<std::pair<double, double>> Pairs;

const double kFloatMax = std::numeric_limits<float>::max();

/// Number, mean, deviation, least, largest, sum: what the measure leaves of a record that held something else.
Numbers statsOf(const ImagePtr& image)
{
    const auto stats = StatsResult::createNode(1, 2, 3, 4, 5, 6);
    ran<StatsMsr2dLvl2, InSubImg2d, OutStatsResult>(image, stats);
    return numbersOf(stats);
}

boost::shared_ptr<Histogram> histogramOf(const ImagePtr& image)
{
    const auto histogram = Histogram::createNode(true, 1, 2, 3, std::vector<unsigned long>(7, 7));
    ran<HistogramMsr2dLvl2, InSubImg2d, OutHistogramResult>(image, histogram);
    return histogram;
}

ImagePtr lineOf(eImageBufferType type, const Numbers& values)
{
    const ImagePtr image = createImage(type, {values.size()});
    forEachSample(image->getGeometry().getSizes(), [&](auto x, auto...) { setSample(*image, values[x], x, 0); });
    return image;
}

/// Random samples, of floats of such values that their sums need no rounding, and NaN.
ImagePtr samplesOf(eImageBufferType type, const ImageSizes& sizes)
{
    const Numbers eighths = {-1000, -999.875, -3.5, 0.125, 1, 77.25, 700.375, 1e4, kNan};
    return type == eIBT_Real32 ? drawnImage(type, sizes, eighths, 7) : randomImage(type, sizes, 7);
}

/// In rising order, without those that are no numbers.
Numbers sortedIn(const BaseImage& image)
{
    Numbers values;
    forEachSample(image.getGeometry().getSizes(), [&](auto... at) {
        if (!std::isnan(sampleAt(image, at...)))
            values.push_back(sampleAt(image, at...));
    });
    std::sort(values.begin(), values.end());
    return values;
}

typedef ::testing::TestWithParam<eImageBufferType> PlaneMeasures;
INSTANTIATE_TEST_SUITE_P(AllTypes, PlaneMeasures, ::testing::ValuesIn(kAllTypes));

TEST_P(PlaneMeasures, StatsAreThoseOfTheSamplesInAnyOrder)
{
    for (const unsigned long width : {1, 7, 8, 9, 63, 64, 65, 200}) {
        const GuardedImage guarded(*samplesOf(GetParam(), {width, 5}), 3);
        const Numbers values = sortedIn(*guarded.get()), found = statsOf(guarded.get());
        long double sum = 0, squares = 0;
        for (const double v : values)
            sum += v;
        const double nbSamples = static_cast<double>(values.size()), mean = static_cast<double>(sum) / nbSamples;
        for (const double v : values)
            squares += (static_cast<long double>(v) - mean) * (static_cast<long double>(v) - mean);
        // Each of at most 1000 squares, and of their sums, may be rounded.
        const double stdDev = std::sqrt(static_cast<double>(squares) / nbSamples);
        EXPECT_NEAR(stdDev, found[2], stdDev * 1e-13) << "width " << width;
        EXPECT_EQ((Numbers{nbSamples, mean, found[2], values.front(), values.back(), static_cast<double>(sum)}), found);
    }
}

TEST_P(PlaneMeasures, HistogramsCountEachSampleInItsBin)
{
    for (const ImageSizes& sizes : {ImageSizes(1, 1), {65, 1}, {200, 400}}) {
        const GuardedImage guarded(*samplesOf(GetParam(), sizes), 3);
        const Numbers values = sortedIn(*guarded.get());
        const double low = values.front(), high = values.back(), span = high - low;
        const bool perValue = GetParam() != eIBT_Real32 && span < 65536;
        const double nbBins = perValue ? span + 1 : span == 0 ? 1 : 65536;
        Numbers expected = {perValue ? 1.0 : 0.0, low, high, perValue ? 1 : span / 65536, nbBins};
        expected.resize(5 + static_cast<std::size_t>(nbBins));
        for (const double v : values) {
            const long place = static_cast<long>((v - low) * 8), all = static_cast<long>(span * 8);
            const long bin = perValue ? place / 8 : all == 0 ? 0 : std::min(place * 65536 / all, 65535l);
            ++expected[static_cast<std::size_t>(5 + bin)];
        }
        EXPECT_TRUE(same(expected, numbersOf(histogramOf(guarded.get())))) << toString(sizes);
    }
}

TEST(PlaneStats, SkipNanCountInfinitiesAndDoNotOverflow)
{
    const double tenth = static_cast<double>(0.1f), max = kFloatMax, inf = kInfinity;
    const auto expectStats = [](eImageBufferType type, const Numbers& values, const Numbers& expected) {
        Numbers found = statsOf(lineOf(type, values));
        for (double& number : found)
            number = std::isnan(number) ? kNan : number;  // of any bits
        EXPECT_TRUE(same(expected, found)) << values[0];
    };
    expectStats(eIBT_Int32, {-2147483648.0, 2147483647.0}, {2, -0.5, 2147483647.5, -2147483648.0, 2147483647.0, -1});
    expectStats(eIBT_UInt32, {4294967295.0, 0}, {2, 2147483647.5, 2147483647.5, 0, 4294967295.0, 4294967295.0});
    expectStats(eIBT_Label32, Numbers(2, 4294967295.0), {2, 4294967295.0, 0, 4294967295.0, 4294967295.0, 8589934590.0});
    expectStats(eIBT_Real32, Numbers(64, tenth), {64, tenth, 0, tenth, tenth, 64 * tenth});
    expectStats(eIBT_Real32, Numbers(9, kNan), {0, 0, 0, 0, 0, 0});
    expectStats(eIBT_Real32, {3, kNan, inf, -max}, {3, inf, kNan, -max, inf, inf});
    expectStats(eIBT_Real32, {kNan, -inf}, {1, -inf, kNan, -inf, -inf, -inf});
}

TEST(PlaneHistograms, HaveABinPerValueUpTo65536AndPutInfinitiesToTheOutermostFiniteValues)
{
    // `expected`: whether there is a bin per value, first and last value; `bins` that are not empty, with their counts.
    const auto expectBins = [](eImageBufferType type, const Numbers& values, const Numbers& expected, const Pairs& bins) {
        const Numbers found = numbersOf(histogramOf(lineOf(type, values)));
        EXPECT_EQ(expected, Numbers(found.begin(), found.begin() + 3)) << values[0];
        Pairs full;
        for (std::size_t i = 5; i < found.size(); ++i)
            if (found[i] != 0)
                full.emplace_back(static_cast<double>(i - 5), found[i]);
        EXPECT_EQ(bins, full) << values[0];
    };
    const double tiny = std::numeric_limits<float>::denorm_min(), nan = kNan, inf = kInfinity, max = kFloatMax;
    expectBins(eIBT_Int32, {-2147418113.0, -2147483648.0}, {1, -2147483648.0, -2147418113.0}, {{0, 1}, {65535, 1}});
    expectBins(eIBT_Int32, {2147483647.0, 2147418112.0}, {1, 2147418112.0, 2147483647.0}, {{0, 1}, {65535, 1}});
    expectBins(eIBT_UInt32, {0, 65535, 65536}, {0, 0, 65536}, {{0, 1}, {65535, 2}});
    // 49 times the rounded 1 / 49 is less than 1.
    expectBins(eIBT_UInt32, {0, 49, 49 * 65536}, {0, 0, 49 * 65536}, {{0, 1}, {1, 1}, {65535, 1}});
    expectBins(eIBT_Real32, {inf, nan, 3, 1, -inf, inf}, {0, 1, 3}, {{0, 2}, {65535, 3}});
    expectBins(eIBT_Real32, {-inf, 5, inf}, {0, 5, 5}, {{0, 3}});
    expectBins(eIBT_Real32, {nan, inf}, {0, max, max}, {{0, 1}});
    expectBins(eIBT_Real32, {-inf, -inf}, {0, -max, -max}, {{0, 2}});
    expectBins(eIBT_Real32, {inf, -inf}, {0, -max, max}, {{0, 1}, {65535, 1}});
    expectBins(eIBT_Real32, {0, max, -max}, {0, -max, max}, {{0, 1}, {32768, 1}, {65535, 1}});
    expectBins(eIBT_Real32, {tiny, 0, tiny}, {0, 0, tiny}, {{0, 1}, {65535, 2}});
    expectBins(eIBT_Real32, {nan, nan}, {0, 0, 0}, {});
}

TEST(PlaneMeasuresOfStacks, AreRefused)
{
    const ImagePtr image = blank(4, 3, 1, 2);
    const std::string text = "InSubImg2d: one plane is measured, not an image of size 4 x 3 x 1 x 2 x 1";
    expectRefusals({}, {{text, [&] { statsOf(image); }}, {text, [&] { histogramOf(image); }}});
}

void expectQuantiles(const Histogram& histogram, const Pairs& percentsAndValues)
{
    const auto cumulative = createCumulativeHistogramData(histogram);
    for (const auto& [percent, value] : percentsAndValues)
        EXPECT_EQ(value, cumulative->getQuantile(percent)) << percent << " %";
    EXPECT_TRUE(std::isnan(cumulative->getQuantile(kNan)));
}

TEST(Quantiles, OfWholeNumbersAreTheLowestValueThatReachesTheShare)
{
    expectQuantiles(
        *histogramOf(lineOf(eIBT_Int16, {40, -10, 30, 20})),
        {{-5, -10}, {0, -10}, {25, -10}, {25.001, 20}, {50, 20}, {75, 30}, {100, 40}, {250, 40}, {kInfinity, 40}});
    Numbers hundred(100);
    std::iota(hundred.begin(), hundred.end(), 0.0);
    for (int percent = 1; percent <= 100; ++percent)
        expectQuantiles(*histogramOf(lineOf(eIBT_UInt8, hundred)), {{percent, percent - 1}});
}

TEST(Quantiles, OfEqualBinsLieEvenlyInThem)
{
    const auto of = [](double first, double last, const std::vector<unsigned long>& counts) {
        return *Histogram::createNode(false, first, last, (last - first) / static_cast<double>(counts.size()), counts);
    };
    expectQuantiles(of(0, 4, {1, 3}), {{-5, 0}, {0, 0}, {12.5, 1}, {25, 2}, {62.5, 3}, {100, 4}, {250, 4}});
    expectQuantiles(of(0, 4, {2, 0, 0, 2}), {{50, 1}, {75, 3.5}});  // bins without samples have no part in it
    expectQuantiles(of(0, 4, {0, 4}), {{0, 2}});
    expectQuantiles(of(-kFloatMax, 1, {1, 0, 1}), {{100, 1}});
    expectQuantiles(Histogram(), {{-5, 0}, {50, 0}, {250, 0}});
    expectQuantiles(of(3, 4, {0, 0}), {{50, 0}});
    // Of four floats, half of which are the end of a bin; of one value in one bin, whatever the share.
    const auto floats = histogramOf(lineOf(eIBT_Real32, {0.5, 3.5, kNan, 1.5, 2.5}));
    expectQuantiles(*floats, {{0, 0.5}, {100, 3.5}});
    EXPECT_NEAR(1.5, createCumulativeHistogramData(*floats)->getQuantile(50), 3.0 / 65536);
    expectQuantiles(*histogramOf(lineOf(eIBT_Real32, {0.3, 0.3})), {{-5, 0.3f}, {33, 0.3f}, {250, 0.3f}});
}

TEST(Quantiles, OfAHistogramThatDisagreesWithItselfAreRefused)
{
    const auto refusal = [](bool perValue, double first, double last) {
        return thrownText<imaproc::ORVIKImageProcessingException>([&] {
            createCumulativeHistogramData(*Histogram::createNode(perValue, first, last, 1, {1, 1}));
        });
    };
    EXPECT_EQ("HistogramResult: values from 3.000000 to 2.000000 are no range of bins", refusal(false, 3, 2));
    EXPECT_EQ("HistogramResult: values from 0.000000 to inf are no range of bins", refusal(false, 0, kInfinity));
    EXPECT_EQ("HistogramResult: values from 3.000000 to 5.000000 need a bin each, there are 2", refusal(true, 3, 5));
}

TEST(Stats, OfAllPlanesAreThoseOfTheSamplesInOneLine)
{
    const ImagePtr volume = samplesOf(eIBT_Real32, {9, 5, 4, 2, 3});
    Numbers samples;
    forEachSample(volume->getGeometry().getSizes(), [&](auto... at) { samples.push_back(sampleAt(*volume, at...)); });
    const auto stats = StatsResult::createNode(1, 2, 3, 4, 5, 6);
    ran<StatsMsrLvl1, InImg, OutStatsResult>(volume, stats);
    const Numbers expected = statsOf(lineOf(eIBT_Real32, samples)), found = numbersOf(stats);
    for (const std::size_t exact : {0u, 1u, 3u, 4u, 5u})
        EXPECT_EQ(expected[exact], found[exact]) << exact;
    EXPECT_NEAR(expected[2], found[2], 1e-9 * expected[2]) << "squares are summed line by line";
}

}  // namespace
}  // namespace orvik::test
