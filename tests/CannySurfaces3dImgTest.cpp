// Surfaces of volumes: the classes of voxels, both hysteresis strategies, the calls.

#include "CannyReference.h"
#include "InstructionSets.h"

#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl1.h"
#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl2.h"
#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

/// Three gradients of a volume, each of its own seed.
typedef std::array<ImagePtr, 3> Gradients;

template<class Make>
Gradients gradientsOf(const Make& make)
{
    return {make(51u), make(52u), make(53u)};
}

/// The class of each voxel, from the definition: 1 weak, 2 strong.
ImagePtr classesOf(const Gradients& gradients, double low, double high)
{
    const GradientSamples samples({gradients.begin(), gradients.end()});
    const ImagePtr classes = createImageLike(*gradients[0], eIBT_UInt8);
    const double tanLow = 0.41421356237309503, tanHigh = 2.414213562373095;
    forEachSample(classes->getGeometry().getSizes(), [&](long x, long y, long z, auto...) {
        const auto near = [&](long dx, long dy, long dz) { return samples.squaredMagnitude(x + dx, y + dy, z + dz); };
        const double m = near(0, 0, 0);
        const double gx = samples.at(0, x, y, z), gy = samples.at(1, x, y, z), gz = samples.at(2, x, y, z);
        const double ax = std::fabs(gx), ay = std::fabs(gy), az = std::fabs(gz);
        const volatile double xx = gx * gx, yy = gy * gy, sum = xx + yy, h = std::sqrt(sum);
        const volatile double steep = h * tanHigh, flat = h * tanLow, nearX = ax * tanLow, nearY = ax * tanHigh;
        const auto straight = [&](long dx, long dy, long dz) { return m > near(-dx, -dy, -dz) && m >= near(dx, dy, dz); };
        const auto diagonal = [&](long dx, long dy, long dz) { return m > near(-dx, -dy, -dz) && m > near(dx, dy, dz); };
        const auto turn = [](double a, double b) { return (a < 0) == (b < 0) ? 1l : -1l; };
        bool kept;
        if (az > steep)
            kept = straight(0, 0, 1);
        else if (flat > az)
            kept = nearX > ay ? straight(1, 0, 0) : ay > nearY ? straight(0, 1, 0) : diagonal(turn(gx, gy), 1, 0);
        else if (nearX > ay)
            kept = diagonal(turn(gx, gz), 0, 1);
        else if (ay > nearY)
            kept = diagonal(0, turn(gy, gz), 1);
        else  // zero counts as negative here
            kept = diagonal(gx > 0 ? 1 : -1, gy > 0 ? 1 : -1, gz > 0 ? 1 : -1);
        setSample(*classes, low * low >= m || !kept ? 0 : m > high * high ? 2 : 1, x, y, z);
    });
    return classes;
}

