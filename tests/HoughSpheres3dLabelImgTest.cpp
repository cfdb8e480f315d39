// Labels of spheres: which sphere has each voxel, the type that names them, the calls.

#include "FamilyShapes.h"
#include "InstructionSets.h"

#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl1.h"
#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl2.h"
#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

typedef std::vector<std::array<double, 4>> Spheres;  // x, y, z, radius

boost::shared_ptr<HoughSpheres3dPpties> listOf(const Spheres& spheres)
{
    const auto list = HoughSpheres3dPpties::createNode();
    for (const auto& [x, y, z, radius] : spheres)
        list->access<HoughSpheres3dPpties::Coll>().push_back(HoughSphere3dPpties::createNode(x, y, z, radius, 1.0));
    return list;
}

/// Every sphere is looked at for every voxel: the first one stands in for none by a centre far away.
ImagePtr expectedLabels(const Spheres& spheres, const ImagePtr& out)
{
    forEachSample(out->getGeometry().getSizes(), [&](auto x, auto y, auto z, auto...) {
        const auto distance = [&](double cx, double cy, double cz) {
            const volatile float dx = static_cast<float>(x) - static_cast<float>(cx), xx = dx * dx;
            const volatile float dy = static_cast<float>(y) - static_cast<float>(cy), yy = dy * dy;
            const volatile float dz = static_cast<float>(z) - static_cast<float>(cz), zz = dz * dz;
            const volatile float xy = xx + yy, sum = xy + zz;
            return std::sqrt(sum);
        };
        std::size_t current = 0;
        for (std::size_t i = 1; i <= spheres.size(); ++i) {
            const auto& s = spheres[i - 1];
            const float d = distance(s[0], s[1], s[2]), radius = static_cast<float>(s[3]), ratio = d / radius;
            const std::size_t candidate = d <= radius ? i : current;
            const std::array<double, 4> c = current == 0 ? std::array<double, 4>{1e4, 1e4, 1e4, 0.001}
                                                         : spheres[current - 1];
            const float currentRatio = distance(c[0], c[1], c[2]) / static_cast<float>(c[3]);
            if (!(currentRatio <= ratio))
                current = candidate;
        }
        setSample(*out, static_cast<double>(current), x, y, z);
    });
    return out;
}

Spheres randomSpheres(unsigned int nb, unsigned int seed, double size)
{
    std::mt19937 random(seed);
    const auto draw = [&](double least, double most) {
        return least + (most - least) * static_cast<double>(random()) * 0x1p-32;
    };
    Spheres spheres;
    for (unsigned int i = 0; i < nb; ++i)  // every second one in whole voxels, so that distances are met exactly
        spheres.push_back({draw(-5, size + 5), draw(-5, size + 5), draw(-5, size + 5), draw(0.5, size / 3)});
    for (unsigned int i = 0; i < nb; i += 2)
        for (double& value : spheres[i])
            value = std::round(value);
    return spheres;
}

class SphereLabelsKernel : public KernelTest<HoughSpheres3dLabelImgLvl3>
{
protected:
    void expectReference(const Spheres& spheres, const ImageSizes& sizes) const
    {
        const ImagePtr out = createImage(type(), sizes), expected = expectedLabels(spheres, createImage(type(), sizes));
        forEachSample(sizes, [&](auto... at) { setSample(*out, 77, at...); });  // every voxel is written
        ran<HoughSpheres3dLabelImgLvl2, InHoughSpheres3dPpties, OutSubLabelImg3d>(listOf(spheres), out);
        EXPECT_TRUE(sameSamples(*expected, *out)) << toString(sizes) << ", " << spheres.size() << " spheres";
    }
};
INSTANTIATE_TEST_SUITE_P(
    AllKernels, SphereLabelsKernel,
    ::testing::ValuesIn(kernelsOf({eIBT_UInt8, eIBT_UInt16, eIBT_UInt32, eIBT_Label8, eIBT_Label16, eIBT_Label32})),
    kernelName);

TEST_P(SphereLabelsKernel, GiveEachVoxelToTheSphereInWhichItLiesDeepest)
{
    for (const unsigned long width : {1ul, 5ul, 16ul, 17ul, 33ul, 70ul})
        expectReference(randomSpheres(40, static_cast<unsigned int>(width), static_cast<double>(width)),
                        {width, 1 + width % 23, 1 + width % 19});
    expectReference({}, {9, 4, 3});
    // The same twice, one within another, one that holds all, radii and centres of every odd kind, an empty radius.
    const double huge = 1e30;
    expectReference({{8, 7, 6, 4},
                     {8, 7, 6, 4},
                     {8, 8, 6, 2},
                     {3, 3, 3, 0},
                     {3, 3, 3, 1},
                     {5.5, 5, 5, 0},
                     {2, 2, 2, -3},
                     {1, 1, 1, kNan},
                     {kNan, 1, 1, 5},
                     {huge, 0, 0, huge},
                     {kInfinity, 0, 0, 9},
                     {0, -kInfinity, 0, kInfinity},
                     {9, 9, 9, kInfinity},
                     {4, 4, 4, 1e-42}},
                    {21, 15, 12});
}

