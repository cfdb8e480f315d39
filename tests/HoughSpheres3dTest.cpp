// Spheres as lists: radii of given centres, the whole search, its truths on drawn beads, what is refused. The scores have tests
// of their own.

#include "Shells.h"

#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ComputeBestSpheresRadiiFromGradMagImg3dLvl1.h"
#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl1.h"
#include "Processor/HoughSpheres3d/HoughSpheres3dLvl1.h"
#include "Processor/HoughSpheres3d/HoughSpheres3dLvl2.h"
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl1.h"

#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

const unsigned int kAll = NumericLimits<unsigned int>::s_max;
typedef HoughSphere3dPpties Sphere;
typedef std::tuple<ImagePtr, ImagePtr, ImagePtr> Gradients;

Ptr<HoughCirclesRadiusRange> rangeOf(const RingOptions& o)
{
    return createHoughCirclesRadiusRange(o.minRadius, o.maxRadius);
}

// --- radii of given centres

/// Centres within, beyond and between voxels, some twice, and others that are none.
Ptr<Voxels3d> centersFor(const ImageSizes& sizes, unsigned int seed)
{
    const auto centers = Voxels3d::createNode();
    std::mt19937 random(seed);
    const auto add = [&](double x, double y, double z) {
        centers->access<Voxels3d::Coll>().push_back(Voxel3d::createNode(x, y, z, static_cast<double>(centers->size())));
    };
    const auto below = [&](unsigned long size) { return static_cast<double>(random() % size); };
    for (int i = 0; i < 8; ++i)
        add(below(sizes.x), below(sizes.y), below(sizes.z));
    const double x = static_cast<double>(sizes.x), y = static_cast<double>(sizes.y), z = static_cast<double>(sizes.z);
    const std::array<double, 3> odd[] = {
        {3.5, 3.49, 4.5},     {-0.4, 0, -0.6}, {-1.6, 1, 1},   {x - 0.51, y - 0.51, z - 0.51},
        {x - 0.5, 2, 2},      {2, y - 0.5, 2}, {2, 2, z},      {kNan, 3, 3},
        {3, 3, kNan},         {1e300, 2, 2},   {2, -1e300, 2}, {3, kInfinity, 1},
        {4294967299.0, 3, 3}, {3, 3, 3},       {3, 3, 3}};
    for (const auto& [atX, atY, atZ] : odd)
        add(atX, atY, atZ);
    return centers;
}

