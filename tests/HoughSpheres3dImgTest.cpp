// Scores of centres of spheres: every kernel against the definition, shells, the calls, what is refused.

#include "InstructionSets.h"
#include "Shells.h"

#include "Processor/GradientCone.h"
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl1.h"
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl2.h"
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

const unsigned int kAll = NumericLimits<unsigned int>::s_max;
const eCircleIntensityType kTypes[] = {eCIT_Outward, eCIT_Inward, eCIT_Both};
const eRingForm kForms[] = {eRF_ByCost, eRF_Gather, eRF_Votes};

typedef std::array<ImagePtr, 3> Gradients;

Numbers scoresOf(const Gradients& g, const RingOptions& o)
{
    const GuardedImage scores(*createImageLike(*g[0], eIBT_Real32), 3);
    houghSpheres3dImg(g[0], g[1], g[2], createHoughCirclesRadiusRange(o.minRadius, o.maxRadius), o.type, o.angle, o.nbPts,
                      scores.get());
    return numbersOf(scores.get());
}

struct WithForm
{
    explicit WithForm(eRingForm form) { HoughSpheres3dImgLvl3::forceForm(form); }
    ~WithForm() { HoughSpheres3dImgLvl3::forceForm(eRF_ByCost); }
};

void expectDefined(const Gradients& g, const RingOptions& o)
{
    const Numbers expected = definedSphereScores(*g[0], *g[1], *g[2], o);
    for (const eRingForm form : kForms) {
        const WithForm forced(form);
        EXPECT_TRUE(same(expected, scoresOf(g, o)))
            << toString(g[0]->getGeometry().getSizes()) << ", radii " << o.minRadius << " to " << o.maxRadius << ", type "
            << o.type << ", angle " << o.angle << ", points " << o.nbPts << ", form " << form;
    }
}

Gradients randomGradients(eImageBufferType type, const ImageSizes& sizes, unsigned int seed)
{
    return {randomImage(type, sizes, seed), randomImage(type, sizes, seed + 1), randomImage(type, sizes, seed + 2)};
}
Gradients drawnGradients(eImageBufferType type, const ImageSizes& sizes, const std::vector<double>& values,
                         unsigned int seed)
{
    return {drawnImage(type, sizes, values, seed), drawnImage(type, sizes, values, seed + 1),
            drawnImage(type, sizes, values, seed + 2)};
}

class SpheresKernel : public KernelTest<HoughSpheres3dImgLvl3>
{
};
/// Label and binary images are served by the kernels of their sample types.
INSTANTIATE_TEST_SUITE_P(
    AllKernels, SpheresKernel,
    ::testing::ValuesIn(kernelsOf({eIBT_Int8, eIBT_UInt8, eIBT_Int16, eIBT_UInt16, eIBT_Int32, eIBT_UInt32, eIBT_Real32})),
    kernelName);

TEST_P(SpheresKernel, SumsTheShellsInListOrderForAnyWidth)
{
    int turn = 0;
    for (const unsigned long width : {1ul, 2ul, 5ul, 16ul, 17ul, 31ul, 64ul, 66ul, 259ul}) {
        const ImageSizes sizes(width, 3 + width % 5, 5 + width % 3);
        expectDefined(turn % 2 ? randomGradients(type(), sizes, 1) : drawnGradients(type(), sizes, {0, 0, 1, 3, 100}, 1),
                      {1 + turn % 2, 2 + turn % 4, kTypes[turn % 3], turn % 2 ? 0.4 : 0.1, kAll});
        ++turn;
    }
    const Gradients large = randomGradients(type(), {23, 18, 15}, 4);
    for (const eCircleIntensityType each : kTypes)
        expectDefined(large, {3, 7, each, 0.2, kAll});
}

TEST_P(SpheresKernel, SumsTheShellsInListOrderAtTheTypesLimits)
{
    const std::vector<double> odd = oddValues(type());
    expectDefined(drawnGradients(type(), {15, 11, 9}, odd, 7), {2, 4, eCIT_Both, 0.3, kAll});
    std::vector<double> rarely(1000, 5);  // so that not every shell has one
    rarely.insert(rarely.end(), odd.begin(), odd.end());
    for (const eCircleIntensityType each : kTypes)
        expectDefined(drawnGradients(type(), {15, 11, 9}, rarely, 10), {2, 3, each, 0.3, kAll});
}