class SurfacesKernel : public KernelTest<CannySurfaces3dImgLvl3>
{
protected:
    static void expectReference(const Gradients& g, double low, double high)
    {
        const ImagePtr out = createImageLike(*g[0], eIBT_UInt8);
        ran<CannySurfaces3dImgLvl2, InSubGxImg3d, InSubGyImg3d, InSubGzImg3d, InCannyThresholds, OutBinImg>(
            g[0], g[1], g[2], thresholds(low, high), out);
        EXPECT_TRUE(sameSamples(*classesOf(g, low, high), *out))
            << toString(g[0]->getGeometry().getSizes()) << ", thresholds " << low << ", " << high;
    }
};
INSTANTIATE_TEST_SUITE_P(AllKernels, SurfacesKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(SurfacesKernel, ClassesEqualTheDefinitionForAnySize)
{
    for (const unsigned long width : kWidths) {
        const ImageSizes sizes(width, 1 + width % 4, 1 + width % 3);
        expectReference(gradientsOf([&](unsigned int seed) { return tiedImage(type(), sizes, 3, seed); }), 1.0, 3.0);
    }
}

TEST_P(SurfacesKernel, ClassesEqualTheDefinitionForAnyValues)
{
    const Gradients rich = gradientsOf([&](unsigned int seed) { return randomImage(type(), {131, 5, 4}, seed); });
    const Gradients odd = gradientsOf([&](unsigned int seed) {
        return drawnImage(type(), {70, 6, 5}, oddValues(type()), seed);
    });
    for (const auto& [low, high] : {std::make_pair(0.0, 0.0),
                                    {100.0, 250.0},
                                    {-40.0, -60.0},
                                    {65535.0, 65536.0},
                                    {kNan, 10.0},
                                    {1.0, kNan},
                                    {1e300, 1e300}}) {
        expectReference(rich, low, high);
        expectReference(odd, low, high);
    }
}

TEST(CannySurfaces, EqualTheDefinitionForEveryTypeAndBothPolicies)
{
    for (const eImageBufferType type : kAllTypes) {
        const Gradients g = gradientsOf([&](unsigned int seed) { return tiedImage(type, {37, 21, 9}, 20, seed); });
        const ImagePtr expected = joinedToStrong(classesOf(g, 14, 28), 1), out = createImageLike(*expected, eIBT_Binary);
        EXPECT_TRUE(sameSamples(*expected, *cannySurfaces3dImg(g[0], g[1], g[2], thresholds(14, 28))));
        cannySurfaces3dImg(g[0], g[1], g[2], thresholds(14, 28), ePOP_Labels, out);
        EXPECT_TRUE(sameSamples(*expected, *out));
        const ImagePtr wide = createImageLike(*expected, eIBT_Real32);
        cannySurfaces3dImg(g[0], g[1], g[2], thresholds(14, 28), ePOP_Iterative, wide);
        forEachSample(wide->getGeometry().getSizes(),
                      [&](auto... at) { ASSERT_EQ(sampleAt(*expected, at...), sampleAt(*wide, at...)); });
    }
}

TEST(CannySurfaces, OfStacksAreThoseOfEachVolumeForStripsAndThreads)
{
    const Gradients g = gradientsOf([](unsigned int seed) { return tiedImage(eIBT_Int16, {30, 11, 13, 2, 3}, 20, seed); });
    Numbers expected;
    forEachSample({1, 1, 1, 2, 3}, [&](auto, auto, auto, auto c, auto t) {
        const auto volumeOf = [&, c, t](const ImagePtr& image) { return image->getView(PlanIndex(0, c, t), 13); };
        const Gradients volumes = {volumeOf(g[0]), volumeOf(g[1]), volumeOf(g[2])};
        append(expected, numbersOf(joinedToStrong(classesOf(volumes, 14, 28), 1)));
    });
    for (const auto policy : {ePOP_Labels, ePOP_Iterative})
        expectForStripsAndThreads(expected, [&] {
            const ImagePtr out = createImageLike(*g[0], eIBT_Binary);
            cannySurfaces3dImg(g[0], g[1], g[2], thresholds(14, 28), policy, out);
            return out;
        });
}

TEST(CannySurfaces, RefuseWhatDoesNotFitInWordsBeforeAnythingIsWritten)
{
    const ImagePtr g = randomImage(eIBT_Int16, {20, 10, 4}, 19), out = randomImage(eIBT_UInt8, {20, 10, 4}, 21);
    const ImagePtr thin = blank(20, 10, 3, 1, eIBT_Int16), bytes = blank(20, 10, 4);
    const auto canny = [&](const ImagePtr& x, const ImagePtr& y, const ImagePtr& z) {
        return [=] { cannySurfaces3dImg(x, y, z, thresholds(1, 2), ePOP_Iterative, out); };
    };
    const std::string refuses = "CannySurfaces3dImgLvl1 refuses to run: ", failed = "failed: size X x Y x Z x C x T of ";
    const std::string type = "failed: buffer type of InSubGxImg3d (signed 16 bits (type 3)) equals that of ";
    expectRefusals({out},
                   {{refuses + "mandatory attribute InGzGreyImg3d has no value (unset or null)", canny(g, g, nullptr)},
                    {failed + "InGxGreyImg3d (20 x 10 x 4 x 1 x 1) equals that of InGyGreyImg3d (20 x 10 x 3 x 1 x 1)",
                     canny(g, thin, g)},
                    {failed + "InGxGreyImg3d (20 x 10 x 4 x 1 x 1) equals that of InGzGreyImg3d (20 x 10 x 3 x 1 x 1)",
                     canny(g, g, thin)},
                    {type + "InSubGyImg3d (unsigned 8 bits (type 2))", canny(g, bytes, g)},  // Level 2 sees the types
                    {type + "InSubGzImg3d (unsigned 8 bits (type 2))", canny(g, g, bytes)}});
    const auto stages = processor::createInitialised<CannySurfaces3dImgLvl1>();
    expectLastIteration(5, *stages);

    // Every second voxel of every second line and slice is a surface of its own.
    const ImagePtr dots = createImage(eIBT_Int16, {82, 82, 82}), none = createImage(eIBT_Int16, {82, 82, 82});
    forEachSample({41, 41, 41}, [&](auto x, auto y, auto z, auto...) { setSample(*dots, 10, 2 * x, 2 * y, 2 * z); });
    const ImagePtr binary = createImage(eIBT_Binary, {82, 82, 82});
    EXPECT_EQ(
        "there are 68921 connected components, but OutLabelImg3d, label 16 bits (type 9), can name only 65535: use the "
        "iterative optimization policy or wider labels",
        refusalOf([&] { cannySurfaces3dImg(dots, none, none, thresholds(1, 2), ePOP_Labels, binary); }));
}

}  // namespace
}  // namespace orvik::test
