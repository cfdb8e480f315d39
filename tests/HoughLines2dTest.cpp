// Lines of planes: where they are found, which bins become lines, the calls.

#include "FamilyShapes.h"
#include "GaussianFormula.h"
#include "LinesReference.h"

#include "Processor/HoughLines2d/HoughLines2dLvl1.h"
#include "Processor/HoughLines2d/HoughLines2dLvl2.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"

#include "frame/core/ActionProvider.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;
typedef HoughLinesImgParams Params;
typedef HoughLinesExtractionParams Extraction;

/// The pixels next to a line, one for each step along the axis that it is nearer to.
void draw(BaseImage& image, double rho, double theta)
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

bool isCyclic(const Params& params)
{
    return params.get<Params::ThetaMin>() <= 0 && params.get<Params::ThetaMax>() >= kPi;
}

/// Some lines and some noise.
ImagePtr picture(eImageBufferType type, unsigned int seed)
{
    const ImagePtr image = createImage(type, {90, 77});
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
    const WithThreads one(1);
    unsigned int seed = 81;
    for (const eImageBufferType type : kAllTypes)
        for (const auto& params :
             {Params::createNode(1.0, 0.0, kPi, 180u, 0.0f), Params::createNode(0.6, -0.2, 3.3, 100u, 0.0f),
              Params::createNode(1.3, -kPi, kPi, 90u, 0.0f), Params::createNode(1.0, 0.0, 3.0, 60u, 0.0f),
              Params::createNode(1.0, 0.5, 5.0, 5u, 0.0f)})
            for (const auto& [kind, threshold] :
                 {std::make_pair(0, 9.0), {1, 0.4}, {2, 0.99}, {2, 1.5}, {3, 12.0}, {-1, 12.0}, {1, -0.5}, {1, 1.5}}) {
                const unsigned int dist = std::vector<unsigned int>{0, 1, 4, 120}[seed % 4];
                // Floats are not told apart by counts in the histogram.
                if (kind == 2 && type == eIBT_Real32)
                    continue;
                SCOPED_TRACE(toString(type) + ", threshold type " + std::to_string(kind) + ", seed " + std::to_string(seed));
                const auto extraction = Extraction::createNode(kind, threshold, dist);
                const ImagePtr plane = picture(type, ++seed);
                const auto [lines, accumulator] = houghLines2d(plane, params, extraction);
                const unsigned long nbAngles = params->get<Params::NbThetaBins>(), sizeX = accumulator->getSizeX();
                EXPECT_EQ(type == eIBT_Real32 ? eIBT_Real32 : eIBT_UInt32, accumulator->getBufferType());
                ASSERT_EQ(nbAngles + (isCyclic(*params) ? 2 * dist : 0), accumulator->getSizeY());
                // Votes for lines are floats for float images alone.
                const ImagePtr votes = houghLines2dImg(type == eIBT_Label8 ? picture(eIBT_UInt8, seed) : plane, params);
                forEachSample(accumulator->getGeometry().getSizes(), [&, &out = *accumulator](auto x, auto y, auto...) {
                    // Each time that the angles end, the rows go on mirrored.
                    const unsigned long column = y / nbAngles % 2 == 0 ? x : sizeX - 1 - x;
                    ASSERT_EQ(sampleAt(*votes, column, y % nbAngles), sampleAt(out, x, y)) << x << ", " << y;
                });
                EXPECT_TRUE(same(expectedLines(*plane, accumulator, *params, *extraction, isCyclic(*params), kPi),
                                 numbersOf(lines)));
            }
}

TEST(HoughLines, OfNothingAreNone)
{
    const ImagePtr plane = picture(eIBT_UInt8, 82);
    for (const int kind : {0, 1, 2}) {
        for (const eImageBufferType type : {eIBT_UInt8, eIBT_Int32, eIBT_Real32})
            EXPECT_EQ(
                Numbers{0},
                numbersOf(houghLines2d(createImage(type, {30, 20}), nullptr, Extraction::createNode(kind, 0.5, 3u)).first));
        EXPECT_EQ(Numbers{0}, numbersOf(houghLines2d(plane, nullptr, Extraction::createNode(kind, kNan, 3u)).first));
    }
}

TEST(HoughLines, MayBeRunAgainAndIntoACallersAccumulator)
{
    const ImagePtr plane = picture(eIBT_Int8, 84), given = randomImage(eIBT_Int32, {120, 200}, 85);
    const auto lines = processorWith<HoughLines2dLvl1, InGreyImg2d>(plane);
    for (const ImagePtr& accumulator : {ImagePtr(), ImagePtr(), given}) {
        if (accumulator)
            lines->set<OutOptImg>(accumulator);
        processor::executeSyncRun(lines);
        EXPECT_TRUE(same(numbersOf(houghLines2d(plane).first), numbersOf(lines->getStorage<OutPIHoughLines2dPpties>())));
    }
    EXPECT_EQ(given, lines->getStorage<OutOptImg>());
}

TEST(HoughLines, EndAfterTheLastIteration)
{
    for (const int kind : {0, 1})
        expectLastIteration(kind == 0 ? 2 : 3, *processorWith<HoughLines2dLvl2, InOptHoughLinesExtractionParams>(
                                                   Extraction::createNode(kind, 0.5, 1u)));
}

TEST(HoughLines, RefuseWhatDoesNotFitInWords)
{
    const ImagePtr plane = blank(5, 4), given = createImage(eIBT_UInt32, {8, 200});
    const auto with = [&](const boost::shared_ptr<const Params>& params, unsigned int dist) {
        return [=] { houghLines2d(plane, params, Extraction::createNode(1, 0.5, dist)); };
    };
    const auto into = [&](const ImagePtr& in, const ImagePtr& accumulator) {
        return [=] { ran<HoughLines2dLvl1, InGreyImg2d, OutOptImg>(in, accumulator); };
    };
    const std::string bins = "bins along rho and along theta: 8 along rho, ";
    expectRefusals(
        {given},
        {
            {"failed: entries of OutPIHoughLines2dPpties are the planes (z, c, t) of InGreyImg2d: 1 entries, 2 planes",
             [&] { houghLines2d(blank(5, 4, 2)); }},
            {bins + "8589934770 along theta", with(nullptr, 4294967295u)},
            {bins + "0 along theta", with(Params::createNode(1.0, 0.0, 4.0, 0u, 0.0f), 1)},
            {"Y 180 against 200", into(plane, createImage(eIBT_UInt32, {8, 180}))},
            {"X 9 against 8", into(plane, createImage(eIBT_UInt32, {9, 200}))},
            {"failed: buffer type, of OutOptImg", into(plane, blank(8, 200))},
            {"failed: number of planes", into(plane, createImage(eIBT_UInt32, {8, 200, 2}))},
        });
    // Where the angles do not go round, the distance has no rows to add, and sees the whole accumulator.
    setSample(*plane, 1, 3, 1);
    EXPECT_EQ(1u,
              houghLines2d(plane, Params::createNode(1.0, 0.0, 3.0, 60u, 0.0f), Extraction::createNode(1, 0.5, 4294967295u))
                  .first->size());
}

}  // namespace
}  // namespace orvik::test