TEST(SphereLabels, AreTheSameForStripsAndThreadsOfEachVolume)
{
    const ImagePtr geometry = createImage(eIBT_Real32, {40, 23, 29, 2, 2});
    const auto lists = PlanIndexedHoughSpheres3dPpties::createColl();
    Numbers expected;
    forEachSample({1, 1, 1, 2, 2}, [&](auto, auto, auto, auto c, auto t) {
        const Spheres spheres = randomSpheres(static_cast<unsigned int>(5 + 3 * c + t), 9, 30);
        lists->insert(PlanIndex(0, c, t), listOf(spheres));
        append(expected, numbersOf(expectedLabels(spheres, createImage(eIBT_Label8, {40, 23, 29}))));
    });
    const ConstPtr<PlanIndexedHoughSpheres3dPpties> constLists = lists;
    expectForStripsAndThreads(expected, [&] { return houghSpheres3dLabelImg(constLists, geometry); });
}

TEST(SphereLabels, HaveTheTypeThatNamesTheLongestList)
{
    const ImagePtr geometry = createImage(eIBT_Int8, {3, 2, 2, 2, 1});
    for (const auto& [nb, type] : {std::make_pair(0ul, eIBT_Label8),
                                   {255ul, eIBT_Label8},
                                   {256ul, eIBT_Label16},
                                   {65535ul, eIBT_Label16},
                                   {65536ul, eIBT_Label32}}) {
        const auto lists = PlanIndexedHoughSpheres3dPpties::createColl();
        lists->insert(PlanIndex(0, 0, 0), listOf({{1, 1, 1, 5}}));
        lists->insert(PlanIndex(0, 1, 0), listOf(Spheres(nb, {1, 1, 1, 0.5})));
        EXPECT_EQ(type, houghSpheres3dLabelImg(ConstPtr<PlanIndexedHoughSpheres3dPpties>(lists), geometry)->getBufferType());
    }
    // Empty places keep their numbers.
    const auto gaps = listOf({{0, 0, 0, 9}, {2, 1, 1, 1}});
    gaps->access<HoughSpheres3dPpties::Coll>().accessNodes()[0].reset();
    const ImagePtr labels = houghSpheres3dLabelImg(ConstPtr<HoughSpheres3dPpties>(gaps), geometry->getView(PlanIndex(), 2));
    EXPECT_EQ(2, sampleAt(*labels, 2, 1, 1));
    EXPECT_EQ(0, sampleAt(*labels, 0, 0, 0));
}

TEST(SphereLabels, RefuseWhatDoesNotFitInWordsBeforeAnythingIsWritten)
{
    const ImagePtr volume = createImage(eIBT_Real32, {8, 7, 6}), stack = createImage(eIBT_Real32, {8, 7, 6, 2});
    const ImagePtr out = randomImage(eIBT_Label8, {8, 7, 6}, 5), real = createImage(eIBT_Real32, {8, 7, 6});
    const ConstPtr<HoughSpheres3dPpties> one = listOf({{1, 2, 3, 2}}), many = listOf(Spheres(256, {1, 2, 3, 2}));
    const ConstPtr<PlanIndexedHoughSpheres3dPpties> none = PlanIndexedHoughSpheres3dPpties::createColl();
    const std::string refuses = "HoughSpheres3dLabelImgLvl1 refuses to run: ";
    expectRefusals({out, real}, {{refuses + "mandatory attribute InPIHoughSpheres3dPpties has no value (unset or null)",
                                  [&] { houghSpheres3dLabelImg(ConstPtr<HoughSpheres3dPpties>(), volume); }},
                                 {refuses + "mandatory attribute OutLabelImg has no value (unset or null)",
                                  [&] { houghSpheres3dLabelImg(one, volume, nullptr); }},
                                 {"OutLabelImg (8 x 7 x 6 x 1 x 1)", [&] { houghSpheres3dLabelImg(one, stack, out); }},
                                 {"failed: entries of InPIHoughSpheres3dPpties are the volumes (0, c, t) of InImg",
                                  [&] { houghSpheres3dLabelImg(one, stack); }},
                                 {"failed: entries of InPIHoughSpheres3dPpties are the volumes (0, c, t) of InImg",
                                  [&] { houghSpheres3dLabelImg(none, volume, out); }},
                                 {"OutLabelImg", [&] { houghSpheres3dLabelImg(many, volume, out); }},
                                 {"OutLabelImg", [&] { houghSpheres3dLabelImg(one, volume, real); }}});
    EXPECT_EQ(0u, none->getNbPlans());
}

}  // namespace
}  // namespace orvik::test
