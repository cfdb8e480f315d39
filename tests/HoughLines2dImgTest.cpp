// Accumulators of lines: every vote of every kernel, sizes and types, the calls.

#include "FamilyShapes.h"
#include "GaussianFormula.h"
#include "InstructionSets.h"
#include "LinesReference.h"

#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl2.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl3.h"
#include "ORVIKIPLFeatureDetectionLog.h"
#include "Rule/HoughLines2dImgRuleUtils.h"

#include "frame/attr/StripAttributes.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;
typedef HoughLinesImgParams Params;
typedef boost::shared_ptr<const Params> ParamsPtr;

ParamsPtr paramsOf(double rhoStep, double thetaMin, double thetaMax, unsigned int nbThetaBins, float threshold)
{
    return Params::createNode(rhoStep, thetaMin, thetaMax, nbThetaBins, threshold);
}

/// Adds the votes of a plane to an accumulator, pixel by pixel. Floats beyond the limits of whole numbers count as the
/// limits; shares of whole numbers are rounded one by one, and their sums wrap.
template<class Accum>
void voteAsDefined(const BaseImage& plane, const Params& params, BaseImage& accumulator)
{
    const double rhoStep = params.get<Params::RhoStep>(), thetaMin = params.get<Params::ThetaMin>();
    const double thetaStep = (params.get<Params::ThetaMax>() - thetaMin) / params.get<Params::NbThetaBins>();
    const double centre = halfRho(plane, rhoStep), last = static_cast<double>(accumulator.getSizeX()) - 1;
    const bool isFloat = plane.getBufferType() == eIBT_Real32;
    const Plane pixels = planeOf(plane);
    for (unsigned int t = 0; t < params.get<Params::NbThetaBins>(); ++t) {
        const float cosine = static_cast<float>(std::cos(t * thetaStep + thetaMin) / rhoStep);
        const float sine = static_cast<float>(std::sin(t * thetaStep + thetaMin) / rhoStep);
        Accum* const row = static_cast<Accum*>(accumulator.accessLine(t));
        forEachSample({plane.getSizeX(), plane.getSizeY()}, [&](auto x, auto y, auto...) {
            const double pixel = pixels.samples[y * plane.getSizeX() + x];
            if (!(pixel > static_cast<double>(params.get<Params::PixelThreshold>())))
                return;
            float w = static_cast<float>(pixel);
            if constexpr (std::is_integral<Accum>::value) {
                const double low = std::numeric_limits<Accum>::min(), high = std::numeric_limits<Accum>::max();
                const double counted = isFloat ? std::clamp(pixel, low, high) : pixel;
                w = static_cast<float>(static_cast<Accum>(static_cast<long>(counted)));
            }
            const float xc = static_cast<float>(static_cast<long>(x) - static_cast<long>(plane.getSizeX() / 2));
            const float yc = static_cast<float>(static_cast<long>(y) - static_cast<long>(plane.getSizeY() / 2));
            const float p = xc * cosine + sine * yc, floor = std::floor(p), frac = p - floor;
            for (const auto& [column, share] : {std::make_pair(floor + centre, (1.0f - frac) * w),
                                                std::make_pair(floor + centre + (frac != 0.0f ? 1.0 : 0.0), frac * w)}) {
                if (!(column >= 0.0 && column <= last))
                    continue;
                Accum& bin = row[static_cast<long>(column)];
                if constexpr (std::is_integral<Accum>::value)
                    bin = static_cast<Accum>(static_cast<long>(bin) + std::llround(share));
                else
                    bin += share;
            }
        });
    }
}

ImagePtr expectedAccumulator(const BaseImage& plane, const Params& params, eImageBufferType type,
                             unsigned long nbMoreRows = 0)
{
    const unsigned long nbRows = params.get<Params::NbThetaBins>() + nbMoreRows;
    const ImagePtr accumulator = createImage(type, {columnsOf(plane, params.get<Params::RhoStep>()), nbRows});
    type == eIBT_Real32  ? voteAsDefined<float>(plane, params, *accumulator)
    : type == eIBT_Int32 ? voteAsDefined<int>(plane, params, *accumulator)
                         : voteAsDefined<unsigned int>(plane, params, *accumulator);
    return accumulator;
}

