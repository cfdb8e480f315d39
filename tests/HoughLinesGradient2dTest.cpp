// Lines from gradients: the directions of the vector kernels, every vote of every kernel, the lines, what is refused. The calls
// of all forms and shared memory have tests of their own.

#include "InstructionSets.h"
#include "LinesReference.h"

#include "Processor/HoughLinesGradient2d/HoughLinesGradient2dLvl1.h"
#include "Processor/HoughLinesGradient2d/HoughLinesGradient2dLvl2.h"
#include "Processor/HoughLinesGradient2dImg/ArcTangent.h"
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl1.h"
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl2.h"
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl3.h"
#include "ORVIKIPLFeatureDetectionLog.h"
#include "Rule/HoughLines2dImgRuleUtils.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;
typedef HoughLinesGradientImgParams Params;
typedef boost::shared_ptr<const Params> ParamsPtr;

const float kTolerance = 0.1f;

ParamsPtr paramsOf(double rhoStep, double thetaMin, double thetaMax, unsigned int nbThetaBins, float threshold)
{
    return Params::createNode(rhoStep, thetaMin, thetaMax, nbThetaBins, threshold);
}

// --- directions

TEST(ArcTangent, HasAllButTheLastBitsOfTheMathematicalOne)
{
    Numbers values = {0.0, -0.0, kInfinity, -kInfinity, 1e-45, -1e-45, 1e-38, 3e38, 1, -1, 3.4e-4, -3.5e-4, 2.4142137, 0.66};
    std::mt19937 random(1);
    std::normal_distribution<double> number;
    while (values.size() < 400)
        values.push_back(static_cast<float>(number(random) * std::exp2(static_cast<int>(random() % 60) - 30)));
    for (const double vy : values)
        for (const double vx : values) {
            const float y = static_cast<float>(vy), x = static_cast<float>(vx), expected = std::atan2(y, x);
            const float found = angleOf(Lanes<float>::type{1, y}, Lanes<float>::type{1, x})[1];
            ASSERT_EQ(std::signbit(expected), std::signbit(found)) << y << ", " << x;
            // Four roundings of numbers as large as the result, or of parts of it.
            const float last = std::nextafter(std::fabs(expected), 4.0f) - std::fabs(expected);
            ASSERT_NEAR(expected, found, 4 * last) << y << ", " << x;
        }
}

// --- votes

/// Calls f(row) for each row that a gradient of a direction votes for.
template<class F>
void forVotedRows(const Params& params, float tolerance, float direction, const F& f)
{
    const double thetaMin = params.get<Params::ThetaMin>(), thetaMax = params.get<Params::ThetaMax>();
    const double nbRows = params.get<Params::NbThetaBins>(), step = (thetaMax - thetaMin) / nbRows;
    const float pi = 3.1415927f, first = static_cast<float>(thetaMin), last = static_cast<float>(thetaMax);
    const auto range = [&](float from, float to) {
        const double begin = std::trunc((from - thetaMin) / step + 0.5), end = std::trunc((to - thetaMin) / step + 0.5);
        for (double t = begin; t >= 0 && t <= std::min(end, nbRows - 1); ++t)
            f(static_cast<unsigned long>(t));
    };
    float low = 0, high = pi;
    if (tolerance < pi) {
        low = direction - tolerance;
        low += low < -pi ? 6.2831855f : 0.0f;
        high = direction + tolerance;
        high -= high >= pi ? 6.2831855f : 0.0f;
        if (high < low) {
            if (high >= thetaMin)
                range(first, high);
            if (thetaMax >= low)
                range(low, last);
            return;
        }
    }
    if (last > low && high > first)
        range(std::max(first, low), std::min(last, high));
}

/// The accumulator of a gradient's plane, pixel by pixel, and the weights of those whose rows depend on the last bits of
/// their directions.
struct DefinedVotes
{
    ImagePtr accumulator;
    double total = 0, uncertain = 0;

