// Local extrema of volumes: which voxels are listed, in which order, the calls.

#include "ExtremaReference.h"
#include "InstructionSets.h"

#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl1.h"
#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl2.h"
#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

typedef std::array<unsigned int, 3> Distances;

Numbers listOf(const Pixels& voxels)
{
    Numbers list = {static_cast<double>(voxels.size())};
    for (const auto& voxel : voxels)
        append(list, {voxel.begin(), voxel.end()});
    return list;
}

Numbers expectedList(const BaseImage& volume, const Distances& dist, eLocalExtremumType kind, double threshold,
                     unsigned long maxNb = kAll, long whole = 1l << 40)
{
    return listOf(mostExtreme(pixelsOf(volume, dist[0], dist[1], kind, threshold, whole, dist[2]), kind, maxNb));
}

class Extrema3dKernel : public KernelTest<ExtractLocalExtrema3dLvl3>
{
protected:
    void expectReference(const ImagePtr& volume, const Distances& dist, eLocalExtremumType kind, double threshold) const
    {
        EXPECT_TRUE(same(expectedList(*volume, dist, kind, threshold),
                         numbersOf(extractLocalExtrema3d(volume, dist[0], dist[1], dist[2], configOf(kind, threshold)))))
            << toString(volume->getGeometry().getSizes()) << ", distances " << dist[0] << ", " << dist[1] << ", " << dist[2]
            << ", kind " << kind << ", threshold " << threshold;
    }
};
INSTANTIATE_TEST_SUITE_P(AllKernels, Extrema3dKernel, ::testing::ValuesIn(allKernels()), kernelName);

const Distances kDistances[] = {{0, 0, 0}, {1, 1, 1}, {0, 2, 3}, {2, 0, 6}, {1, 6, 0}, {3, 5, 1}, {90, 90, 90}};

TEST_P(Extrema3dKernel, ListsWhatTheDefinitionSaysForAnyWidthAndDistance)
{
    unsigned int turn = 0;
    for (const unsigned long width : {1ul, 2ul, 31ul, 64ul, 70ul, 131ul, 300ul})
        for (const Distances& dist : {kDistances[turn % 7], kDistances[(turn + 3) % 7]}) {
            const ImagePtr volume =
                drawnImage(type(), {width, 1 + width % 9, 1 + turn % 8}, {1, 2, 3, 4, 5, 6, 7}, 31 + turn);
            expectReference(volume, dist, kKinds[turn % 4], turn % 3 ? noThreshold(kKinds[turn % 4]) : 3.0);
            ++turn;
        }
    const ImagePtr rich = randomImage(type(), {20, 13, 11}, 3);
    for (const Distances& dist : kDistances)
        for (const eLocalExtremumType kind : kKinds)
            expectReference(rich, dist, kind, 50.0);
}

TEST_P(Extrema3dKernel, ListsWhatTheDefinitionSaysAtTheTypesLimits)
{
    const ImagePtr volume = drawnImage(type(), {90, 6, 5}, oddValues(type()), 32);
    for (const eLocalExtremumType kind : kKinds)
        for (const unsigned int dist : {0u, 1u, 2u})
            for (const double threshold : {noThreshold(kind), kNan, 1e-300})
                expectReference(volume, {dist, dist / 2, dist}, kind, threshold);
}

/// Its runs are not padded, so that they have a remainder.
class UnpaddedLvl3 : public ExtractLocalExtrema3dLvl3
{
public:
    unsigned long getRunGranularity() const override { return 1; }
};