TEST(Spheres, ScoresAreDefinedForAnyAngleRangeAndCount)
{
    const Gradients g = {randomImage(eIBT_Int16, {14, 11, 9}, 9), drawnImage(eIBT_Int16, {14, 11, 9}, {0, 0, 5, -7}, 10),
                         drawnImage(eIBT_Int16, {14, 11, 9}, {0, 0, 0, 3, -2}, 11)};
    for (const double angle : {0.0, 1e-9, 1e-5, 0.1, 1.0, kPi / 2, 2.0, 4.0, -0.2, kNan, kInfinity})
        for (const eCircleIntensityType type : kTypes)
            expectDefined(g, {2, 4, type, angle, kAll});
    for (const unsigned int nbPts : {0u, 1u, 7u, 60u})
        for (const double angle : {0.0, 0.3})
            expectDefined(g, {1, 4, eCIT_Both, angle, nbPts});
    // One radius, none, that of the centre alone, beyond the volume.
    for (const auto& [min, max] :
         std::vector<std::pair<long, long>>{{3, 3}, {4, 2}, {0, 3}, {-4, 2}, {0, 0}, {2, 500}, {30, 40}})
        expectDefined(g, {min, max, eCIT_Both, 0.3, kAll});
    EXPECT_TRUE(same(definedSphereScores(*g[0], *g[1], *g[2], {1, 4, eCIT_Both, 0.1, kAll}),
                     numbersOf(houghSpheres3dImg(g[0], g[1], g[2], nullptr))));
}

TEST(Spheres, ShellsHaveWhatIsWithinTheRadiiBothCutOffAndRounded)
{
    // Of the 26 voxels from 1 to below 2 the 8 corners round to 2, so they are on no shell, but count for that of radius 1.
    Gradients g;
    for (ImagePtr& each : g)
        each = blank(9, 9, 9, 1, eIBT_Real32);
    setSample(*g[0], 26, 4, 4, 4);
    setSample(*g[1], 52, 4, 4, 4);
    setSample(*g[2], 130, 4, 4, 4);
    const ImagePtr scores = createImageLike(*g[0], eIBT_Real32);
    const double nearlyAll = 3.1;
    houghSpheres3dImg(g[0], g[1], g[2], createHoughCirclesRadiusRange(1, 1), eCIT_Outward, nearlyAll, kAll, scores);
    int nbOnShell = 0;
    forEachSample({9, 9, 9}, [&](auto... at) { nbOnShell += sampleAt(*scores, at...) != 0; });
    EXPECT_EQ(18, nbOnShell);
    EXPECT_NEAR(1.0, sampleAt(*scores, 3, 4, 4), 1e-6);
    EXPECT_NEAR(-5.0, sampleAt(*scores, 4, 4, 5), 1e-6);
    EXPECT_EQ(0.0, sampleAt(*scores, 3, 3, 3));
    // Twice the radius lacks those below 2, though some round to it.
    houghSpheres3dImg(g[0], g[1], g[2], createHoughCirclesRadiusRange(2, 2), eCIT_Outward, nearlyAll, kAll, scores);
    EXPECT_EQ(0.0, sampleAt(*scores, 3, 3, 3));
    EXPECT_NE(0.0, sampleAt(*scores, 3, 3, 2));
}

TEST(Spheres, ScoresAreTheSameForStripsAndThreads)
{
    Gradients g = randomGradients(eIBT_Real32, {22, 17, 26}, 11);
    const GuardedImage guarded(*g[1], 7);
    g[1] = guarded.get();
    for (const RingOptions& o : {RingOptions{2, 6, eCIT_Both, 0.1, kAll}, RingOptions{1, 4, eCIT_Inward, 0.3, kAll}}) {
        const Numbers expected = definedSphereScores(*g[0], *g[1], *g[2], o);
        for (const eRingForm form : {eRF_Gather, eRF_Votes}) {
            const WithForm forced(form);
            expectForStripsAndThreads(expected, [&] { return scoresOf(g, o); });
        }
    }
}