    DefinedVotes(const BaseImage& gx, const BaseImage& gy, const Params& params, float tolerance,
                 unsigned long nbMoreRows = 0)
    {
        const double rhoStep = params.get<Params::RhoStep>(), thetaMin = params.get<Params::ThetaMin>();
        const unsigned long nbRows = params.get<Params::NbThetaBins>();
        const double step = (params.get<Params::ThetaMax>() - thetaMin) / static_cast<double>(nbRows);
        const double centre = halfRho(gx, rhoStep);
        accumulator = createImage(eIBT_Real32, {columnsOf(gx, rhoStep), nbRows + nbMoreRows});
        forEachSample({gx.getSizeX(), gx.getSizeY()}, [&](auto x, auto y, auto...) {
            const float vx = static_cast<float>(sampleAt(gx, x, y)), vy = static_cast<float>(sampleAt(gy, x, y));
            const float w = std::sqrt(vx * vx + vy * vy), direction = std::atan2(vy, vx);
            if (!(w > params.get<Params::PixelThreshold>()))
                return;
            const float xc = static_cast<float>(static_cast<long>(x) - static_cast<long>(gx.getSizeX() / 2));
            const float yc = static_cast<float>(static_cast<long>(y) - static_cast<long>(gx.getSizeY() / 2));
            std::vector<unsigned long> rows[3];
            for (int i = 0; i < 3; ++i)
                forVotedRows(params, tolerance, direction + 1e-6f * static_cast<float>(i - 1),
                             [&](unsigned long t) { rows[i].push_back(t); });
            if (rows[0] != rows[1] || rows[1] != rows[2])
                uncertain += static_cast<double>(w) * static_cast<double>(rows[0].size() + rows[1].size() + rows[2].size());
            for (const unsigned long t : rows[1]) {
                const float cosine = static_cast<float>(std::cos(static_cast<double>(t) * step + thetaMin) / rhoStep);
                const float sine = static_cast<float>(std::sin(static_cast<double>(t) * step + thetaMin) / rhoStep);
                const float p = xc * cosine + sine * yc, floor = std::floor(p), frac = p - floor;
                const double column = floor + centre, last = static_cast<double>(accumulator->getSizeX()) - 1;
                float* const row = static_cast<float*>(accumulator->accessLine(t));
                total += static_cast<double>(w);
                if (column >= 0 && column <= last)
                    row[static_cast<long>(column)] += (1.0f - frac) * w;
                if (const double next = column + (frac != 0.0f ? 1 : 0); next >= 0 && next <= last)
                    row[static_cast<long>(next)] += frac * w;
            }
        });
    }
    /// The sum of all differences is what uncertain voters can move, and roundings.
    void expectNear(const BaseImage& found, double rounding) const
    {
        double apart = 0;
        forEachSample(accumulator->getGeometry().getSizes(), [&](auto... at) {
            const double a = sampleAt(*accumulator, at...), b = sampleAt(found, at...);
            apart += a == b || (a != a && b != b) ? 0 : std::fabs(a - b);
        });
        EXPECT_LE(apart, uncertain + rounding * total) << "of " << total;
    }
};

