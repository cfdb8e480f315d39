// Lines of planes: where they are found, which bins become lines, the calls.

#include "FamilyShapes.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/HoughLines2d/HoughLines2dLvl1.h"
#include "Processor/HoughLines2d/HoughLines2dLvl2.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"

#include "frame/core/ActionProvider.h"

namespace orvik::test { namespace {

using namespace image;
using namespace imaproc::attr;
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

/// Draws lines of that angle through points in the middle and beside it: each is listed once, within a bin of 1 pixel and
/// 1 degree, of which theta + pi is the same with -rho.
void expectDrawnLines(unsigned long sizeX, unsigned long sizeY, double degrees,
                      const boost::shared_ptr<const Params>& params)
{
    const double theta = degrees * kPi / 180;
    const ImagePtr plane = blank(sizeX, sizeY);
    Numbers rhos;
    for (const double offset : {-25.0, 0.0, 31.0}) {
        rhos.push_back(offset + std::floor(sizeX / 2.0) * std::cos(theta) + std::floor(sizeY / 2.0) * std::sin(theta));
        draw(*plane, rhos.back(), theta);
    }
    const Numbers found = numbersOf(houghLines2d(plane, params, nullptr).first);
    EXPECT_EQ(3.0, found[0]);
    for (const double rho : rhos) {
        int nbSame = 0;
        for (std::size_t i = 1; i < found.size(); i += 3)
            for (const double turn : {-kPi, 0.0, kPi})
                nbSame += std::fabs(found[i + 1] - theta + turn) <= kPi / 180
                          && std::fabs(found[i] - (turn == 0.0 ? rho : -rho)) <= 1.0;
        EXPECT_EQ(1, nbSame) << sizeX << " x " << sizeY << ", " << degrees << " degrees, rho " << rho;
    }
}

TEST(HoughLines, DrawnOnesAreListedOnceEachWithinOneBin)
{
    for (const double degrees : {0.0, 0.3, 0.5, 1.0, 7.2, 30.0, 45.0, 60.4, 89.6, 90.0, 90.3, 120.0, 135.0, 150.7, 172.9,
                                 178.0, 179.0, 179.5, 179.8})
        for (const unsigned long sizeX : {120ul, 121ul})
            for (const unsigned long sizeY : {100ul, 101ul})
                expectDrawnLines(sizeX, sizeY, degrees, nullptr);
    for (const double degrees : {0.1, 33.3, 91.0, 179.9})
        expectDrawnLines(201, 200, degrees, Params::createNode(0.5, 0.0, kPi, 720u, 0.0f));
}

bool isCyclic(const Params& params)
{
    return params.get<Params::ThetaMin>() <= 0 && params.get<Params::ThetaMax>() >= kPi;
}

/// The lines from their definition, given the votes.
Numbers expectedLines(const BaseImage& plane, const ImagePtr& accumulator, const Params& params,
                      const Extraction& extraction)
{
    const double rhoStep = params.get<Params::RhoStep>(), thetaMin = params.get<Params::ThetaMin>();
    const double nbAngles = params.get<Params::NbThetaBins>(),
                 thetaStep = (params.get<Params::ThetaMax>() - thetaMin) / nbAngles;
    const unsigned int dist = extraction.get<Extraction::PeakDist>();
    double threshold = extraction.get<Extraction::Threshold>();
    Numbers bins;
    forEachSample(accumulator->getGeometry().getSizes(), [&](auto... at) { bins.push_back(sampleAt(*accumulator, at...)); });
    std::sort(bins.begin(), bins.end());
    if (extraction.get<Extraction::ThresholdType>() == eHLTT_Ratio)
        threshold *= bins.back();
    else if (extraction.get<Extraction::ThresholdType>() == eHLTT_Quantile)
        threshold = bins[static_cast<std::size_t>(
            std::max(0.0, std::ceil(std::min(threshold, 1.0) * static_cast<double>(bins.size())) - 1))];
    const double centreX = static_cast<double>(plane.getSizeX() / 2), centreY = static_cast<double>(plane.getSizeY() / 2);
    const double halfRho = static_cast<double>(accumulator->getSizeX() / 2);
    const auto peaks = extractLocalExtrema2d(accumulator, dist, dist, createLocalExtremaConfig(eLET_Maxima, threshold));
    Numbers lines = {0};
    for (std::size_t i = 0; i < peaks->size(); ++i) {
        double x = (*peaks)[i].get<Pixel2d::X>(), y = (*peaks)[i].get<Pixel2d::Y>();
        if (isCyclic(params) && (y < dist || y >= dist + nbAngles))
            continue;
        const bool mirrored = isCyclic(params) && y >= nbAngles;
        y -= mirrored ? nbAngles : 0;
        x = mirrored ? 2 * halfRho - 1 - x : x;
        const double angle = y * thetaStep + thetaMin, theta = isCyclic(params) ? std::fmod(angle, kPi) : angle;
        append(lines, {rhoStep * (x - halfRho) + centreX * std::cos(theta) + centreY * std::sin(theta), theta,
                       (*peaks)[i].get<Pixel2d::Value>()});
        ++lines[0];
    }
    return lines;
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
                EXPECT_TRUE(same(expectedLines(*plane, accumulator, *params, *extraction), numbersOf(lines)));
            }
}

TEST(HoughLines, OfNothingAreNone)
{
    const ImagePtr plane = picture(eIBT_UInt8, 82);
    for (const int kind : {0, 1, 2}) {
        for (const eImageBufferType type : {eIBT_UInt8, eIBT_Int32, eIBT_Real32})
            EXPECT_EQ(
                0u, houghLines2d(createImage(type, {30, 20}), nullptr, Extraction::createNode(kind, 0.5, 3u)).first->size());
        EXPECT_EQ(0u, houghLines2d(plane, nullptr, Extraction::createNode(kind, kNan, 3u)).first->size());
    }
    EXPECT_EQ(0u, houghLines2d(plane, Params::createNode(kNan, 0.0, kPi, 18u, 0.0f), nullptr).first->size());
}

TEST(HoughLines, AreTheSameByEveryCallForStripsAndThreads)
{
    const ImagePtr drawn = createImage(eIBT_Int16, {90, 77, 2});
    draw(*drawn->getView(PlanIndex(0, 0, 0), 1), 30, 0.3);
    draw(*drawn->getView(PlanIndex(1, 0, 0), 1), 40, 1.3);
    const GuardedImage guarded(*drawn, 3);
    const ImagePtr &stack = guarded.get(), plane = drawn->getView(PlanIndex(1, 0, 0), 1);
    const auto params = Params::createNode(0.8, 0.0, kPi, 120u, 0.0f);
    const auto extraction = Extraction::createNode(eHLTT_Absolute, 20.0, 6u);
    const auto one = numbersOf(houghLines2d(plane)), chosen = numbersOf(houghLines2d(plane, params, extraction));
    const auto lines = planeByPlane(drawn, [](const ImagePtr& each) { return houghLines2d(each).first; });
    const auto votes = planeByPlane(drawn, [](const ImagePtr& each) { return houghLines2d(each).second; });
    const auto some =
        planeByPlane(drawn, [&](const ImagePtr& each) { return houghLines2d(each, params, extraction).first; });
    expectSameForStripsAndThreads([&] {
        const auto all = multiSlice_houghLines2d(stack), allChosen = multiSlice_houghLines2d(stack, params, extraction);
        const auto started = getAsyncProcessorMultiSliceOutput(multiSlice_houghLines2d_async(stack));
        const auto startedChosen =
            getAsyncProcessorMultiSliceOutput(multiSlice_houghLines2d_async(stack, params, extraction));
        return std::vector<Call>{{one, houghLines2d(plane)},
                                 {one, houghLines2d(plane, nullptr, nullptr)},
                                 {one, houghLines2d_async(plane)},
                                 {chosen, houghLines2d(plane, params, extraction)},
                                 {chosen, houghLines2d_async(plane, params, extraction)},
                                 {lines, all.first},
                                 {votes, all.second},
                                 {lines, started.first},
                                 {votes, started.second},
                                 {some, allChosen.first},
                                 {some, startedChosen.first}};
    });
}

TEST(HoughLines, MayBeRunAgainAndIntoACallersAccumulator)
{
    const ImagePtr plane = picture(eIBT_Int8, 84), given = randomImage(eIBT_Int32, {120, 200}, 85);
    const auto lines = processor::createInitialised<HoughLines2dLvl1>();
    lines->set<InGreyImg2d>(plane);
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
    const ImagePtr plane = blank(5, 4), stack = blank(5, 4, 2), given = createImage(eIBT_UInt32, {8, 200});
    const ImagePtr inside = wrapBuffer(given->accessLine(199), eIBT_UInt32, {5, 4}, ImageStrides(), given);
    const auto with = [&](const boost::shared_ptr<const Params>& params, unsigned int dist) {
        return [=] { houghLines2d(plane, params, Extraction::createNode(1, 0.5, dist)); };
    };
    const auto into = [&](const ImagePtr& in, const ImagePtr& accumulator) {
        return [=] { ran<HoughLines2dLvl1, InGreyImg2d, OutOptImg>(in, accumulator); };
    };
    const std::string plans =
        "failed: entries of OutPIHoughLines2dPpties are the planes (z, c, t) of InGreyImg2d: 1 entries, 2 planes";
    const std::string bins = "bins along rho and along theta: 8 along rho, ";
    expectRefusals(
        {given},
        {
            {"HoughLines2dLvl1 refuses to run: mandatory attribute InGreyImg2d has no value (unset or null)",
             into(nullptr, given)},
            {plans, [&] { houghLines2d(stack); }},
            {plans, [&] { getAsyncProcessorOutput(houghLines2d_async(stack)); }},
            {bins + "8589934770 along theta", with(nullptr, 4294967295u)},
            {bins + "0 along theta", with(Params::createNode(1.0, 0.0, 4.0, 0u, 0.0f), 1)},
            {"Y 180 against 200", into(plane, createImage(eIBT_UInt32, {8, 180}))},
            {"X 9 against 8", into(plane, createImage(eIBT_UInt32, {9, 200}))},
            {"failed: buffer type, of OutOptImg", into(plane, blank(8, 200))},
            {"failed: number of planes", into(plane, createImage(eIBT_UInt32, {8, 200, 2}))},
            {"failed: memory of InGreyImg2d", into(inside, given)},
            {"A null processor can't be run", [] { getAsyncProcessorOutput(boost::shared_ptr<HoughLines2dLvl1>()); }},
        });
    // Where the angles do not go round, the distance has no rows to add, and sees the whole accumulator.
    setSample(*plane, 1, 3, 1);
    EXPECT_EQ(1u,
              houghLines2d(plane, Params::createNode(1.0, 0.0, 3.0, 60u, 0.0f), Extraction::createNode(1, 0.5, 4294967295u))
                  .first->size());
}

}  // namespace
}  // namespace orvik::test