/// A few voters of all values, and runs of neighbours.
ImagePtr sparse(eImageBufferType type, const ImageSizes& sizes, unsigned int seed)
{
    const ImagePtr image = randomImage(type, sizes, seed);
    std::mt19937 random(seed);
    bool on = false;
    forEachSample(sizes, [&](auto... at) {
        on = on != (random() % 4 == 0);
        if (!on || random() % 2)
            setSample(*image, on, at...);
    });
    return image;
}

class HoughLinesKernel : public KernelTest<HoughLines2dImgLvl3>
{
protected:
    /// Into accumulators of all three types, on buffers with gaps, with more rows than angles.
    void expectReference(const ImagePtr& plane, const ParamsPtr& params) const
    {
        const WithThreads one(1);
        for (const eImageBufferType accumulatorType : {eIBT_Int32, eIBT_UInt32, eIBT_Real32}) {
            const ImagePtr expected = expectedAccumulator(*plane, *params, accumulatorType, 2);
            const GuardedImage found(*randomImage(accumulatorType, expected->getGeometry().getSizes(), 5), 3);
            const auto votes = boost::make_shared<HoughLines2dImgLvl2>();
            votes->init(processor::ePRP_NoRules);  // which would have it the other size and type
            votes->set<InSubImg2d>(plane);
            votes->set<InOptHoughLinesImgParams>(params);
            votes->set<OutImg>(found.get());
            processor::executeSyncRun(votes);
            EXPECT_TRUE(sameSamples(*expected, *found.get())) << "rho step " << numbersOf(*params)[0];
        }
    }
};
INSTANTIATE_TEST_SUITE_P(AllKernels, HoughLinesKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(HoughLinesKernel, VotesAsDefinedForAnyWidth)
{
    const ParamsPtr many[] = {createHoughLinesImgParams(), paramsOf(0.5, -0.3, 0.4, 23, 0.5f),
                              paramsOf(2.75, -kPi, kPi, 40, -50.0f), paramsOf(1.0, kPi, 0.0, 31, 1.0f)};
    unsigned int turn = 0;
    for (const unsigned long width : kWidths) {
        const ImagePtr plane = sparse(type(), {width, 1 + turn % 7}, 71 + turn);
        expectReference(plane, many[turn++ % 4]);
    }
    for (const ImageSizes& sizes : {ImageSizes(67, 40), ImageSizes(1100, 2)}) {
        const GuardedImage tight(*randomImage(type(), sizes, 72), 0);
        for (const ParamsPtr& params : many)
            expectReference(tight.get(), params);
    }
}

TEST_P(HoughLinesKernel, VotesAsDefinedAtTheTypesLimits)
{
    Numbers thresholds = {0.999, 1e30, -1e30, kNan, kInfinity, -kInfinity, -0.0};
    append(thresholds, oddValues(type()));
    const ImagePtr plane = drawnImage(type(), {70, 7}, oddValues(type()), 73);
    for (const double threshold : thresholds)
        expectReference(plane, paramsOf(1.0, 0.0, kPi, 36, static_cast<float>(threshold)));
}

TEST(HoughLinesImg, HasTheUsualBinsWhereNothingIsSaid)
{
    const ImagePtr plane = sparse(eIBT_UInt16, {120, 70}, 74);
    const ImagePtr expected = expectedAccumulator(*plane, *createHoughLinesImgParams(), eIBT_UInt32);
    EXPECT_TRUE(sameSamples(*expected, *houghLines2dImg(plane)) && sameSamples(*expected, *houghLines2dImg(plane, nullptr)));
}

TEST(HoughLinesImg, SumsOfFloatsDependOnStripsAndThreadsByRoundingAlone)
{
    const ImagePtr plane = randomImage(eIBT_Real32, {200, 100}, 75);
    const ParamsPtr params = paramsOf(1.0, 0.0, kPi, 60, 0.0f);
    const ImagePtr expected = expectedAccumulator(*plane, *params, eIBT_Real32);
    const WithThreads threads(3);
    const WithGrain lines(3);
    const ImagePtr found = houghLines2dImg(plane, params);
    // A bin sums at most four pixels of each line or column, none above 1000; any order of n positive terms stays within
    // n roundings of the exact sum.
    const double nbTerms = 4 * 200, bound = 2 * nbTerms * NumericLimits<float>::s_eps;
    forEachSample(expected->getGeometry().getSizes(), [&](auto... at) {
        ASSERT_NEAR(sampleAt(*expected, at...), sampleAt(*found, at...), bound * sampleAt(*expected, at...));
    });
}

TEST(HoughLinesImg, HasTheSizeAndTypeOfItsGeometry)
{
    const auto sizeOf = [](const ImagePtr& made) { return toString(made->getGeometry().getSizes()); };
    EXPECT_EQ("8 x 180 x 1 x 1 x 1", sizeOf(houghLines2dImg(blank(5, 4))));
    EXPECT_EQ("12 x 180 x 1 x 1 x 1", sizeOf(houghLines2dImg(blank(7, 7))));
    EXPECT_EQ("14 x 3 x 1 x 1 x 1", sizeOf(houghLines2dImg(blank(5, 4), paramsOf(0.6, 0, 1, 3, 0))));
    // Much wider than the plane: everything is in the two middle bins.
    EXPECT_EQ("2 x 10 x 1 x 1 x 1", sizeOf(houghLines2dImg(blank(5, 4), paramsOf(1e6, 0, kPi, 10, 0))));
    // What may be given, and what is made.
    typedef std::vector<eImageBufferType> Types;
    const auto in = boost::make_shared<InGreyImg2d>();
    for (const eImageBufferType type : kAllTypes) {
        in->init(blank(5, 4, 2, 2, type));
        const bool isWide = type == eIBT_UInt32 || type == eIBT_Label32, isReal = type == eIBT_Real32 || type == eIBT_Label8;
        const Types expected = isReal           ? Types{eIBT_Real32}
                               : isSigned(type) ? Types{eIBT_Int32, eIBT_Real32}
                               : isWide         ? Types{eIBT_UInt32, eIBT_Real32}
                                                : Types{eIBT_Int32, eIBT_UInt32, eIBT_Real32};
        EXPECT_EQ(expected, houghLines2dCheckOutImgBufferType(in)->getAllowedImageBufferTypes()) << toString(type);
        const Types wide = houghLines2dCheckOutImgBufferType(in, true)->getAllowedImageBufferTypes();
        EXPECT_EQ(type != eIBT_Real32, std::count(wide.begin(), wide.end(), eIBT_UInt32) == 1) << toString(type);
        const ImagePtr made = houghLines2dImg(in->getStorage());
        EXPECT_EQ(isReal ? eIBT_Real32 : isSigned(type) ? eIBT_Int32 : eIBT_UInt32, made->getBufferType()) << toString(type);
    }
}

TEST(HoughLinesImg, HasNoVotesForStepsAndAnglesThatMakeNoSense)
{
    const ImagePtr plane = randomImage(eIBT_UInt8, {30, 20}, 77);
    const auto hasVotes = [&](double rhoStep, double thetaMin, double thetaMax) {
        const ImagePtr accumulator = houghLines2dImg(plane, paramsOf(rhoStep, thetaMin, thetaMax, 10, 0));
        return !sameSamples(*createImage(eIBT_UInt32, {columnsOf(*plane, 1.0), 10}), *accumulator);
    };
    for (const double rhoStep : {0.0, -0.0, -1.0, -1e-30, 1e-300, kNan, -kInfinity})
        EXPECT_FALSE(hasVotes(rhoStep, 0, kPi)) << rhoStep;
    for (const double angle : {kNan, kInfinity})
        EXPECT_FALSE(hasVotes(1.0, angle, kPi) || hasVotes(1.0, 0, angle)) << angle;
    EXPECT_TRUE(hasVotes(1.0, 1e300, 2e300));
}

TEST(HoughLinesImg, RefusesWhatDoesNotFitInWords)
{
    const ImagePtr plane = blank(5, 4), given = createImage(eIBT_UInt32, {8, 180});
    const auto with = [&](const ParamsPtr& params) { return [=] { houghLines2dImg(plane, params); }; };
    const auto into = [&](const ImagePtr& in, const ImagePtr& accumulator) {
        return [=] { ran<HoughLines2dImgLvl1, InGreyImg2d, OutImg>(in, accumulator); };
    };
    // One plane may have more rows.
    const auto intoRows = [&](unsigned long nbRows) {
        return [=] { ran<HoughLines2dImgLvl2, InSubImg2d, OutImg>(plane, createImage(eIBT_UInt32, {8, nbRows})); };
    };
    const std::string bins = "failed: accumulator of InGreyImg2d has 1 to 2147483647 bins along rho and along theta: ";
    expectRefusals(
        {given},
        {
            {bins + "8 along rho, 0 along theta", with(paramsOf(1, 0, 1, 0, 0))},
            {bins + "8 along rho, 4294967295 along theta", with(paramsOf(1, 0, 1, 4294967295u, 0))},
            {bins + std::to_string(columnsOf(*plane, 1e-15)) + " along rho", with(paramsOf(1e-15, 0, 1, 5, 0))},
            {"X 9 against 8", into(plane, createImage(eIBT_UInt32, {9, 180}))},
            {"Y 184 against 180", into(plane, createImage(eIBT_UInt32, {8, 184}))},
            {"failed: buffer type, of OutImg", into(plane, createImage(eIBT_Int16, {8, 180}))},
            {"failed: number of planes", into(plane, createImage(eIBT_UInt32, {8, 180, 2}))},
            {"failed: Output image Y size (179) is greater than or equals to NbThetaBins field of InOptHoughLinesImgParams data "
             "item (180)",
             intoRows(179)},
        });
    EXPECT_NO_THROW(into(plane, createImage(eIBT_Real32, {8, 180}))());
    EXPECT_NO_THROW(intoRows(184)());
    EXPECT_THROW(with(paramsOf(1e-8, 0, 1, 2147483647u, 0))(), std::bad_alloc) << "there is memory for anything";
}

TEST(HoughLinesRules, SayWhatIsMissing)
{
    const auto in = boost::make_shared<InGreyImg2d>();
    const auto out = boost::make_shared<OutImg>();
    auto params = boost::make_shared<InOptHoughLinesImgParams>();
    const processor::RulePtr rule = houghLines2dCheckOutImgSzYGreaterOrEqual(out, params);
    EXPECT_TRUE(rule->testRule()) << "unset";
    EXPECT_EQ("Output image Y size is greater than or equals to NbThetaBins field of InOptHoughLinesImgParams data item",
              rule->createRuleFormalString());
    const auto made = outputHoughLines2dImg(in, params);
    in->init(blank(5, 4));
    out->init(blank(8, 180));
    EXPECT_EQ(8u, made->getSizeX());
    params.reset();
    const auto expectFailures = [](const std::string& text, const std::vector<std::function<void()>>& calls) {
        for (const auto& call : calls)
            EXPECT_EQ(text, thrownText<ORVIKIPLFeatureDetectionException>(call));
    };
    const std::string expired = "Attribute weak pointer has expired, can't get it";
    EXPECT_EQ(expired, refusalOf([&] { rule->testRule(); }));
    expectFailures(expired, {[&] { made->getSizeX(); }});
    expectFailures("Input attribute should not be null", {[&] { houghLines2dCheckOutImgSzXEquals(in, params); },
                                                          [&] { houghLines2dCheckOutImgSzYGreaterOrEqual(out, params); }});
    expectFailures("Initialize rule before trying to use its data",
                   {[] { HoughLines2dImgImageSizeX().getSizeX(); }, [] { HoughLines2dImageSizeY().getSizeY(); },
                    [] { HoughLines2dImageSizeYGreaterOrEqual().testRule(); }});
}

}  // namespace
}  // namespace orvik::test
