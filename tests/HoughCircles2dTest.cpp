// Circles as lists: peaks of two components, radii of given centres, by trying and by phase, the whole search, its truths on
// drawn discs, what is refused. The scores have tests of their own.

#include "InstructionSets.h"
#include "Rings.h"

#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dLvl1.h"
#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl1.h"
#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl3.h"
#include "Processor/ExtractHoughPeaks2d/GradMagSquare.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgLvl1.h"
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgLvl3.h"
#include "Processor/HoughCircles2d/HoughCircles2dLvl1.h"
#include "Processor/HoughCircles2d/HoughCircles2dLvl2.h"
#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl1.h"
#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"

#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

const unsigned int kAll = NumericLimits<unsigned int>::s_max;
typedef HoughCircle2dPpties Circle;

// --- peaks of two components

Numbers definedPeaks(const BaseImage& gx, const BaseImage& gy, double lowest)
{
    const long sizeX = static_cast<long>(gx.getSizeX()), sizeY = static_cast<long>(gx.getSizeY());
    const auto modulus = [&](long x, long y) {
        if (x < 0 || y < 0 || x >= sizeX || y >= sizeY)
            return 0.0f;
        const float a = static_cast<float>(sampleAt(gx, static_cast<unsigned long>(x), static_cast<unsigned long>(y)));
        const float b = static_cast<float>(sampleAt(gy, static_cast<unsigned long>(x), static_cast<unsigned long>(y)));
        return std::sqrt(a * a + b * b);
    };
    struct Peak
    {
        double x, y, value;
    };
    std::vector<Peak> peaks;
    for (long y = 0; y < sizeY; ++y)
        for (long x = 0; x < sizeX; ++x) {
            const float m = modulus(x, y);
            bool isPeak = m >= static_cast<float>(lowest);
            for (long k = 0; k < 9; ++k)
                isPeak = isPeak && (k == 4 || m > modulus(x - 1 + k % 3, y - 1 + k / 3));
            if (isPeak)
                peaks.push_back({static_cast<double>(x), static_cast<double>(y), m});
        }
    std::sort(peaks.begin(), peaks.end(), [](const Peak& a, const Peak& b) { return a.value > b.value; });
    Numbers numbers = {static_cast<double>(peaks.size())};
    for (const Peak& peak : peaks)
        append(numbers, {peak.x, peak.y, peak.value});
    return numbers;
}