double definedRadius(const DefinedVolume& gradients, const std::vector<DefinedShellPlace>& places, double x, double y,
                     double z, const RingOptions& o)
{
    const float c = static_cast<float>(std::cos(o.angle));
    std::map<long, double> sums;
    std::map<long, unsigned int> counts;
    for (const DefinedShellPlace& place : places) {
        const auto [d, magnitude] = gradients.at(static_cast<unsigned long>(x), static_cast<unsigned long>(y),
                                                 static_cast<unsigned long>(z), place, o.type);
        const float w = (d - c) / (1.0f - c);
        const long r = static_cast<long>(static_cast<double>(place.radius) + 0.5);
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

/// The sphere of each centre that lies on a voxel; NaN for empty places.
Numbers definedSpheres(const Voxels3d& centers, const ImageSizes& sizes, const DefinedVolume& gradients,
                       const RingOptions& o)
{
    const auto places = shellPlacesOf(o);
    Numbers spheres = {static_cast<double>(centers.size())};
    for (std::size_t i = 0; i < centers.size(); ++i) {
        const Numbers center = numbersOf(centers[i]);
        const double x = std::trunc(center[0] + 0.5), y = std::trunc(center[1] + 0.5), z = std::trunc(center[2] + 0.5);
        const bool isInside = x >= 0 && y >= 0 && z >= 0 && x < static_cast<double>(sizes.x)
                              && y < static_cast<double>(sizes.y) && z < static_cast<double>(sizes.z);
        if (isInside)
            append(spheres, {center[0], center[1], center[2], definedRadius(gradients, places, x, y, z, o), center[3]});
        else
            spheres.push_back(kNan);
    }
    return spheres;
}

TEST(SphereRadii, AreTheBestOfAllForStripsAndThreads)
{
    const ImageSizes sizes(20, 13, 11);
    const auto centers = centersFor(sizes, 7);
    const RingOptions all[] = {{3, 7, eCIT_Both, 0.4, kAll}, {1, 15, eCIT_Outward, 0.2, 9}, {5, 5, eCIT_Inward, 0.3, kAll},
                               {2, 6, eCIT_Both, 2.0, kAll}, {2, 6, eCIT_Both, 0.0, kAll},  {2, 6, eCIT_Both, 0.3, 0},
                               {9, 4, eCIT_Both, 0.3, kAll}, {-3, 4, eCIT_Both, 1.0, kAll}};
    unsigned int seed = 8;
    for (const eImageBufferType type :
         {eIBT_Int8, eIBT_UInt8, eIBT_Int16, eIBT_UInt16, eIBT_Int32, eIBT_UInt32, eIBT_Real32}) {
        const GuardedImage gx(*randomImage(type, sizes, seed++), 3);
        const ImagePtr gy = drawnImage(type, sizes, oddValues(type), seed++), gz = randomImage(type, sizes, seed++);
        const DefinedVolume gradients(*gx.get(), *gy, *gz);
        for (const RingOptions& o : all) {
            const Numbers expected = definedSpheres(*centers, sizes, gradients, o);
            for (const unsigned long grain : {0ul, 1ul, 4ul}) {
                const WithGrain slices(grain);
                const WithThreads threads(grain == 4 ? 3 : 1);
                const auto list = HoughSpheres3dPpties::createNode();
                computeBestSpheresRadiiFromGradMagImg3d(gx.get(), gy, gz, o.type, rangeOf(o), o.angle, o.nbPts, centers,
                                                        list);
                EXPECT_TRUE(same(expected, numbersOf(list))) << "radii " << o.minRadius << " to " << o.maxRadius;
            }
        }
    }
}

TEST(SphereRadii, DoNotDependOnTheNumberOfSpheres)
{
    const ImageSizes sizes(16, 15, 14);
    const ImagePtr g = randomImage(eIBT_Int16, sizes, 9);
    const auto radiiWith = [&](unsigned long nbCircles) {
        const auto list = HoughSpheres3dPpties::createNode();
        ran<ComputeBestSpheresRadiiFromGradMagImg3dLvl1, InGxGreyImg3d, InGyGreyImg3d, InGzGreyImg3d, InNbCircles,
            InMaxAngleWithGradDir, InNbMaxPtsPerCircle, InHoughSpheres3dCenters, InHoughCirclesRadiusRange,
            OutHoughSpheres3dPpties>(g, g, g, nbCircles, 0.3, kAll, centersFor(sizes, 3),
                                     createHoughCirclesRadiusRange(1, 6), list);
        return numbersOf(list);
    };
    EXPECT_TRUE(same(radiiWith(0), radiiWith(2)));
}

// --- the whole search

struct SearchOptions
{
    RingOptions shells;
    double absolute, ratio;
    bool isRemoved;
    double factor;
};

/// The search put together from its stages, each of which has tests of its own.
Numbers stageByStage(const Gradients& g, const SearchOptions& o)
{
    const auto& [gx, gy, gz] = g;
    const RingOptions shells = narrowedToVolume(o.shells, *gx);
    const ImagePtr scores = createImageLike(*gx, eIBT_Real32);
    houghSpheres3dImg(gx, gy, gz, rangeOf(shells), shells.type, shells.angle, shells.nbPts, scores);
    double threshold = o.absolute, greatest = 0;
    forEachSample(scores->getGeometry().getSizes(),
                  [&](auto... at) { greatest = std::max(greatest, sampleAt(*scores, at...)); });
    if (o.ratio > NumericLimits<double>::s_eps)
        threshold = std::max(threshold, o.ratio * greatest);
    const auto list = HoughSpheres3dPpties::createNode();
    computeBestSpheresRadiiFromGradMagImg3d(
        gx, gy, gz, shells.type, rangeOf(shells), shells.angle, shells.nbPts,
        extractLocalExtrema3d(scores, 1, 1, 1, createLocalExtremaConfig(eLET_StrictMaxima, threshold)), list);
    return o.isRemoved ? withoutTooClose(numbersOf(list), 5, o.factor) : numbersOf(list);
}

TEST(HoughSpheres3d, IsItsStages)
{
    const GuardedImage guarded(*randomImage(eIBT_UInt8, {34, 27, 24, 2, 2}, 12), 3);
    const ImagePtr& stack = guarded.get();
    const auto gradients = imaproc::filter::gaussianGradient3dImg(stack, 1.0f);
    const auto& [gx, gy, gz] = gradients;
    const auto volume = [](const ImagePtr& image, unsigned long c, unsigned long t) {
        return image->getView(PlanIndex(0, c, t), image->getSizeZ());
    };
    const auto of = [&](unsigned long c, unsigned long t) {
        return Gradients(volume(gx, c, t), volume(gy, c, t), volume(gz, c, t));
    };
    const Gradients first = of(0, 0);
    const SearchOptions byDefault = {{3, 6, eCIT_Both, 0.1, kAll}, 0.0, 0.5, true, 1.0};
    const SearchOptions chosen = {{3, 6, eCIT_Inward, 0.1, 40}, 3.0, 0.3, true, 2.0};
    const SearchOptions wide = {{2, 500, eCIT_Both, 0.3, kAll}, 0.0, 0.4, true, 0.0};
    const SearchOptions plain = {{2, 5, eCIT_Outward, 0.2, kAll}, 1.0, 0.0, false, 1.0};
    const auto range = createHoughCirclesRadiusRange(3, 6);
    const auto threshold = AccumIntensityThreshold::createNode(3.0, 0.3);
    const auto tooClose = RemoveTooCloseCirclesParams::createNode(true, 2.0);
    const auto inward = [&](const SearchOptions& o) {
        SearchOptions turned = o;
        turned.shells.type = eCIT_Inward;
        return stageByStage(first, turned);
    };
    const Numbers simple = stageByStage(first, byDefault), list = stageByStage(first, chosen);
    EXPECT_LT(5, simple[0]);
    EXPECT_LT(5, list[0]);
    // Of several volumes the first one, by the forms for one; no number of spheres changes anything.
    EXPECT_TRUE(same(simple, numbersOf(houghSpheres3d(stack, range))));
    EXPECT_TRUE(same(simple, numbersOf(houghSpheres3d(gx, gy, gz, range))));
    EXPECT_TRUE(same(inward(byDefault), numbersOf(houghSpheres3d(stack, range, eCIT_Inward))));
    EXPECT_TRUE(same(inward(byDefault), numbersOf(houghSpheres3d(stack, range, eCIT_Inward, 1ul))));
    EXPECT_TRUE(same(list, numbersOf(houghSpheres3d(stack, range, eCIT_Inward, 40u, threshold, tooClose))));
    EXPECT_TRUE(same(list, numbersOf(houghSpheres3d_async(stack, range, eCIT_Inward, 7ul, 40u, threshold, tooClose))));
    Numbers ofAll;
    forEachSample({1, 1, 1, 2, 2},
                  [&](auto, auto, auto, auto c, auto t) { append(ofAll, stageByStage(of(c, t), byDefault)); });
    EXPECT_TRUE(same(ofAll, numbersOf(multiSlice_houghSpheres3d(stack, range))));
    EXPECT_TRUE(same(ofAll,
                     numbersOf(getAsyncProcessorMultiSliceOutput(multiSlice_houghSpheres3d_async(gx, gy, gz, range)))));
    for (const SearchOptions& o : {wide, plain}) {
        const ImagePtr scores = createImageLike(*std::get<0>(first), eIBT_Real32);
        for (const ImagePtr& out : {scores, ImagePtr()}) {
            const Numbers expected = stageByStage(first, o);
            EXPECT_LT(2, expected[0]);
            EXPECT_TRUE(same(
                expected, numbersOf(houghSpheres3d(std::get<0>(first), std::get<1>(first), std::get<2>(first),
                                                   rangeOf(o.shells), o.shells.type, 3ul, o.shells.angle, o.shells.nbPts,
                                                   AccumIntensityThreshold::createNode(o.absolute, o.ratio),
                                                   RemoveTooCloseCirclesParams::createNode(o.isRemoved, o.factor), out))));
        }
        EXPECT_FALSE(same(numbersOf(createImageLike(*scores, eIBT_Real32)), numbersOf(scores)));
    }
}

TEST(HoughSpheres3d, GivesNothingWhereNothingCountsAndNeverWritesASecondResult)
{
    const ImagePtr image = randomImage(eIBT_UInt8, {20, 18, 16}, 13), second = randomImage(eIBT_Int16, {20, 18, 16}, 14);
    const auto range = createHoughCirclesRadiusRange(2, 5);
    const auto nbFound = [&](unsigned int nbPts, double absolute, double ratio) {
        return houghSpheres3d(image, range, eCIT_Both, nbPts, AccumIntensityThreshold::createNode(absolute, ratio), nullptr)
            ->size();
    };
    EXPECT_EQ(0u, houghSpheres3d(blank(20, 18, 16), range)->size());
    EXPECT_EQ(0u, nbFound(0, 0, 0.5));
    EXPECT_EQ(0u, nbFound(kAll, kNan, 0.0));
    EXPECT_EQ(0u, nbFound(kAll, 1e30, 0.5));
    EXPECT_LT(0u, nbFound(kAll, 0.0, kNan));
    EXPECT_EQ(0u, houghSpheres3d(image, createHoughCirclesRadiusRange(6, 5))->size());
    const Numbers before = numbersOf(second);
    const auto run =
        ran<HoughSpheres3dLvl1, InOptGreyImg3d, InOptHoughCirclesRadiusRange, OutOptRealImg2>(image, range, second);
    EXPECT_TRUE(same(before, numbersOf(second)));
    EXPECT_TRUE(same(numbersOf(std::get<2>(imaproc::filter::gaussianGradient3dImg(image, 1.0f))),
                     numbersOf(run->getStorage<OutOptGradZImg3d>())));
    // Whatever comes after the stages removes, and is the last.
    processor::ProviderPtr provider;
    const auto level2 = processorWith<HoughSpheres3dLvl2, InRemoveTooCloseCirclesParams, OutHoughSpheres3dPpties>(
        createRemoveTooCloseCirclesParams(), HoughSpheres3dPpties::createNode());
    EXPECT_EQ(processor::eRRT_NoMoreProvider, level2->retrieveProvider(core::BasePriority(), 6, provider).getValue());
}

TEST(HoughSpheres3d, RefusesWhatDoesNotFitInWords)
{
    const ImagePtr image = blank(9, 8, 7), gx = blank(9, 8, 7, 1, eIBT_Real32), gy = copyOf(*gx), gz = copyOf(*gx),
                   other = blank(9, 8, 6, 1, eIBT_Real32);
    const auto range = createHoughCirclesRadiusRange(1, 3);
    const auto into = [&](const ImagePtr& y, const ImagePtr& z, const ImagePtr& scores) {
        return [=] { houghSpheres3d(gx, y, z, range, eCIT_Both, 0ul, 0.1, kAll, nullptr, nullptr, scores); };
    };
    expectRefusals({image, gx, gy, gz, other},
                   {{"failed: InOptGxGreyImg3d", [&] { houghSpheres3d(nullptr, range); }},
                    {"failed: InOptGzGreyImg3d", into(gy, nullptr, nullptr)},
                    {"InOptGzGreyImg3d", [&] { ran<HoughSpheres3dLvl1, InOptGreyImg3d, InOptGzGreyImg3d>(image, gz); }},
                    {"equals that of InOptGzGreyImg3d (9 x 8 x 6 x 1 x 1)", into(gy, other, nullptr)},
                    {"equals that of OutOptRealImg1 (9 x 8 x 6 x 1 x 1)", into(gy, gz, other)},
                    {"equals that of OutOptRealImg2 (9 x 8 x 6 x 1 x 1)",
                     [&] { ran<HoughSpheres3dLvl1, InOptGreyImg3d, OutOptRealImg2>(image, other); }},
                    {"failed: buffer type, of OutOptRealImg1", into(gy, gz, image)},
                    {"OutOptRealImg1 shares memory with InOptGzGreyImg3d", into(gy, gz, gz)},
                    {"MaxRadius", [&] { houghSpheres3d(image, createHoughCirclesRadiusRange(-9, -3)); }}},
                   "HoughSpheres3dLvl1 refuses to run:");
    // Shells that can't be held.
    for (const long radius : {5000l, 3000000000l}) {
        const std::string text = refusalOf([&] {
            computeBestSpheresRadiiFromGradMagImg3d(gx, gy, gz, eCIT_Both, createHoughCirclesRadiusRange(1, radius), 0.1,
                                                    kAll, Voxels3d::createNode(), HoughSpheres3dPpties::createNode());
        });
        EXPECT_NE(std::string::npos, text.find("The shells of radii from 1 to " + std::to_string(radius) + " take "))
            << text;
        EXPECT_NE(std::string::npos, text.find(" bytes, more than can be held")) << text;
    }
}

// --- truths

struct Bead
{
    double x, y, z, radius;
};

/// Beads on a ground of 100, brighter or darker by 60, blurred by the point spread of a voxel or so, with noise.
ImagePtr drawBeads(const std::vector<Bead>& beads, unsigned long size, double step, double noise, unsigned int seed)
{
    const ImagePtr image = createImage(eIBT_Real32, {size, size, size});
    std::mt19937 random(seed);
    std::normal_distribution<double> deviation(0.0, 1.0);
    const double blur = 1.0;
    forEachSample({size, size, size}, [&](auto x, auto y, auto z, auto...) {
        double value = 100;
        for (const Bead& bead : beads) {
            const double dx = static_cast<double>(x) - bead.x, dy = static_cast<double>(y) - bead.y,
                         dz = static_cast<double>(z) - bead.z;
            value += step * 0.5
                     * std::erfc((std::sqrt(dx * dx + dy * dy + dz * dz) - bead.radius) / (blur * std::sqrt(2.0)));
        }
        setSample(*image, value + noise * deviation(random), x, y, z);
    });
    return image;
}

TEST(HoughSpheres3d, FindsDrawnBeadsAndNothingElse)
{
    std::mt19937 random(14);
    std::vector<Bead> beads;
    for (int i = 0; i < 8; ++i) {  // one in each octant
        const auto part = [&] { return static_cast<double>(random() % 1000) / 1000; };
        beads.push_back({15.5 + 32.0 * (i % 2) + part(), 15.5 + 32.0 * (i / 2 % 2) + part(), 15.5 + 32.0 * (i / 4) + part(),
                         5 + 9 * part()});
    }
    double bias = 0;
    for (const bool isBright : {true, false}) {
        const ImagePtr image = drawBeads(beads, 64, isBright ? 60 : -60, 12, 15);
        const auto spheres = houghSpheres3d(image, createHoughCirclesRadiusRange(4, 16),
                                            isBright ? eCIT_Inward : eCIT_Outward, kAll, nullptr, nullptr);
        ASSERT_EQ(beads.size(), spheres->size());
        Numbers distances;
        for (const Bead& bead : beads) {
            double nearest = 1e9, radius = 0;
            for (std::size_t i = 0; i < spheres->size(); ++i) {
                const Sphere& sphere = (*spheres)[i];
                const double dx = sphere.get<Sphere::X>() - bead.x, dy = sphere.get<Sphere::Y>() - bead.y,
                             dz = sphere.get<Sphere::Z>() - bead.z;
                const double distance = std::sqrt(dx * dx + dy * dy + dz * dz);
                if (distance < nearest)
                    radius = sphere.get<Sphere::Radius>();
                nearest = std::min(nearest, distance);
            }
            EXPECT_GT(1.5, nearest) << bead.x << ", " << bead.y << ", " << bead.z;
            EXPECT_NEAR(bead.radius, radius, 1.0);
            distances.push_back(nearest);
            bias += (radius - bead.radius) / 16;
        }
        std::sort(distances.begin(), distances.end());
        EXPECT_GE(0.75, distances[4]);
    }
    EXPECT_NEAR(0.0, bias, 0.3) << "radii are rounded, not cut off";
}

}  // namespace
}  // namespace orvik::test