TEST(Spheres, TellHowFarASingleStripIs)
{
    const WithThreads one(1);
    const Gradients g = randomGradients(eIBT_Int16, {20, 16, 14}, 17);
    for (const eRingForm form : {eRF_Gather, eRF_Votes}) {
        const WithForm forced(form);
        const auto spheres =
            processorWith<HoughSpheres3dImgLvl1, InGxGreyImg3d, InGyGreyImg3d, InGzGreyImg3d>(g[0], g[1], g[2]);
        Numbers fractions;
        spheres->setProgressCallback([&](double fraction) { fractions.push_back(fraction); });
        processor::executeSyncRun(spheres);
        EXPECT_LT(10u, fractions.size());
        EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
        EXPECT_GT(0.2, fractions.front());
        EXPECT_EQ(1.0, fractions.back());
    }
}

TEST(Spheres, ScoresAreThoseOfEachVolume)
{
    const Gradients g = randomGradients(eIBT_UInt8, {12, 9, 8, 2, 2}, 14);
    const ImagePtr all = houghSpheres3dImg(g[0], g[1], g[2], createHoughCirclesRadiusRange(2, 3));
    forEachSample({1, 1, 1, 2, 2}, [&](auto, auto, auto, auto c, auto t) {
        const auto at = [&](const ImagePtr& image) { return image->getView(PlanIndex(0, c, t), 8); };
        EXPECT_TRUE(same(definedSphereScores(*at(g[0]), *at(g[1]), *at(g[2]), {2, 3, eCIT_Both, 0.1, kAll}),
                         numbersOf(at(all))));
    });
}

TEST(Spheres, ScoresAreRefusedInWords)
{
    const ImagePtr gx = blank(9, 8, 7, 1, eIBT_Real32), gy = copyOf(*gx), gz = copyOf(*gx), out = copyOf(*gx),
                   narrow = blank(8, 8, 7, 1, eIBT_Real32);
    const auto into = [&](const ImagePtr& y, const ImagePtr& z, long max, const ImagePtr& scores) {
        return [=] { houghSpheres3dImg(gx, y, z, createHoughCirclesRadiusRange(1, max), eCIT_Both, 0.1, kAll, scores); };
    };
    // A list that does not belong to its range.
    const auto places = HoughSpheresKernelXYZ::createNode();
    places->access<HoughSpheresKernelXYZ::Coll>().push_back(HoughSpheresKernelXYZElt::createNode(0, 0, -3, 0.f, 0.f, -1.f,
                                                                                                 3.f, 1));
    const auto foreign = [&] {
        ran<HoughSpheres3dImgLvl2, InSubGxImg3d, InSubGyImg3d, InSubGzImg3d, InCircleIntensityType, InMaxAngleWithGradDir,
            InHoughCirclesRadiusRange, InHoughSpheresKernelXYZ, OutRealImg>(
            gx, gy, gz, eCIT_Both, 0.1, createHoughCirclesRadiusRange(1, 2), places, out);
    };
    expectRefusals({gx, gy, gz, out},
                   {{"(9 x 8 x 7 x 1 x 1) equals that of InGyGreyImg3d (8 x 8 x 7 x 1 x 1)", into(narrow, gz, 3, out)},
                    {"(9 x 8 x 7 x 1 x 1) equals that of InGzGreyImg3d (8 x 8 x 7 x 1 x 1)", into(gy, narrow, 3, out)},
                    {"(9 x 8 x 7 x 1 x 1) equals that of OutRealImg (8 x 8 x 7 x 1 x 1)", into(gy, gz, 3, narrow)},
                    {"(float 32 bits (type 7)) equals that of InGzGreyImg3d (unsigned 8 bits (type 2))",
                     into(gy, blank(9, 8, 7), 3, out)},
                    {"failed: buffer type, of OutRealImg", into(gy, gz, 3, blank(9, 8, 7))},
                    {"InOptHoughCirclesRadiusRange::MaxRadius", into(gy, gz, -1, out)},
                    {"OutRealImg shares memory with InGzGreyImg3d", into(gy, gz, 3, gz)},
                    {"mandatory attribute InGzGreyImg3d has no value", into(gy, nullptr, 3, out)},
                    {"mandatory attribute OutRealImg has no value", into(gy, gz, 3, nullptr)},
                    {"at offset (0, 0, -3), lies beyond the greatest radius, 2", foreign}});
}

}  // namespace
}  // namespace orvik::test
