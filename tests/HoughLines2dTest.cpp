// Lines of planes: where they are found, which bins become lines, the calls.

#include "TestImages.h"
#include "TestRuns.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/HoughLines2d/HoughLines2dLvl1.h"
#include "Processor/HoughLines2d/HoughLines2dLvl2.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/ActionProvider.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvik::test {
namespace {

using namespace imaproc::attr;
using namespace imaproc::fd;
typedef boost::shared_ptr<const HoughLinesImgParams> ParamsPtr;
typedef boost::shared_ptr<const HoughLinesExtractionParams> ExtractionPtr;
typedef processor::ORVIKBaseProcessingException Refusal;

const double kPi = 3.141592653589793;
const double kNan = std::numeric_limits<double>::quiet_NaN();

struct Line
{
    double rho, theta, votes;
    bool operator==(const Line& other) const { return rho == other.rho && theta == other.theta && votes == other.votes; }
};
void PrintTo(const Line& line, std::ostream* out)
{
    *out << "rho " << line.rho << ", theta " << line.theta << ": " << line.votes;
}
typedef std::vector<Line> Lines;

Lines linesOf(const HoughLines2dPpties& lines)
{
    Lines result;
    for (std::size_t i = 0; i < lines.size(); ++i)
        result.push_back({lines[i].get<HoughLine2dPpties::Rho>(), lines[i].get<HoughLine2dPpties::Theta>(),
                          lines[i].get<HoughLine2dPpties::AccumulatorValue>()});
    return result;
}

/// The pixels next to a line, one for each step along the axis that it is nearer to.
void draw(image::BaseImage& image, double rho, double theta)
{
    const double cosine = std::cos(theta), sine = std::sin(theta);
    const bool steep = std::fabs(cosine) > std::fabs(sine);
    const long sizeX = static_cast<long>(image.getSizeX()), sizeY = static_cast<long>(image.getSizeY());
    for (long i = 0; i < (steep ? sizeY : sizeX); ++i) {
        const double at = static_cast<double>(i);
        const long j = std::lround(steep ? (rho - at * sine) / cosine : (rho - at * cosine) / sine);
        const long x = steep ? j : i, y = steep ? i : j;
        if (x >= 0 && y >= 0 && x < sizeX && y < sizeY)
            setSample(image, 1, static_cast<unsigned long>(x), static_cast<unsigned long>(y));
    }
}

/// Whether two pairs mean the same line, within a bin of 1 pixel and 1 degree; theta + pi is the same with -rho.
bool isSameLine(const Line& found, double rho, double theta)
{
    const double bin = kPi / 180;
    for (const double turn : {-kPi, 0.0, kPi})
        if (std::fabs(found.theta - theta + turn) <= bin && std::fabs(found.rho - (turn == 0.0 ? rho : -rho)) <= 1.0)
            return true;
    return false;
}

TEST(HoughLines, DrawnOnesAreListedOnceEachWithinOneBin)
{
    const double degree = kPi / 180;
    for (const unsigned long sizeX : {120ul, 121ul})
        for (const unsigned long sizeY : {100ul, 101ul})
            for (const double degrees : {0.0, 0.3, 0.5, 1.0, 7.2, 30.0, 45.0, 60.4, 89.6, 90.0, 90.3, 120.0, 135.0, 150.7, 172.9,
                                         178.0, 179.0, 179.5, 179.8}) {
                SCOPED_TRACE(std::to_string(sizeX) + " x " + std::to_string(sizeY) + ", " + std::to_string(degrees));
                const double theta = degrees * degree;
                // Through points left and right of the centre, and one near it.
                const ImagePtr plane = blank(sizeX, sizeY);
                std::vector<double> rhos;
                for (const double offset : {-25.0, 0.0, 31.0}) {
                    rhos.push_back(offset + 60 * std::cos(theta) + 50 * std::sin(theta));
                    draw(*plane, rhos.back(), theta);
                }
                const Lines found = linesOf(*houghLines2d(plane).first);
                EXPECT_EQ(rhos.size(), found.size());
                for (const double rho : rhos)
                    EXPECT_EQ(1, std::count_if(found.begin(), found.end(),
                                               [&](const Line& line) { return isSameLine(line, rho, theta); }));
            }
}

TEST(HoughLines, FineStepsListADrawnOneOnceToo)
{
    const ParamsPtr params = HoughLinesImgParams::createNode(0.5, 0.0, kPi, 720u, 0.0f);
    for (const double degrees : {0.1, 33.3, 91.0, 179.9}) {
        const ImagePtr plane = blank(201, 200);
        const double theta = degrees * kPi / 180, rho = 90 * std::cos(theta) + 110 * std::sin(theta);
        draw(*plane, rho, theta);
        const Lines found = linesOf(*houghLines2d(plane, params, nullptr).first);
        ASSERT_EQ(1u, found.size()) << degrees;
        EXPECT_TRUE(isSameLine(found[0], rho, theta)) << degrees;
    }
}

/// The lines from their definition, given the votes.
Lines expectedLines(const image::BaseImage& plane, const ImagePtr& accumulator, const HoughLinesImgParams& params,
                    const HoughLinesExtractionParams& extraction)
{
    const double rhoStep = params.get<HoughLinesImgParams::RhoStep>(), thetaMin = params.get<HoughLinesImgParams::ThetaMin>();
    const double thetaMax = params.get<HoughLinesImgParams::ThetaMax>();
    const double nbAngles = params.get<HoughLinesImgParams::NbThetaBins>();
    const unsigned int dist = extraction.get<HoughLinesExtractionParams::PeakDist>();
    const bool cyclic = thetaMin <= 0 && thetaMax >= kPi;

    std::vector<double> bins;
    forEachSample(accumulator->getGeometry().getSizes(),
                  [&](auto x, auto y, auto...) { bins.push_back(sampleAt(*accumulator, x, y)); });
    std::sort(bins.begin(), bins.end());
    double threshold = extraction.get<HoughLinesExtractionParams::Threshold>();
    if (extraction.get<HoughLinesExtractionParams::ThresholdType>() == eHLTT_Ratio)
        threshold *= bins.back();
    else if (extraction.get<HoughLinesExtractionParams::ThresholdType>() == eHLTT_Quantile)
        threshold = bins[static_cast<std::size_t>(
            std::max(0.0, std::ceil(std::min(threshold, 1.0) * static_cast<double>(bins.size())) - 1))];

    const double hx = std::ceil(0.5 * static_cast<double>(plane.getSizeX())), hy = std::ceil(0.5 * static_cast<double>(plane.getSizeY()));
    const double halfRho = std::trunc(1.0 + std::sqrt(hx * hx + hy * hy) / rhoStep);
    const auto peaks = extractLocalExtrema2d(accumulator, dist, dist, createLocalExtremaConfig(eLET_Maxima, threshold));
    Lines lines;
    for (std::size_t i = 0; i < peaks->size(); ++i) {
        double x = (*peaks)[i].get<Pixel2d::X>(), y = (*peaks)[i].get<Pixel2d::Y>();
        if (cyclic && (y < dist || y >= dist + nbAngles))
            continue;
        const bool mirrored = cyclic && y >= nbAngles;
        y -= mirrored ? nbAngles : 0;
        x = mirrored ? 2 * halfRho - 1 - x : x;
        const double angle = y * ((thetaMax - thetaMin) / nbAngles) + thetaMin, theta = cyclic ? std::fmod(angle, kPi) : angle;
        const double centreX = std::floor(0.5 * static_cast<double>(plane.getSizeX()));
        const double centreY = std::floor(0.5 * static_cast<double>(plane.getSizeY()));
        lines.push_back({rhoStep * (x - halfRho) + centreX * std::cos(theta) + centreY * std::sin(theta), theta,
                         (*peaks)[i].get<Pixel2d::Value>()});
    }
    return lines;
}

/// Some lines and some noise.
ImagePtr picture(image::eImageBufferType type, unsigned int seed)
{
    const ImagePtr image = blank(90, 77, 1, 1, type);
    std::mt19937 random(seed);
    for (int i = 0; i < 150; ++i)
        setSample(*image, 1, random() % 90, random() % 77);
    for (int i = 0; i < 6; ++i) {
        const double theta = 0.001 * static_cast<double>(random() % 3142);
        draw(*image, 45 * std::cos(theta) + 38 * std::sin(theta) + static_cast<double>(random() % 31) - 15, theta);
    }
    return image;
}

TEST(HoughLines, AreTheHighestBinsOfTheContinuedAccumulator)
{
    const ParamsPtr many[] = {createHoughLinesImgParams(), HoughLinesImgParams::createNode(0.6, -0.2, 3.3, 100u, 0.0f),
                              HoughLinesImgParams::createNode(1.3, -kPi, kPi, 90u, 0.0f),
                              HoughLinesImgParams::createNode(1.0, 0.0, 3.0, 60u, 0.0f),
                              HoughLinesImgParams::createNode(1.0, 0.5, 5.0, 5u, 0.0f)};
    unsigned int seed = 81;
    for (const image::eImageBufferType type : kAllTypes)
        for (const ParamsPtr& params : many)
            for (const std::pair<int, double>& threshold :
                 std::initializer_list<std::pair<int, double> >{{0, 9.0}, {1, 0.4}, {2, 0.99}, {2, 1.5}, {3, 12.0}, {-1, 12.0}, {1, -0.5}, {1, 1.5}}) {
                const unsigned int dist = std::vector<unsigned int>{0, 1, 4, 120}[seed % 4];
                const ExtractionPtr extraction =
                    HoughLinesExtractionParams::createNode(threshold.first, threshold.second, dist);
                // Floats are not told apart by counts in the histogram.
                if (threshold.first == 2 && type == image::eIBT_Real32)
                    continue;
                SCOPED_TRACE(toString(type) + ", threshold type " + std::to_string(threshold.first) + ", distance "
                             + std::to_string(dist) + ", " + std::to_string(params->get<HoughLinesImgParams::NbThetaBins>())
                             + " angles");
                const WithThreads one(1);
                const ImagePtr plane = picture(type, ++seed);
                const HoughLines2dResult found = houghLines2d(plane, params, extraction);
                const image::BaseImage& accumulator = *found.second;
                EXPECT_EQ(type == image::eIBT_Real32 ? image::eIBT_Real32 : image::eIBT_UInt32, accumulator.getBufferType());
                const unsigned long nbAngles = params->get<HoughLinesImgParams::NbThetaBins>(), sizeX = accumulator.getSizeX();
                const bool cyclic = params->get<HoughLinesImgParams::ThetaMin>() <= 0
                                    && params->get<HoughLinesImgParams::ThetaMax>() >= kPi;
                ASSERT_EQ(nbAngles + (cyclic ? 2 * dist : 0), accumulator.getSizeY());
                // Votes for lines are floats for float images alone.
                const ImagePtr votes =
                    houghLines2dImg(type == image::eIBT_Label8 ? picture(image::eIBT_UInt8, seed) : plane, params);
                forEachSample(accumulator.getGeometry().getSizes(), [&](auto x, auto y, auto...) {
                    // Each time that the angles end, the rows go on mirrored.
                    const unsigned long column = y / nbAngles % 2 == 0 ? x : sizeX - 1 - x;
                    ASSERT_EQ(sampleAt(*votes, column, y % nbAngles), sampleAt(accumulator, x, y)) << x << ", " << y;
                });
                EXPECT_EQ(expectedLines(*plane, found.second, *params, *extraction), linesOf(*found.first));
            }
}

TEST(HoughLines, OfNothingAreNone)
{
    for (const image::eImageBufferType type : {image::eIBT_UInt8, image::eIBT_Int32, image::eIBT_Real32})
        for (const int thresholdType : {0, 1, 2}) {
            const HoughLines2dResult found = houghLines2d(
                blank(30, 20, 1, 1, type), nullptr, HoughLinesExtractionParams::createNode(thresholdType, 0.5, 3u));
            EXPECT_EQ(0u, found.first->size());
            EXPECT_EQ(186u, found.second->getSizeY());
        }
    const ImagePtr plane = picture(image::eIBT_UInt8, 82);
    for (const int thresholdType : {0, 1, 2})
        EXPECT_EQ(0u, houghLines2d(plane, nullptr, HoughLinesExtractionParams::createNode(thresholdType, kNan, 3u)).first->size());
    EXPECT_EQ(0u, houghLines2d(plane, HoughLinesImgParams::createNode(kNan, 0.0, kPi, 18u, 0.0f), nullptr).first->size());
}

TEST(HoughLines, AreListedByEveryCallShape)
{
    const ImagePtr plane = picture(image::eIBT_Binary, 83), stack = blank(90, 77, 2, 1, image::eIBT_Int16);
    draw(*stack->getView(PlanIndex(0, 0, 0), 1), 30, 0.3);
    draw(*stack->getView(PlanIndex(1, 0, 0), 1), 40, 1.3);
    const ParamsPtr params = HoughLinesImgParams::createNode(0.8, 0.0, kPi, 120u, 0.0f);
    const ExtractionPtr extraction = HoughLinesExtractionParams::createNode(eHLTT_Absolute, 20.0, 6u);
    const HoughLines2dResult plain = houghLines2d(plane), chosen = houghLines2d(plane, params, extraction);
    ASSERT_LT(0u, plain.first->size());
    ASSERT_LT(0u, chosen.first->size());
    const auto expectSame = [](const HoughLines2dResult& a, const HoughLines2dResult& b) {
        EXPECT_EQ(linesOf(*a.first), linesOf(*b.first));
        EXPECT_TRUE(sameSamples(*a.second, *b.second));
    };
    expectSame(plain, houghLines2d(plane, nullptr, nullptr));
    expectSame(plain, getAsyncProcessorOutput(houghLines2d_async(plane)));
    expectSame(chosen, getAsyncProcessorOutput(houghLines2d_async(plane, params, extraction)));

    const MultiSliceHoughLines2dResult all = multiSlice_houghLines2d(stack), some = multiSlice_houghLines2d(stack, params, extraction);
    EXPECT_EQ(2u, all.first->getNbPlans());
    for (const unsigned long z : {0ul, 1ul}) {
        const PlanIndex plan(z, 0, 0);
        const ImagePtr slice = stack->getView(plan, 1);
        expectSame(houghLines2d(slice), {all.first->getEntry(plan), all.second->getView(plan, 1)});
        expectSame(houghLines2d(slice, params, extraction), {some.first->getEntry(plan), some.second->getView(plan, 1)});
    }
    const auto again = getAsyncProcessorMultiSliceOutput(multiSlice_houghLines2d_async(stack));
    EXPECT_EQ(linesOf(*all.first->getEntry(PlanIndex(1, 0, 0))), linesOf(*again.first->getEntry(PlanIndex(1, 0, 0))));
    const auto asWell = getAsyncProcessorMultiSliceOutput(multiSlice_houghLines2d_async(stack, params, extraction));
    EXPECT_TRUE(sameSamples(*some.second, *asWell.second));
}

TEST(HoughLines, MayBeRunAgainAndIntoACallersAccumulator)
{
    const ImagePtr plane = picture(image::eIBT_Int8, 84);
    const HoughLines2dResult expected = houghLines2d(plane);
    const auto lines = processor::createInitialised<HoughLines2dLvl1>();
    lines->set<InGreyImg2d>(plane);
    for (int run = 0; run < 2; ++run) {
        processor::executeSyncRun(lines);
        EXPECT_EQ(linesOf(*expected.first), linesOf(*lines->getStorage<OutPIHoughLines2dPpties>()->getEntry(PlanIndex())));
    }
    const ImagePtr given = blank(expected.second->getSizeX(), expected.second->getSizeY(), 1, 1, image::eIBT_Int32);
    fillRandom(*given, 85);
    lines->set<OutOptImg>(given);
    processor::executeSyncRun(lines);
    EXPECT_EQ(given, lines->getStorage<OutOptImg>());
    EXPECT_EQ(linesOf(*expected.first), linesOf(*lines->getStorage<OutPIHoughLines2dPpties>()->getEntry(PlanIndex())));
}

TEST(HoughLines, EndAfterTheLastIteration)
{
    for (const int thresholdType : {0, 1}) {
        const auto plane = processor::createInitialised<HoughLines2dLvl2>();
        plane->set<InOptHoughLinesExtractionParams>(HoughLinesExtractionParams::createNode(thresholdType, 0.5, 1u));
        processor::ProviderPtr provider;
        const processor::RetrievalResult result =
            plane->retrieveProvider(core::BasePriority(), thresholdType == 0 ? 3u : 4u, provider);
        EXPECT_EQ(processor::eRRT_RetrievalFailed, result.getValue());
        EXPECT_EQ("Invalid iteration number (cannot be greater than " + std::to_string(2 + thresholdType) + ")",
                  result.getMessage());
    }
}

TEST(HoughLines, RefuseWhatDoesNotFitInWords)
{
    const ImagePtr plane = blank(5, 4), stack = blank(5, 4, 2);
    EXPECT_EQ("HoughLines2dLvl1 refuses to run: mandatory attribute InGreyImg2d has no value (unset or null)",
              thrownText<Refusal>([] { houghLines2d(nullptr); }));
    const std::string plans =
        "failed: entries of OutPIHoughLines2dPpties are the planes (z, c, t) of InGreyImg2d: 1 entries, 2 planes";
    EXPECT_NE(std::string::npos, thrownText<Refusal>([&] { houghLines2d(stack); }).find(plans));
    EXPECT_NE(std::string::npos,
              thrownText<Refusal>([&] { getAsyncProcessorOutput(houghLines2d_async(stack)); }).find(plans));
    EXPECT_NE(std::string::npos,
              thrownText<Refusal>([&] {
                  houghLines2d(plane, nullptr, HoughLinesExtractionParams::createNode(1, 0.5, 4294967295u));
              }).find("bins along rho and along theta: 8 along rho, 8589934770 along theta"));
    EXPECT_NE(std::string::npos,
              thrownText<Refusal>([&] { houghLines2d(plane, HoughLinesImgParams::createNode(1.0, 0.0, 4.0, 0u, 0.0f), nullptr); })
                  .find("bins along rho and along theta: 8 along rho, 0 along theta"));
    // Where the angles do not go round, the distance has no rows to add, and sees the whole accumulator.
    setSample(*plane, 1, 3, 1);
    EXPECT_EQ(1u, houghLines2d(plane, HoughLinesImgParams::createNode(1.0, 0.0, 3.0, 60u, 0.0f),
                               HoughLinesExtractionParams::createNode(1, 0.5, 4294967295u))
                      .first->size());

    const auto lines = processor::createInitialised<HoughLines2dLvl1>();
    lines->set<InGreyImg2d>(plane);
    const auto refused = [&](const ImagePtr& accumulator) {
        lines->set<OutOptImg>(accumulator);
        return thrownText<Refusal>([&] { processor::executeSyncRun(lines); });
    };
    EXPECT_NE(std::string::npos, refused(blank(8, 180, 1, 1, image::eIBT_UInt32)).find("Y 180 against 200"));
    EXPECT_NE(std::string::npos, refused(blank(9, 200, 1, 1, image::eIBT_UInt32)).find("X 9 against 8"));
    EXPECT_NE(std::string::npos, refused(blank(8, 200)).find("failed: buffer type, of OutOptImg"));
}

}  // namespace
}  // namespace orvik::test