TEST_P(Extrema3dKernel, ComparesWhatIsLeftOfARunWithItsNextVoxelsAlone)
{
    const unsigned long vector = set() == core::eIS_Avx512 ? 64 : set() == core::eIS_Avx2 ? 32 : 16;
    const unsigned long block = 4 * vector / getImageBufferBaseSize(type());
    for (const unsigned long width : {block + 1, 2 * block - 1, 7ul})
        for (const eLocalExtremumType kind : kKinds) {
            const ImagePtr volume = drawnImage(type(), {width, 4, 5}, {1, 2, 3, 4, 5}, 33);
            const auto algorithm = boost::make_shared<UnpaddedLvl3>();
            const auto voxels = Voxels3d::createNode();
            algorithm->init(processor::ePRP_WithRules);
            algorithm->set<InKnlZStrip3d>(boost::make_shared<InputImageZStrip3dWithKernel>(volume, PlanIndex(), 0, 5,
                                                                                           StripMargins{2, 2, 1, 1, 1, 1}));
            algorithm->set<InLocalExtremaConfig>(configOf(kind, noThreshold(kind)));
            algorithm->set<OutVoxels3d>(voxels);
            processor::executeSyncRun(algorithm);
            const unsigned long whole = set() == core::eIS_Generic ? width : width - width % block;
            EXPECT_TRUE(same(listOf(pixelsOf(*volume, 2, 1, kind, noThreshold(kind), static_cast<long>(whole), 1)),
                             numbersOf(voxels)))
                << width << " columns, kind " << kind;
        }
}

TEST(Extrema3d, AreOneListForEachVolumeSortedAsAWhole)
{
    const ImagePtr stack = drawnImage(eIBT_UInt16, {20, 12, 9, 2, 3}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 34);
    const Distances dist = {2, 3, 0};  // slices are no neighbours, but of one list
    const auto config = configOf(eLET_StrictMaxima, 3, 40);
    Numbers all;
    forEachSample({1, 1, 1, 2, 3}, [&](auto, auto, auto, auto c, auto t) {
        const ImagePtr volume = stack->getView(PlanIndex(0, c, t), 9);
        const Numbers expected = expectedList(*volume, dist, eLET_StrictMaxima, 3, 40);
        append(all, expected);
        EXPECT_TRUE(same(expected, numbersOf(extractLocalExtrema3d(volume, dist[0], dist[1], dist[2], config))));
        EXPECT_TRUE(same(expectedList(*volume, dist, eLET_Maxima, -1e300),
                         numbersOf(extractLocalExtrema3d(volume, dist[0], dist[1], dist[2]))));
    });
    EXPECT_TRUE(same(all, numbersOf(multiSlice_extractLocalExtrema3d(stack, dist[0], dist[1], dist[2], config))));
}

TEST(Extrema3d, OfAPlateauAreItsFirstVoxelOrNone)
{
    const ImagePtr volume = createImage(eIBT_Int16, {9, 8, 7});
    for (const auto& [x, y, z] : {std::array<unsigned long, 3>{4, 5, 2}, {5, 4, 3}, {3, 3, 3}})
        setSample(*volume, 7, x, y, z);
    EXPECT_EQ((Numbers{1, 4, 5, 2, 7}), numbersOf(extractLocalExtrema3d(volume, 2, 2, 1, configOf(eLET_Maxima, 1))));
    EXPECT_EQ(Numbers{0}, numbersOf(extractLocalExtrema3d(volume, 2, 2, 1, configOf(eLET_StrictMaxima, 1))));
}

TEST(Extrema3d, WithinAnyDistanceBeyondTheVolumeAreThoseOfItsSize)
{
    const ImagePtr volume = randomImage(eIBT_Int16, {14, 9, 6}, 8);
    const Numbers expected = numbersOf(extractLocalExtrema3d(volume, 14, 9, 6));
    EXPECT_LE(1, expected.at(0));
    for (const unsigned int beyond : {3000000000u, 4294967295u})
        EXPECT_EQ(expected, numbersOf(extractLocalExtrema3d(volume, beyond, beyond, beyond)));
}

TEST(Extrema3d, RefuseWhatDoesNotFitInWords)
{
    const ImagePtr stack = blank(4, 3, 2, 2);
    const std::string volumes =
        "failed: entries of OutPIVoxels3d are the volumes (0, c, t) of InImg3d: 1 entries, 2 volumes";
    expectRefusals({},
                   {{"ExtractLocalExtrema3dLvl1 refuses to run: mandatory attribute InImg3d has no value (unset or null)",
                     [] { multiSlice_extractLocalExtrema3d(nullptr, 1, 1, 1); }},
                    {volumes, [&] { extractLocalExtrema3d(stack, 1, 1, 1); }},
                    {volumes, [&] { getAsyncProcessorOutput(extractLocalExtrema3d_async(stack, 1, 1, 1)); }}});
}

}  // namespace
}  // namespace orvik::test