class GradientLinesKernel : public KernelTest<HoughLinesGradient2dImgLvl3>
{
protected:
    /// Into an accumulator on a buffer with gaps and with more rows than angles.
    void expectReference(const ImagePtr& gx, const ImagePtr& gy, const ParamsPtr& params, float tolerance) const
    {
        const WithThreads one(1);
        const DefinedVotes expected(*gx, *gy, *params, tolerance, 2);
        const GuardedImage found(*randomImage(eIBT_Real32, expected.accumulator->getGeometry().getSizes(), 5), 3);
        processor::executeSyncRun(
            processorWith<HoughLinesGradient2dImgLvl2, InSubGxImg2d, InSubGyImg2d, InOptHoughLinesGradientImgParams,
                          InOptHoughLinesOrientationTolerance, OutRealImg>(gx, gy, params, tolerance, found.get()));
        if (set() == core::eIS_Generic)
            EXPECT_TRUE(sameSamples(*expected.accumulator, *found.get())) << numbersOf(*params)[0] << ", " << tolerance;
        else
            expected.expectNear(*found.get(), 1e-6);
    }
};
INSTANTIATE_TEST_SUITE_P(AllKernels, GradientLinesKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(GradientLinesKernel, VotesAsDefinedForAnyWidth)
{
    const ParamsPtr many[] = {createHoughLinesGradientImgParams(), paramsOf(0.5, -0.3, 0.4, 23, 50.0f),
                              paramsOf(2.75, -kPi, kPi, 40, -50.0f), paramsOf(1.0, 2.0, 4.0, 31, 1.0f)};
    const float tolerances[] = {kTolerance, 0.7f, 0.0f, 3.5f, -0.4f, 1.6f};
    unsigned int turn = 0;
    for (const unsigned long width : kWidths) {
        const ImageSizes sizes(width, 1 + turn % 5);
        const GuardedImage gx(*randomImage(type(), sizes, 71 + turn), 0);
        expectReference(gx.get(), drawnImage(type(), sizes, {0, 1, 3, 50, 100}, turn), many[turn % 4], tolerances[turn % 6]);
        ++turn;
    }
    for (const float tolerance : tolerances)
        for (const ParamsPtr& params : many)
            expectReference(randomImage(type(), {67, 40}, 72), randomImage(type(), {67, 40}, 73), params, tolerance);
}

TEST_P(GradientLinesKernel, VotesAsDefinedAtTheTypesLimits)
{
    const ImagePtr gx = drawnImage(type(), {70, 7}, oddValues(type()), 73),
                   gy = drawnImage(type(), {70, 7}, oddValues(type()), 74);
    for (const double threshold : {0.0, 0.999, 1e30, -1e30, kNan, kInfinity, -kInfinity})
        expectReference(gx, gy, paramsOf(1.0, -kPi, kPi, 36, static_cast<float>(threshold)), kTolerance);
    for (const auto& [min, max] : {std::make_pair(1.0, -1.0), {kPi, -kPi}, {kNan, 1.0}, {0.0, kInfinity}, {2.0, 2.0}})
        expectReference(gx, gy, paramsOf(1.0, min, max, 10, 0.0f), kTolerance);
}

TEST(GradientLines, AreSumsThatDependOnStripsAndThreadsByRoundingAlone)
{
    const ImagePtr gx = randomImage(eIBT_Real32, {300, 200}, 75), gy = randomImage(eIBT_Real32, {300, 200}, 76);
    const DefinedVotes expected(*gx, *gy, *createHoughLinesGradientImgParams(), kTolerance);
    const WithThreads threads(3);
    const WithGrain lines(3);
    expected.expectNear(*houghLinesGradient2dImg(gx, gy), 1e-5);
}

// --- lines

/// A bright bar of some width along the line of angle `theta` through the centre, blurred.
std::pair<ImagePtr, ImagePtr> gradientOfBar(double theta, double width)
{
    const ImagePtr image = createImage(eIBT_Real32, {120, 100});
    forEachSample({120, 100}, [&](auto x, auto y, auto...) {
        const double rho = (static_cast<double>(x) - 60) * std::cos(theta) + (static_cast<double>(y) - 50) * std::sin(theta);
        setSample(*image, std::clamp(width / 2 + 0.5 - std::fabs(rho), 0.0, 1.0), x, y);
    });
    return imaproc::filter::gaussianGradient2dImg(image, 1.0f);
}

TEST(GradientLines, OfABarAreItsTwoSides)
{
    for (const double theta : {-2.8, -1.0, 0.3, 1.2, 2.0, 2.9}) {
        const auto [gx, gy] = gradientOfBar(theta, 16);
        const auto lines = houghLinesGradient2d(gx, gy).first;
        ASSERT_EQ(2u, lines->size()) << theta;
        double thetas[2], rhos[2];
        for (std::size_t i = 0; i < 2; ++i) {
            thetas[i] = (*lines)[i].get<HoughLine2dPpties::Theta>();
            rhos[i] = (*lines)[i].get<HoughLine2dPpties::Rho>() - 60 * std::cos(thetas[i]) - 50 * std::sin(thetas[i]);
            // Values rise towards the middle of the bar, which lies at rho 0.
            EXPECT_NEAR(-8, rhos[i], 1.5) << theta;
            EXPECT_NEAR(0, std::sin(thetas[i] - theta), 0.03) << theta;
        }
        EXPECT_NEAR(-1, std::cos(thetas[0] - thetas[1]), 0.002) << theta;
    }
}

TEST(GradientLines, AreTheHighestBinsOfTheContinuedAccumulator)
{
    const WithThreads one(1);
    const ImagePtr gx = drawnImage(eIBT_Int16, {90, 77}, {-30, -2, 0, 0, 0, 0, 5, 40}, 81),
                   gy = drawnImage(eIBT_Int16, {90, 77}, {-30, -2, 0, 0, 0, 0, 5, 40}, 82);
    for (const auto& [params, isCyclic] : {std::make_pair(paramsOf(1.0, -kPi, kPi, 180, 10.0f), true),
                                           {paramsOf(0.6, -4.0, 3.3, 100, 0.0f), true},
                                           {paramsOf(1.0, 0.0, kPi, 90, 0.0f), false},
                                           {paramsOf(1.3, -kPi, 3.1, 60, 0.0f), false}})
        for (const auto& [kind, threshold, dist] :
             {std::make_tuple(0, 9.0, 3u), {1, 0.4, 0u}, {1, 0.5, 70u}, {3, 12.0, 4u}}) {
            const auto extraction = HoughLinesExtractionParams::createNode(kind, threshold, dist);
            const auto [lines, accumulator] = houghLinesGradient2d(gx, gy, params, extraction, 0.2f);
            const ImagePtr votes = houghLinesGradient2dImg(gx, gy, params, 0.2f);
            const unsigned long nbAngles = votes->getSizeY(), sizeX = votes->getSizeX();
            ASSERT_EQ(nbAngles + (isCyclic ? 2 * dist : 0), accumulator->getSizeY());
            forEachSample(accumulator->getGeometry().getSizes(), [&, &out = *accumulator](auto x, auto y, auto...) {
                const unsigned long column = y / nbAngles % 2 == 0 ? x : sizeX - 1 - x;
                ASSERT_EQ(sampleAt(*votes, column, y % nbAngles), sampleAt(out, x, y)) << x << ", " << y;
            });
            EXPECT_TRUE(same(expectedLines(*gx, accumulator, *params, *extraction, isCyclic, 2 * kPi), numbersOf(lines)));
        }
}

TEST(GradientLines, RefuseWhatDoesNotFitInWords)
{
    const ImagePtr gx = blank(5, 4, 1, 1, eIBT_Int16), gy = blank(5, 4, 1, 1, eIBT_Int16);
    const auto with = [&](const ParamsPtr& params, float tolerance) {
        return [=] { houghLinesGradient2dImg(gx, gy, params, tolerance); };
    };
    const auto into = [&](const ImagePtr& accumulator) {
        return [=] { ran<HoughLinesGradient2dImgLvl1, InGxGreyImg2d, InGyGreyImg2d, OutRealImg>(gx, gy, accumulator); };
    };
    const auto intoLines = [&](const ImagePtr& accumulator) {
        return [=] { ran<HoughLinesGradient2dLvl1, InGxGreyImg2d, InGyGreyImg2d, OutOptRealImg>(gx, gy, accumulator); };
    };
    const auto intoRows = [&](unsigned long nbRows) {
        return [=] {
            ran<HoughLinesGradient2dImgLvl2, InSubGxImg2d, InSubGyImg2d, OutRealImg>(gx, gy,
                                                                                     createImage(eIBT_Real32, {8, nbRows}));
        };
    };
    const auto real = [](unsigned long x, unsigned long y, unsigned long z = 1) {
        return createImage(eIBT_Real32, {x, y, z});
    };
    expectRefusals(
        {gx, gy},
        {{"InGyGreyImg2d has no value", [&] { houghLinesGradient2dImg(gx, nullptr); }},
         {"InGyGreyImg2d (6 x 4 x 1 x 1 x 1)", [&] { houghLinesGradient2dImg(gx, blank(6, 4, 1, 1, eIBT_Int16)); }},
         {"unsigned 8 bits", [&] { houghLinesGradient2d(gx, blank(5, 4)); }},
         {"failed: InOptHoughLinesOrientationTolerance is a number: nan", with(nullptr, std::nanf(""))},
         {"8 along rho, 0 along theta", with(paramsOf(1, 0, 1, 0, 0), kTolerance)},
         {"X 9 against 8", into(real(9, 360))},
         {"Y 364 against 360", into(real(8, 364))},
         {"Y 360 against 380", intoLines(real(8, 360))},
         {"failed: buffer type, of OutRealImg", into(createImage(eIBT_UInt32, {8, 360}))},
         {"failed: number of planes", into(real(8, 360, 2))},
         {"entries of OutPIHoughLines2dPpties are the planes",
          [&] { houghLinesGradient2d(blank(5, 4, 2), blank(5, 4, 2)); }},
         {"Output image Y size (359) is greater than or equals to NbThetaBins field of InOptHoughLinesGradientImgParams data item "
          "(360)",
          intoRows(359)}});
    EXPECT_NO_THROW(into(real(8, 360))());
    EXPECT_NO_THROW(intoLines(real(8, 380))());
    EXPECT_EQ("Initialize rule before trying to use its data",
              thrownText<ORVIKIPLFeatureDetectionException>([] { HoughLinesGradient2dImageSizeY().getSizeY(); }));
}

}  // namespace
}  // namespace orvik::test
