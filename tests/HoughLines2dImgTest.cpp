// Accumulators of lines: every vote of every kernel, sizes and types, the calls.

#include "InstructionSets.h"
#include "TestImages.h"
#include "TestRuns.h"

#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl2.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl3.h"
#include "ORVIKIPLFeatureDetectionLog.h"
#include "Rule/HoughLines2dImgRuleUtils.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <boost/smart_ptr/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvik::test {
namespace {

using namespace imaproc::attr;
using namespace imaproc::fd;
using image::ImageSizes;
typedef boost::shared_ptr<const HoughLinesImgParams> ParamsPtr;
typedef HoughLinesImgParams Params;
typedef processor::ORVIKBaseProcessingException Refusal;

const double kPi = 3.141592653589793;
const double kNan = std::numeric_limits<double>::quiet_NaN(), kInfinity = std::numeric_limits<double>::infinity();

ParamsPtr paramsOf(double rhoStep, double thetaMin, double thetaMax, unsigned int nbThetaBins, float threshold)
{
    return Params::createNode(rhoStep, thetaMin, thetaMax, nbThetaBins, threshold);
}

/// Bins on either side of rho 0.
double halfRho(const image::BaseImage& plane, double rhoStep)
{
    const double hx = std::ceil(0.5 * static_cast<double>(plane.getSizeX()));
    const double hy = std::ceil(0.5 * static_cast<double>(plane.getSizeY()));
    return std::trunc(1.0 + std::sqrt(hx * hx + hy * hy) / rhoStep);
}

template<class Accum, class Sample>
Accum counted(Sample pixel)
{
    if constexpr (std::is_same<Sample, float>::value && !std::is_same<Accum, float>::value)
        return static_cast<Accum>(std::max<double>(std::numeric_limits<Accum>::min(),
                                                   std::min<double>(pixel, std::numeric_limits<Accum>::max())));
    else
        return static_cast<Accum>(pixel);
}

/// Adds the votes of a plane to an accumulator, pixel by pixel.
template<class Accum, class Sample>
void voteAsDefined(const image::BaseImage& plane, const Params& params, image::BaseImage& accumulator)
{
    const double rhoStep = params.get<Params::RhoStep>(), thetaMin = params.get<Params::ThetaMin>();
    const unsigned int nbAngles = params.get<Params::NbThetaBins>();
    const double thetaStep = (params.get<Params::ThetaMax>() - thetaMin) / nbAngles;
    std::vector<float> cosines(nbAngles), sines(nbAngles);
    for (unsigned int t = 0; t < nbAngles; ++t) {
        cosines[t] = static_cast<float>(std::cos(t * thetaStep + thetaMin) / rhoStep);
        sines[t] = static_cast<float>(std::sin(t * thetaStep + thetaMin) / rhoStep);
    }
    const double centre = halfRho(plane, rhoStep), last = static_cast<double>(accumulator.getSizeX()) - 1;
    for (unsigned long y = 0; y < plane.getSizeY(); ++y)
        for (unsigned long x = 0; x < plane.getSizeX(); ++x) {
            const Sample pixel = static_cast<const Sample*>(plane.getLine(y))[x];
            if (!(static_cast<double>(pixel) > static_cast<double>(params.get<Params::PixelThreshold>())))
                continue;
            const float w = static_cast<float>(counted<Accum>(pixel));
            const float xc = static_cast<float>(static_cast<long>(x) - static_cast<long>(plane.getSizeX() / 2));
            const float yc = static_cast<float>(static_cast<long>(y) - static_cast<long>(plane.getSizeY() / 2));
            for (unsigned int t = 0; t < nbAngles; ++t) {
                const float p = xc * cosines[t] + sines[t] * yc, floor = std::floor(p), frac = p - floor;
                const float shares[] = {(1.0f - frac) * w, frac * w};
                const double columns[] = {floor + centre, floor + centre + (frac != 0.0f ? 1.0 : 0.0)};
                for (int i = 0; i < 2; ++i) {
                    if (!(columns[i] >= 0.0 && columns[i] <= last))
                        continue;
                    Accum& bin = static_cast<Accum*>(accumulator.accessLine(t))[static_cast<long>(columns[i])];
                    if constexpr (std::is_same<Accum, float>::value)
                        bin += shares[i];
                    else
                        bin = static_cast<Accum>(static_cast<unsigned int>(bin)
                                                 + static_cast<unsigned int>(std::llround(static_cast<double>(shares[i]))));
                }
            }
        }
}

ImagePtr expectedAccumulator(const image::BaseImage& plane, const Params& params, image::eImageBufferType type,
                             const ImageSizes& sizes)
{
    const ImagePtr accumulator = image::createImage(type, sizes);
    image::withSampleType(image::toDataType(plane.getBufferType()), [&](auto pixel) {
        image::withSampleType(image::toDataType(type), [&](auto bin) {
            if constexpr (sizeof(bin) == 4)
                voteAsDefined<decltype(bin), decltype(pixel)>(plane, params, *accumulator);
        });
    });
    return accumulator;
}

unsigned long columnsOf(const image::BaseImage& plane, double rhoStep)
{
    return 2 * static_cast<unsigned long>(halfRho(plane, rhoStep));
}

const image::eImageBufferType kAccumulatorTypes[] = {image::eIBT_Int32, image::eIBT_UInt32, image::eIBT_Real32};

/// A few voters of all values, and runs of neighbours.
ImagePtr sparse(image::eImageBufferType type, const ImageSizes& sizes, unsigned int seed)
{
    const ImagePtr image = randomImage(type, sizes, seed);
    std::mt19937 random(seed);
    bool on = false;
    forEachSample(sizes, [&](auto x, auto y, auto z, auto c, auto t) {
        if (random() % 4 == 0)
            on = !on;
        if (!on)
            setSample(*image, 0, x, y, z, c, t);
        else if (random() % 2)
            setSample(*image, 1, x, y, z, c, t);
    });
    return image;
}

class HoughLinesKernel : public KernelTest<HoughLines2dImgLvl3>
{
protected:
    /// Into accumulators of all three types, on buffers with gaps, with more rows than angles.
    void expectReference(const ImagePtr& plane, const Params& params) const
    {
        for (const image::eImageBufferType accumulatorType : kAccumulatorTypes) {
            const double rhoStep = params.get<Params::RhoStep>();
            const ImageSizes sizes(columnsOf(*plane, rhoStep), params.get<Params::NbThetaBins>() + 2);
            SCOPED_TRACE(toString(plane->getGeometry().getSizes()) + " into " + toString(accumulatorType) + ", step "
                         + std::to_string(rhoStep));
            const GuardedImage accumulator(accumulatorType, sizes, 3);
            const auto votes = boost::make_shared<HoughLines2dImgLvl2>();
            votes->init(processor::ePRP_NoRules);
            votes->set<InSubImg2d>(plane);
            votes->set<InOptHoughLinesImgParams>(boost::make_shared<Params>(params));
            votes->set<OutImg>(accumulator.get());
            fillRandom(*accumulator.get(), 5);
            processor::executeSyncRun(votes);
            EXPECT_TRUE(sameSamples(*expectedAccumulator(*plane, params, accumulatorType, sizes), *accumulator.get()));
            EXPECT_TRUE(accumulator.areGuardsIntact());
        }
    }
};

INSTANTIATE_TEST_SUITE_P(AllKernels, HoughLinesKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(HoughLinesKernel, VotesAsDefinedForAnyWidth)
{
    const WithThreads one(1);
    const ParamsPtr many[] = {createHoughLinesImgParams(), paramsOf(0.5, -0.3, 0.4, 23, 0.5f),
                              paramsOf(2.75, -kPi, kPi, 40, -50.0f), paramsOf(1.0, kPi, 0.0, 31, 1.0f)};
    unsigned int turn = 0;
    for (const unsigned long width : {1ul, 2ul, 5ul, 15ul, 16ul, 17ul, 31ul, 63ul, 64ul, 65ul, 70ul, 129ul, 700ul}) {
        const ImagePtr plane = sparse(type(), {width, 1 + turn % 7}, 71 + turn);
        expectReference(plane, *many[turn++ % 4]);
    }
    for (const ImageSizes& sizes : {ImageSizes(67, 40), ImageSizes(1100, 2)}) {
        const GuardedImage tight(type(), sizes, 0);
        fillRandom(*tight.get(), 72);
        for (const ParamsPtr& params : many)
            expectReference(tight.get(), *params);
    }
    EXPECT_NE(0u, processor::getAlgorithmEntry(HoughLines2dImgLvl3::getTypeName()).lastEfficiency
                      + (set() == core::eIS_Generic ? 1 : 0))
        << "plain code ran instead of the forced set";
}

TEST_P(HoughLinesKernel, VotesAsDefinedAtTheTypesLimits)
{
    const WithThreads one(1);
    std::vector<double> values = {0, 1, 1, 2, 3};
    std::vector<float> thresholds = {0.0f, -0.0f, 0.999f, 1.0f, 1e30f, -1e30f, std::numeric_limits<float>::quiet_NaN(),
                                     std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()};
    image::withSampleType(image::toDataType(type()), [&](auto sample) {
        typedef NumericLimits<decltype(sample)> Limits;
        for (const auto limit : {Limits::s_min, Limits::s_max}) {
            values.push_back(static_cast<double>(limit));
            thresholds.push_back(static_cast<float>(limit));
        }
        if (type() == image::eIBT_Real32)
            values.insert(values.end(), {kNan, kInfinity, -kInfinity, -0.0, 1e-45, 1e20, -1e20, 16777217});
    });
    std::mt19937 random(73);
    const ImageSizes sizes(90, 12);
    const ImagePtr plane = image::createImage(type(), sizes);
    forEachSample(sizes, [&](auto x, auto y, auto...) { setSample(*plane, values[random() % values.size()], x, y); });
    for (const float threshold : thresholds)
        expectReference(plane, *paramsOf(1.0, 0.0, kPi, 36, threshold));
}

TEST(HoughLinesImg, WholeNumbersDoNotDependOnStripsAndThreads)
{
    const ImagePtr plane = sparse(image::eIBT_UInt16, {300, 120}, 74);
    const ParamsPtr params = paramsOf(0.7, 0.0, kPi, 90, 0.0f);
    const ImageSizes sizes(columnsOf(*plane, 0.7), 90);
    const ImagePtr expected = expectedAccumulator(*plane, *params, image::eIBT_UInt32, sizes);
    for (const unsigned int nbThreads : {1u, 3u})
        for (const unsigned long grain : {1ul, 7ul, 1000ul}) {
            const WithThreads threads(nbThreads);
            const WithGrain lines(grain);
            EXPECT_TRUE(sameSamples(*expected, *houghLines2dImg(plane, params))) << nbThreads << ", " << grain;
        }
}

TEST(HoughLinesImg, SumsOfFloatsDependOnStripsAndThreadsByRoundingAlone)
{
    const ImagePtr plane = randomImage(image::eIBT_Real32, {200, 100}, 75);
    const ParamsPtr params = paramsOf(1.0, 0.0, kPi, 60, 0.0f);
    const ImageSizes sizes(columnsOf(*plane, 1.0), 60);
    const ImagePtr expected = expectedAccumulator(*plane, *params, image::eIBT_Real32, sizes);
    {
        const WithThreads one(1);
        EXPECT_TRUE(sameSamples(*expected, *houghLines2dImg(plane, params)));
    }
    const WithThreads threads(3);
    const WithGrain lines(3);
    const ImagePtr found = houghLines2dImg(plane, params);
    // A bin sums at most four pixels of each line or column, none above 1000; any order of n positive terms stays within
    // n roundings of the exact sum.
    const double nbTerms = 4 * 200, bound = 2 * nbTerms * NumericLimits<float>::s_eps;
    forEachSample(sizes, [&](auto x, auto y, auto...) {
        ASSERT_NEAR(sampleAt(*expected, x, y), sampleAt(*found, x, y), bound * sampleAt(*expected, x, y)) << x << ", " << y;
    });
}

TEST(HoughLinesImg, HasTheSizeAndTypeOfItsGeometry)
{
    const ImagePtr small = blank(5, 4), odd = blank(7, 7);
    EXPECT_EQ(8u, houghLines2dImg(small)->getSizeX());
    EXPECT_EQ(180u, houghLines2dImg(small)->getSizeY());
    EXPECT_EQ(12u, houghLines2dImg(odd, nullptr)->getSizeX());
    EXPECT_EQ(14u, houghLines2dImg(small, paramsOf(0.6, 0, 1, 3, 0))->getSizeX());
    EXPECT_EQ(3u, houghLines2dImg(small, paramsOf(0.6, 0, 1, 3, 0))->getSizeY());
    for (const image::eImageBufferType type : kAllTypes) {
        const ImagePtr image = blank(5, 4, 2, 2, type);
        setSample(*image, 1, 1, 1, 1, 1);
        const ImagePtr accumulator = houghLines2dImg(image);
        const eDataType sample = image::toDataType(type);
        const bool isSigned = sample == eDT_Int8 || sample == eDT_Int16 || sample == eDT_Int32;
        EXPECT_EQ(type == image::eIBT_Real32 || type == image::eIBT_Label8 ? image::eIBT_Real32
                  : isSigned                                               ? image::eIBT_Int32
                                                                           : image::eIBT_UInt32,
                  accumulator->getBufferType());
        EXPECT_EQ(2u, accumulator->getSizeZ());
        EXPECT_EQ(2u, accumulator->getSizeC());
        EXPECT_EQ(0.0, sampleAt(*accumulator, 3, 0, 0, 1));
        EXPECT_EQ(1.0, sampleAt(*accumulator, 3, 0, 1, 1)) << "angle 0, one pixel left of the centre";
        EXPECT_EQ(0.0, sampleAt(*accumulator, 4, 0, 1, 1));
    }
}

TEST(HoughLinesImg, VotesAreSharedAndRoundedOneByOne)
{
    // One pixel from the centre along x; at 60 degrees that is half a bin.
    const ImagePtr plane = blank(9, 9);
    setSample(*plane, 1, 5, 4);
    const ParamsPtr params = paramsOf(1.0, 0.0, 2 * std::acos(0.5), 2, 0.0f);
    const ImagePtr accumulator = houghLines2dImg(plane, params);
    const unsigned long centre = accumulator->getSizeX() / 2;
    EXPECT_EQ(1.0, sampleAt(*accumulator, centre, 1));
    EXPECT_EQ(1.0, sampleAt(*accumulator, centre + 1, 1)) << "both halves are rounded up";
    EXPECT_EQ(0.0, sampleAt(*accumulator, centre, 0));
    EXPECT_EQ(1.0, sampleAt(*accumulator, centre + 1, 0));
    EXPECT_EQ(0.0, sampleAt(*accumulator, centre + 2, 0)) << "a vote without fraction is for one bin";
}

TEST(HoughLinesImg, IsMadeByEveryCallShape)
{
    const ImagePtr image = sparse(image::eIBT_Int16, {40, 30, 3}, 76);
    const ParamsPtr params = paramsOf(1.5, 0.1, 3.0, 50, 10.0f);
    const ImagePtr plain = houghLines2dImg(image), chosen = houghLines2dImg(image, params);
    const ImageSizes sizes(columnsOf(*image, 1.5), 50);
    EXPECT_TRUE(sameSamples(*expectedAccumulator(*image->getView(PlanIndex(2, 0, 0), 1), *params, image::eIBT_Int32, sizes),
                            *chosen->getView(PlanIndex(2, 0, 0), 1)));
    EXPECT_TRUE(sameSamples(*plain, *houghLines2dImg(image, nullptr)));
    EXPECT_TRUE(sameSamples(*plain, *getAsyncProcessorOutput(houghLines2dImg_async(image))));
    EXPECT_TRUE(sameSamples(*chosen, *getAsyncProcessorOutput(houghLines2dImg_async(image, params))));
}

TEST(HoughLinesImg, StepsAndAnglesThatMakeNoSenseAreSafe)
{
    const ImagePtr plane = randomImage(image::eIBT_UInt8, {30, 20}, 77);
    const auto total = [&](const ParamsPtr& params) {
        const ImagePtr accumulator = houghLines2dImg(plane, params);
        EXPECT_EQ(accumulator->getSizeX(), 2 * static_cast<unsigned long>(halfRho(*plane, 1.0)));
        double sum = 0;
        forEachSample(accumulator->getGeometry().getSizes(), [&](auto x, auto y, auto...) { sum += sampleAt(*accumulator, x, y); });
        return sum;
    };
    for (const double rhoStep : {0.0, -0.0, -1.0, -1e-30, 1e-300, kNan, -kInfinity})
        EXPECT_EQ(0.0, total(paramsOf(rhoStep, 0, kPi, 10, 0))) << rhoStep;
    for (const double angle : {kNan, kInfinity}) {
        EXPECT_EQ(0.0, total(paramsOf(1.0, angle, kPi, 10, 0)));
        EXPECT_EQ(0.0, total(paramsOf(1.0, 0, angle, 10, 0)));
    }
    EXPECT_LT(0.0, total(paramsOf(1.0, 1e300, 2e300, 10, 0)));
    // Much wider than the plane: everything is in the two middle bins.
    const ImagePtr wide = houghLines2dImg(plane, paramsOf(1e6, 0, kPi, 10, 0));
    EXPECT_EQ(2u, wide->getSizeX());
}

TEST(HoughLinesImg, RefusesWhatDoesNotFitInWords)
{
    const ImagePtr plane = blank(5, 4);
    const auto refusal = [&](const ParamsPtr& params) {
        return thrownText<Refusal>([&] { houghLines2dImg(plane, params); });
    };
    EXPECT_EQ("HoughLines2dImgLvl1 refuses to run: mandatory attribute InGreyImg2d has no value (unset or null)",
              thrownText<Refusal>([] { houghLines2dImg(nullptr); }));
    const std::string bins = "failed: accumulator of InGreyImg2d has 1 to 2147483647 bins along rho and along theta: ";
    EXPECT_NE(std::string::npos, refusal(paramsOf(1, 0, 1, 0, 0)).find(bins + "8 along rho, 0 along theta"));
    EXPECT_NE(std::string::npos, refusal(paramsOf(1, 0, 1, 4294967295u, 0)).find(bins + "8 along rho, 4294967295 along"));
    EXPECT_NE(std::string::npos, refusal(paramsOf(1e-15, 0, 1, 5, 0))
                                     .find(bins + std::to_string(columnsOf(*plane, 1e-15)) + " along rho"));
    try {
        houghLines2dImg(plane, paramsOf(1e-8, 0, 1, 2147483647u, 0));
        ADD_FAILURE() << "there is memory for anything";
    } catch (const std::bad_alloc& e) {
        EXPECT_EQ(0u, std::string(e.what()).find("there is no memory for an image of size "
                                                 + std::to_string(columnsOf(*plane, 1e-8)) + " x 2147483647 x 1 x 1 x 1, "));
    }

    const auto votes = processor::createInitialised<HoughLines2dImgLvl1>();
    const auto refused = [&](const ImagePtr& accumulator) {
        votes->set<InGreyImg2d>(plane);
        votes->set<OutImg>(accumulator);
        return thrownText<Refusal>([&] { processor::executeSyncRun(votes); });
    };
    EXPECT_NE(std::string::npos, refused(blank(9, 180, 1, 1, image::eIBT_UInt32)).find("X 9 against 8"));
    EXPECT_NE(std::string::npos, refused(blank(8, 184, 1, 1, image::eIBT_UInt32)).find("Y 184 against 180"));
    EXPECT_NE(std::string::npos, refused(blank(8, 180, 1, 1, image::eIBT_Int16)).find("failed: buffer type, of OutImg"));
    EXPECT_NE(std::string::npos, refused(blank(8, 180, 2, 1, image::eIBT_UInt32)).find("failed: number of planes"));
    votes->set<OutImg>(blank(8, 180, 1, 1, image::eIBT_Real32));
    EXPECT_NO_THROW(processor::executeSyncRun(votes));

    const auto plane2 = processor::createInitialised<HoughLines2dImgLvl2>();
    plane2->set<InSubImg2d>(plane);
    plane2->set<OutImg>(blank(8, 184, 1, 1, image::eIBT_UInt32));
    EXPECT_NO_THROW(processor::executeSyncRun(plane2)) << "one plane may have more rows";
    plane2->set<OutImg>(blank(8, 179, 1, 1, image::eIBT_UInt32));
    EXPECT_NE(std::string::npos,
              thrownText<Refusal>([&] { processor::executeSyncRun(plane2); })
                  .find("failed: Output image Y size (179) is greater than or equals to NbThetaBins field of "
                        "InOptHoughLinesImgParams data item (180)"));
}

TEST(HoughLinesRules, AllowTheTypesThatHoldTheVotes)
{
    typedef std::vector<image::eImageBufferType> Types;
    const Types all(std::begin(kAccumulatorTypes), std::end(kAccumulatorTypes));
    const auto in = boost::make_shared<InGreyImg2d>();
    for (const image::eImageBufferType type : kAllTypes) {
        in->init(blank(3, 3, 1, 1, type));
        const eDataType sample = image::toDataType(type);
        Types expected;
        if (sample == eDT_Int8 || sample == eDT_Int16 || sample == eDT_Int32)
            expected = {image::eIBT_Int32, image::eIBT_Real32};
        else if (type == image::eIBT_UInt32 || type == image::eIBT_Label32)
            expected = {image::eIBT_UInt32, image::eIBT_Real32};
        else if (type == image::eIBT_Real32 || type == image::eIBT_Label8)
            expected = {image::eIBT_Real32};
        else
            expected = all;
        EXPECT_EQ(expected, houghLines2dCheckOutImgBufferType(in)->getAllowedImageBufferTypes()) << toString(type);
        const Types wide = houghLines2dCheckOutImgBufferType(in, true)->getAllowedImageBufferTypes();
        EXPECT_EQ(type != image::eIBT_Real32, std::count(wide.begin(), wide.end(), image::eIBT_UInt32) == 1) << toString(type);
    }
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
    EXPECT_TRUE(rule->testRule());
    params.reset();
    EXPECT_EQ("Attribute weak pointer has expired, can't get it",
              thrownText<ORVIKIPLFeatureDetectionException>([&] { made->getSizeX(); }));
    EXPECT_EQ("Attribute weak pointer has expired, can't get it", thrownText<Refusal>([&] { rule->testRule(); }));
    EXPECT_EQ("Input attribute should not be null",
              thrownText<ORVIKIPLFeatureDetectionException>([&] { houghLines2dCheckOutImgSzXEquals(in, params); }));
    EXPECT_EQ("Input attribute should not be null",
              thrownText<ORVIKIPLFeatureDetectionException>([&] { houghLines2dCheckOutImgSzYGreaterOrEqual(out, params); }));
    for (const auto& early : {+[] { HoughLines2dImgImageSizeX().getSizeX(); }, +[] { HoughLines2dImageSizeY().getSizeY(); },
                              +[] { HoughLines2dImageSizeYGreaterOrEqual().testRule(); }})
        EXPECT_EQ("Initialize rule before trying to use its data", thrownText<ORVIKIPLFeatureDetectionException>(early));
}

}  // namespace
}  // namespace orvik::test