class PeaksKernel : public KernelTest<ExtractHoughPeaks2dLvl3>
{
};
INSTANTIATE_TEST_SUITE_P(AllKernels, PeaksKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(PeaksKernel, ListsWhatTheDefinitionSaysEqualOnesAsTheSortLeavesThem)
{
    for (const unsigned long width : kWidths) {
        const ImageSizes sizes(width, 1 + width % 13);
        const ImagePtr gx = drawnImage(type(), sizes, {0, 3, 4, 5}, 1), gy = drawnImage(type(), sizes, {0, 3, 4}, 2);
        EXPECT_TRUE(same(definedPeaks(*gx, *gy, 4.0), numbersOf(extractHoughPeaks2d(gx, gy, 4.0)))) << width;
    }
    const ImagePtr gx = drawnImage(type(), {130, 40}, oddValues(type()), 3), gy = randomImage(type(), {130, 40}, 4);
    for (const double lowest : {0.0, 5.0, -1.0, kNan, kInfinity})
        EXPECT_TRUE(same(definedPeaks(*gx, *gy, lowest), numbersOf(extractHoughPeaks2d(gx, gy, lowest)))) << lowest;
}

TEST(HoughPeaks, FormTheLastModulusOfWholeNumbersByWrappingSums)
{
    alignas(64) short x[64] = {}, y[64] = {};
    alignas(64) unsigned int wideX[64] = {}, wideY[64] = {};
    alignas(64) float moduli[64];
    x[0] = x[1] = y[0] = y[1] = 3;
    imaproc::fd::computeGradMagSquare(x, y, moduli, 2);
    EXPECT_EQ(std::sqrt(18.0f), moduli[0]);
    EXPECT_EQ(static_cast<float>(std::sqrt(18.0)), moduli[1]);
    wideX[0] = wideX[1] = 65536;
    wideY[0] = wideY[1] = 1;
    imaproc::fd::computeGradMagSquare(wideX, wideY, moduli, 2);
    EXPECT_EQ(65536.0f, moduli[0]);
    EXPECT_EQ(1.0f, moduli[1]) << "2^32 + 1 wraps to 1";
    alignas(64) float real[64] = {3e19f, 3e19f};
    imaproc::fd::computeGradMagSquare(real, real, moduli, 2);
    EXPECT_EQ(kInfinity, moduli[1]) << "floats are all formed alike";
}

TEST(HoughPeaks, OfStacksAreThoseOfEachPlaneOrOfTheFirst)
{
    const ImagePtr gx = drawnImage(eIBT_Int16, {70, 50, 2, 1, 2}, {-3, -1, 0, 2, 7}, 6),
                   gy = gx->getView(PlanIndex(1, 0, 0), 1);
    Numbers ofAll;
    forEachSample({1, 1, 2, 1, 2}, [&](auto, auto, auto... at) {
        append(ofAll, definedPeaks(*gx->getView(PlanIndex(at...), 1), *gx->getView(PlanIndex(at...), 1), 3.0));
    });
    EXPECT_TRUE(same(ofAll, numbersOf(multiSlice_extractHoughPeaks2d(gx, gx, 3.0))));
    EXPECT_TRUE(same(definedPeaks(*gx->getView(PlanIndex(), 1), *gy, 3.0), numbersOf(extractHoughPeaks2d(gx, gy, 3.0))));
    EXPECT_EQ("ExtractHoughPeaks2dLvl3: the lines of the strips differ in length: 70 and 69 samples",
              refusalOf([&] { extractHoughPeaks2d(gy, blank(69, 50, 1, 1, eIBT_Int16), 0.0); }));
}

// --- radii of given centres

/// Centres within, beyond and between pixels, some twice, and others that are none.
Ptr<Pixels2d> centersFor(const ImageSizes& sizes, unsigned int seed)
{
    const auto centers = Pixels2d::createNode();
    std::mt19937 random(seed);
    const auto add = [&](double x, double y) {
        centers->access<Pixels2d::Coll>().push_back(Pixel2d::createNode(x, y, static_cast<double>(centers->size())));
    };
    for (int i = 0; i < 12; ++i)
        add(static_cast<double>(random() % sizes.x), static_cast<double>(random() % sizes.y));
    const double x = static_cast<double>(sizes.x), y = static_cast<double>(sizes.y);
    const std::pair<double, double> odd[] = {{3.5, 3.49},  {3.49, 3.5},      {-0.4, 0.0},    {-0.6, 1}, {x - 0.51, y - 0.51},
                                             {x - 0.5, 2}, {2, y - 0.5},     {kNan, 3},      {3, kNan}, {1e300, 2},
                                             {2, 1e300},   {-1e300, -1e300}, {kInfinity, 1}, {3, 3},    {3, 3}};
    for (const auto& [atX, atY] : odd)
        add(atX, atY);
    return centers;
}

/// The circle of each centre that lies on a pixel (x, y), with the radius that `radiusAt` gives; NaN for empty places.
template<class RadiusAt>
Numbers definedCircles(const Pixels2d& centers, const ImageSizes& sizes, const RadiusAt& radiusAt)
{
    Numbers circles = {static_cast<double>(centers.size())};
    for (std::size_t i = 0; i < centers.size(); ++i) {
        const double x = centers[i].get<Pixel2d::X>(), y = centers[i].get<Pixel2d::Y>();
        const double column = std::trunc(x + 0.5), line = std::trunc(y + 0.5);
        const bool isInside = column >= 0 && line >= 0 && column < static_cast<double>(sizes.x)
                              && line < static_cast<double>(sizes.y);
        append(circles, isInside ? Numbers{x, y, radiusAt(static_cast<long>(column), static_cast<long>(line)),
                                           centers[i].get<Pixel2d::Value>()}
                                 : Numbers{kNan});
    }
    return circles;
}

double definedRadius(const DefinedGradients& gradients, const std::vector<DefinedPlace>& places, long x, long y,
                     const RingOptions& o)
{
    const float c = static_cast<float>(std::cos(o.angle));
    std::map<long, double> sums;
    std::map<long, unsigned int> counts;
    for (const DefinedPlace& place : places) {
        const auto [d, magnitude] = gradients.at(x, y, place, o.type);
        const float w = (d - c) / (1.0f - c);
        const long r = static_cast<long>(place.radius);
        sums[r] += w > 0 && 1.0f - c != 0.0f ? static_cast<double>(w * magnitude) : 0.0;
        ++counts[r];
    }
    long best = o.minRadius;
    double highest = 0;
    for (const auto& [r, count] : counts)
        if (sums[r] / count > highest) {
            highest = sums[r] / count;
            best = r;
        }
    return static_cast<double>(best);
}

TEST(CircleRadii, AreTheBestOfAllForStripsAndThreads)
{
    const ImageSizes sizes(60, 41);
    const auto centers = centersFor(sizes, 7);
    const RingOptions all[] = {{3, 12, eCIT_Both, 0.4, kAll}, {1, 30, eCIT_Outward, 0.2, 9}, {5, 5, eCIT_Inward, 0.3, kAll},
                               {2, 6, eCIT_Both, 2.0, kAll},  {2, 6, eCIT_Both, 0.0, kAll},  {2, 6, eCIT_Both, 0.3, 0},
                               {9, 4, eCIT_Both, 0.3, kAll},  {-3, 4, eCIT_Both, 1.0, kAll}};
    unsigned int seed = 8;
    for (const eImageBufferType type : {eIBT_Int8, eIBT_UInt16, eIBT_Int32, eIBT_Real32}) {
        const GuardedImage gx(*randomImage(type, sizes, seed++), 3);
        const ImagePtr gy = drawnImage(type, sizes, oddValues(type), seed++);
        const DefinedGradients gradients(*gx.get(), *gy);
        for (const RingOptions& o : all) {
            const auto places = placesOf(o);
            const Numbers expected =
                definedCircles(*centers, sizes, [&](long x, long y) { return definedRadius(gradients, places, x, y, o); });
            const auto range = createHoughCirclesRadiusRange(o.minRadius, o.maxRadius);
            for (const unsigned long grain : {0ul, 1ul, 7ul}) {
                const WithGrain lines(grain);
                const WithThreads threads(grain == 7 ? 3 : 1);
                const auto list = HoughCircles2dPpties::createNode();
                computeBestCirclesRadiiFromGradMagImg2d(gx.get(), gy, o.type, range, o.angle, o.nbPts, centers, list);
                EXPECT_TRUE(same(expected, numbersOf(list))) << "radii " << o.minRadius << " to " << o.maxRadius;
            }
        }
    }
}

class PhaseKernel : public KernelTest<ExtractRadiusFromHoughImgLvl3>
{
};
INSTANTIATE_TEST_SUITE_P(AllKernels, PhaseKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(PhaseKernel, ReadsRadiiFromAnglesForStripsAndThreads)
{
    const ImageSizes sizes(70, 31);
    const auto centers = centersFor(sizes, 9);
    const ImagePtr re = drawnImage(type(), sizes, {0, 1, 5, -4, -1}, 10), im = drawnImage(type(), sizes, {0, 2, -2, 7}, 11);
    for (const auto& [min, max] : {std::make_pair(3l, 20l), std::make_pair(5l, 5l)}) {
        const Numbers expected = definedCircles(*centers, sizes, [&, min = min, max = max](long x, long y) {
            double a = std::atan2(sampleAt(*im, static_cast<unsigned long>(x), static_cast<unsigned long>(y)),
                                  sampleAt(*re, static_cast<unsigned long>(x), static_cast<unsigned long>(y)));
            a += a < 0 ? 6.283185307179586 : 0.0;
            return static_cast<double>(max - min) * a * 0.5 / 3.141592653589793 + static_cast<double>(min);
        });
        for (const unsigned long grain : {0ul, 1ul, 7ul}) {
            const WithGrain lines(grain);
            const auto list = HoughCircles2dPpties::createNode();
            extractRadiusFromHoughImg2d(re, im, centers, createHoughCirclesRadiusRange(min, max), list);
            EXPECT_TRUE(same(expected, numbersOf(list)));
        }
    }
}

// --- the whole search

struct SearchOptions
{
    RingOptions rings;
    eHoughCircles2dAlgoMethod method;
    double absolute, ratio;
    bool isRemoved;
    double factor;
};

/// The search put together from its stages, each of which has tests of its own.
Numbers stageByStage(const ImagePtr& gx, const ImagePtr& gy, const SearchOptions& o)
{
    const RingOptions rings = narrowed(o.rings, *gx);
    const auto range = createHoughCirclesRadiusRange(rings.minRadius, rings.maxRadius);
    const auto list = HoughCircles2dPpties::createNode();
    const ImagePtr re = createImageLike(*gx, eIBT_Real32), im = createImageLike(*gx, eIBT_Real32);
    double threshold = o.absolute;
    if (o.method == eHCAM_PhaseCoded) {
        houghCirclesPhaseCoded2dImg(gx, gy, range, rings.type, rings.angle, rings.nbPts, re, im);
        if (o.ratio > NumericLimits<double>::s_eps)
            threshold = std::max(threshold, o.ratio * maxL2Norm2Msr(re, im));
        extractRadiusFromHoughImg2d(re, im, extractHoughPeaks2d(re, im, threshold), range, list);
    } else {
        houghCircles2dImg(gx, gy, range, rings.type, rings.angle, rings.nbPts, re);
        const Numbers scores = numbersOf(re);
        if (o.ratio > NumericLimits<double>::s_eps)
            threshold = std::max(threshold, o.ratio * *std::max_element(scores.begin() + 3, scores.end()));
        computeBestCirclesRadiiFromGradMagImg2d(
            gx, gy, rings.type, range, rings.angle, rings.nbPts,
            extractLocalExtrema2d(re, 1, 1, createLocalExtremaConfig(eLET_StrictMaxima, threshold)), list);
    }
    return o.isRemoved ? withoutTooClose(numbersOf(list), 4, o.factor) : numbersOf(list);
}

TEST(HoughCircles2d, IsItsStages)
{
    const GuardedImage guarded(*randomImage(eIBT_UInt8, {90, 71, 2, 1, 2}, 12), 3);
    const ImagePtr& stack = guarded.get();
    const auto [gx, gy] = imaproc::filter::gaussianGradient2dImg(stack, 1.0f);
    const ImagePtr gx1 = gx->getView(PlanIndex(), 1), gy1 = gy->getView(PlanIndex(), 1);
    const SearchOptions byDefault = {{4, 12, eCIT_Both, 0.1, kAll}, eHCAM_Standard, 0.0, 0.5, true, 1.0};
    const SearchOptions chosen = {{4, 12, eCIT_Inward, 0.1, 20}, eHCAM_Standard, 3.0, 0.3, true, 2.0};
    const SearchOptions coded = {{3, 500, eCIT_Both, 0.3, kAll}, eHCAM_PhaseCoded, 0.0, 0.4, true, 0.0};
    const SearchOptions plain = {{3, 9, eCIT_Outward, 0.2, kAll}, eHCAM_Standard, 20.0, 0.0, false, 1.0};
    const auto range = createHoughCirclesRadiusRange(4, 12);
    const Numbers simple = stageByStage(gx1, gy1, byDefault);
    EXPECT_LT(5, simple[0]);
    // Of several planes the first one, by the forms for one.
    EXPECT_TRUE(same(simple, numbersOf(houghCircles2d(stack, range))));
    EXPECT_TRUE(same(simple, numbersOf(houghCircles2d(gx, gy, range))));
    EXPECT_TRUE(same(stageByStage(gx1, gy1, chosen),
                     numbersOf(houghCircles2d(stack, range, eCIT_Inward, 20, AccumIntensityThreshold::createNode(3.0, 0.3),
                                              RemoveTooCloseCirclesParams::createNode(true, 2.0)))));
    Numbers ofAll;
    forEachSample({1, 1, 2, 1, 2}, [&](auto, auto, auto... at) {
        append(ofAll, stageByStage(gx->getView(PlanIndex(at...), 1), gy->getView(PlanIndex(at...), 1), byDefault));
    });
    EXPECT_TRUE(same(ofAll, numbersOf(multiSlice_houghCircles2d(stack, range))));
    EXPECT_TRUE(same(ofAll, numbersOf(multiSlice_houghCircles2d(gx, gy, range))));
    for (const SearchOptions& o : {coded, plain}) {
        const ImagePtr re = createImageLike(*gx1, eIBT_Real32), im = createImageLike(*gx1, eIBT_Real32);
        const auto call = [&](const ImagePtr& scores, const ImagePtr& other) {
            return houghCircles2d(gx1, gy1, createHoughCirclesRadiusRange(o.rings.minRadius, o.rings.maxRadius), o.method,
                                  o.rings.type, o.rings.angle, o.rings.nbPts,
                                  AccumIntensityThreshold::createNode(o.absolute, o.ratio),
                                  RemoveTooCloseCirclesParams::createNode(o.isRemoved, o.factor), scores, other);
        };
        const Numbers expected = stageByStage(gx1, gy1, o);
        EXPECT_LT(2, expected[0]);
        EXPECT_TRUE(same(expected, numbersOf(call(re, im))));
        EXPECT_TRUE(same(expected, numbersOf(call(nullptr, nullptr))));
        const bool isWritten = o.method == eHCAM_PhaseCoded;
        EXPECT_EQ(!isWritten, same(numbersOf(createImageLike(*gx1, eIBT_Real32)), numbersOf(im)));
    }
}

TEST(HoughCircles2d, GivesNothingWhereNothingCounts)
{
    const ImagePtr image = randomImage(eIBT_UInt8, {40, 30}, 13);
    const auto range = createHoughCirclesRadiusRange(3, 8);
    const auto nbFound = [&](unsigned int nbPts, double absolute, double ratio) {
        return houghCircles2d(image, range, eCIT_Both, nbPts, AccumIntensityThreshold::createNode(absolute, ratio), nullptr)
            ->size();
    };
    EXPECT_EQ(0u, houghCircles2d(blank(40, 30), range)->size());
    EXPECT_EQ(0u, nbFound(0, 0, 0.5));
    EXPECT_EQ(0u, nbFound(kAll, kNan, 0.0));
    EXPECT_EQ(0u, nbFound(kAll, 1e30, 0.5));
    EXPECT_LT(0u, nbFound(kAll, 0.0, kNan));
    EXPECT_EQ(0u, houghCircles2d(image, createHoughCirclesRadiusRange(9, 5))->size());
    // Divided by the width of the range, no score is a number.
    const auto [gx, gy] = imaproc::filter::gaussianGradient2dImg(image, 1.0f);
    EXPECT_EQ(0u, houghCircles2d(gx, gy, createHoughCirclesRadiusRange(5, 5), eHCAM_PhaseCoded, eCIT_Both, 0.1, kAll,
                                 nullptr, nullptr, nullptr, nullptr)
                      ->size());
}

TEST(HoughCircles2d, RefusesWhatDoesNotFitInWords)
{
    const ImagePtr image = blank(9, 8), gx = blank(9, 8, 1, 1, eIBT_Real32), other = blank(8, 8, 1, 1, eIBT_Real32);
    const auto range = createHoughCirclesRadiusRange(1, 3);
    const auto into = [&](const ImagePtr& x, const ImagePtr& y, const ImagePtr& re) {
        return [=] { houghCircles2d(x, y, range, eHCAM_Standard, eCIT_Both, 0.1, kAll, nullptr, nullptr, re, nullptr); };
    };
    const std::string by = "HoughCircles2dLvl1 refuses to run:";
    expectRefusals(
        {image, gx, other},
        {{"failed: InOptGxGreyImg2d", [&] { houghCircles2d(nullptr, range); }},
         {"failed: InOptGyGreyImg2d", into(gx, nullptr, nullptr)},
         {"InOptGxGreyImg2d",
          [&] { ran<HoughCircles2dLvl1, InOptGreyImg2d, InOptGxGreyImg2d, InOptGyGreyImg2d>(image, gx, copyOf(*gx)); }},
         {"equals that of InOptGyGreyImg2d (8 x 8 x 1 x 1 x 1)", into(gx, other, nullptr)},
         {"equals that of OutOptRealImg1 (8 x 8 x 1 x 1 x 1)", into(gx, copyOf(*gx), other)},
         {"failed: buffer type, of OutOptRealImg1", into(gx, copyOf(*gx), image)},
         {"OutOptRealImg1 shares memory with InOptGxGreyImg2d", into(gx, copyOf(*gx), gx)},
         {"MaxRadius", [&] { houghCircles2d(image, createHoughCirclesRadiusRange(-9, -3)); }}},
        by);
    // Rings that can't be held: the image is never touched.
    unsigned char none = 0;
    const ImagePtr huge = wrapBuffer(static_cast<void*>(&none), eIBT_UInt8, {100000, 100000}, ImageStrides(0, 0, 0, 0));
    EXPECT_NE(
        std::string::npos,
        refusalOf([&] {
            ran<ComputeBestCirclesRadiiFromGradMagImg2dLvl1, InGxSingleGreyImg2d, InGySingleGreyImg2d, InMaxAngleWithGradDir,
                InNbMaxPtsPerCircle, InHoughCircles2dCenters, InHoughCirclesRadiusRange, OutHoughCircles2dPpties>(
                image, image, 0.1, kAll, Pixels2d::createNode(), createHoughCirclesRadiusRange(1, 40000),
                HoughCircles2dPpties::createNode());
        }).find("bytes, more than can be held"));
}

// --- truths

struct Disc
{
    double x, y, radius;
};

/// Discs apart from one another on a ground of 100, brighter or darker by 60, their rims a pixel wide, with noise.
ImagePtr drawDiscs(const std::vector<Disc>& discs, unsigned long size, double step, double noise, unsigned int seed)
{
    const ImagePtr image = createImage(eIBT_Real32, {size, size});
    std::mt19937 random(seed);
    std::normal_distribution<double> deviation(0.0, 1.0);
    forEachSample({size, size}, [&](auto x, auto y, auto...) {
        double value = 100;
        for (const Disc& disc : discs) {
            const double distance = std::hypot(static_cast<double>(x) - disc.x, static_cast<double>(y) - disc.y);
            value += step * std::clamp(disc.radius - distance + 0.5, 0.0, 1.0);
        }
        setSample(*image, value + noise * deviation(random), x, y);
    });
    return image;
}

TEST(HoughCircles2d, FindsDrawnDiscsAndNothingElse)
{
    std::mt19937 random(14);
    std::vector<Disc> discs;
    for (int i = 0; i < 12; ++i) {
        const auto part = [&] { return static_cast<double>(random() % 1000) / 1000; };
        discs.push_back({70.0 + 124.0 * (i % 4) + 4 * part(), 80.0 + 170.0 * (i / 4) + 4 * part(), 10 + 30 * part()});
    }
    for (const bool isBright : {true, false}) {
        const ImagePtr image = drawDiscs(discs, 512, isBright ? 60 : -60, 10, 15);
        const auto circles = houghCircles2d(image, createHoughCirclesRadiusRange(8, 45),
                                            isBright ? eCIT_Inward : eCIT_Outward, kAll, nullptr, nullptr);
        ASSERT_EQ(discs.size(), circles->size());
        for (const Disc& disc : discs) {
            double nearest = 1e9, radius = 0;
            for (std::size_t i = 0; i < circles->size(); ++i) {
                const Circle& circle = (*circles)[i];
                const double distance = std::hypot(circle.get<Circle::X>() - disc.x, circle.get<Circle::Y>() - disc.y);
                if (distance < nearest)
                    radius = circle.get<Circle::Radius>();
                nearest = std::min(nearest, distance);
            }
            EXPECT_GT(1.5, nearest) << disc.x << ", " << disc.y;
            EXPECT_NEAR(disc.radius - 0.5, radius, 1.5);
        }
    }
}

}  // namespace
}  // namespace orvik::test
