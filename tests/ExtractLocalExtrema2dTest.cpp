// Local extrema of planes: which pixels are listed, in which order, the calls.

#include "FamilyShapes.h"
#include "InstructionSets.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl3.h"
#include "Processor/ExtractLocalExtrema2d/ExtremaWindow.h"

#include "frame/attr/StripAttributes.h"

#include <algorithm>
#include <array>

namespace orvik::test { namespace {

using namespace imaproc::fd;

const unsigned long kAll = NumericLimits<unsigned long>::s_max;
const eLocalExtremumType kKinds[] = {eLET_Maxima, eLET_Minima, eLET_StrictMaxima, eLET_StrictMinima};

bool areMinima(eLocalExtremumType kind)
{
    return kind == eLET_Minima || kind == eLET_StrictMinima;
}

/// Passed by all values.
double noThreshold(eLocalExtremumType kind)
{
    return areMinima(kind) ? 1e300 : -1e300;
}

boost::shared_ptr<const LocalExtremaConfig> configOf(eLocalExtremumType kind, double threshold, unsigned long maxNb = kAll)
{
    return LocalExtremaConfig::createNode(kind, threshold, maxNb);
}

typedef std::vector<std::array<double, 4>> Pixels;  // x, y, z, value

Numbers listOf(const Pixels& pixels)
{
    Numbers list = {static_cast<double>(pixels.size())};
    for (const auto& pixel : pixels)
        append(list, {pixel[0], pixel[1], pixel[3]});
    return list;
}

/// Reads samples of an image, and around it the type's limit.
auto borderedReader(const BaseImage& image, bool minima)
{
    return [&image, border = oddValues(image.getBufferType())[minima ? 1 : 0]](auto... at) {
        const unsigned long place[] = {static_cast<unsigned long>(at)...};  // below 0 is far outside
        const bool inside = place[0] < image.getSizeX() && place[1] < image.getSizeY() && place[2] < image.getSizeZ();
        return inside ? sampleAt(image, place[0], place[1], place[2]) : border;
    };
}

/// The pixels in scan order, from the definition. Of those beyond `whole` columns only the next ones in the line count.
Pixels pixelsOf(const BaseImage& image, long distX, long distY, eLocalExtremumType kind, double threshold,
                long whole = 1l << 40, long distZ = 0)
{
    const bool minima = areMinima(kind), strict = kind == eLET_StrictMaxima || kind == eLET_StrictMinima;
    const long sizeX = static_cast<long>(image.getSizeX()), sizeY = static_cast<long>(image.getSizeY()),
               sizeZ = static_cast<long>(image.getSizeZ());
    const auto at = borderedReader(image, minima);
    const auto beats = [&](double a, double b) { return minima ? a < b : a > b; };
    Pixels pixels;
    forEachSample({image.getSizeX(), image.getSizeY(), image.getSizeZ()}, [&](long x, long y, long z, auto...) {
        const double v = at(x, y, z), left = at(x - 1, y, z), right = at(x + 1, y, z);
        bool kept = beats(v, at(-1, 0, 0));
        for (long nz = std::max(-1l, z - distZ); kept && nz <= std::min(sizeZ, z + distZ); ++nz)
            for (long ny = std::max(-1l, y - distY); kept && ny <= std::min(sizeY, y + distY); ++ny)
                for (long nx = std::max(-1l, x - distX); kept && nx <= std::min(sizeX, x + distX); ++nx) {
                    const double other = at(nx, ny, nz);
                    const bool before = std::tie(nz, ny, nx) < std::tie(z, y, x), isNumber = other == other;
                    if (ny == y && nz == z ? nx != x && x < whole : isNumber)
                        kept = beats(v, other) || (!before && !strict && v == other);
                }
        if (x >= whole)
            kept = kept && !((left == v || beats(left, v)) && (beats(right, v) || (strict && right == v)));
        const float narrow = static_cast<float>(v), limit = static_cast<float>(threshold);
        if (kept && (minima ? narrow <= limit : narrow >= limit))
            pixels.push_back({static_cast<double>(x), static_cast<double>(y), static_cast<double>(z), v});
    });
    return pixels;
}

Numbers expectedList(const BaseImage& plane, long distX, long distY, eLocalExtremumType kind, double threshold,
                     unsigned long maxNb = kAll)
{
    Pixels pixels = pixelsOf(plane, distX, distY, kind, threshold);
    const std::size_t count = std::min<std::size_t>(pixels.size(), maxNb);
    std::partial_sort(pixels.begin(), pixels.begin() + static_cast<long>(count), pixels.end(),
                      [&](const auto& a, const auto& b) { return areMinima(kind) ? a[3] < b[3] : a[3] > b[3]; });
    pixels.resize(count);
    return listOf(pixels);
}

class ExtremaKernel : public KernelTest<ExtractLocalExtrema2dLvl3>
{
protected:
    void expectReference(const ImagePtr& image, const std::pair<unsigned int, unsigned int>& dist, eLocalExtremumType kind,
                         double threshold) const
    {
        EXPECT_TRUE(same(expectedList(*image, dist.first, dist.second, kind, threshold),
                         numbersOf(extractLocalExtrema2d(image, dist.first, dist.second, configOf(kind, threshold)))))
            << toString(image->getGeometry().getSizes()) << ", distances " << dist.first << ", " << dist.second << ", kind "
            << kind << ", threshold " << threshold;
    }
};
INSTANTIATE_TEST_SUITE_P(AllKernels, ExtremaKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(ExtremaKernel, ListsWhatTheDefinitionSaysForAnyWidthAndDistance)
{
    const std::pair<unsigned int, unsigned int> distances[] = {{0, 0}, {1, 1}, {2, 7}, {7, 2},
                                                               {0, 3}, {3, 0}, {5, 4}, {90, 90}};
    unsigned int turn = 0;
    for (const unsigned long width : kWidths) {
        const ImagePtr image = drawnImage(type(), {width, 1 + width % 23}, {1, 2, 3, 5}, 31 + turn);
        for (unsigned int k = 0; k < 3; ++k, ++turn)
            expectReference(image, distances[turn % 8], kKinds[turn % 4], turn % 3 ? noThreshold(kKinds[turn % 4]) : 3.0);
    }
    const ImagePtr rich = randomImage(type(), {70, 24}, 3);
    for (const auto& distance : distances)
        for (const eLocalExtremumType kind : kKinds)
            expectReference(rich, distance, kind, 50.0);
}

TEST_P(ExtremaKernel, ListsWhatTheDefinitionSaysAtTheTypesLimits)
{
    const ImagePtr image = drawnImage(type(), {150, 20}, oddValues(type()), 32);
    for (const eLocalExtremumType kind : kKinds)
        for (const unsigned int dist : {0u, 1u, 2u})
            for (const double threshold : {noThreshold(kind), 2147483648.0, -noThreshold(kind), kNan, 1e-300})
                expectReference(image, {dist, dist + dist / 2}, kind, threshold);
}

/// Its runs are not padded, so that they have a remainder.
class UnpaddedLvl3 : public ExtractLocalExtrema2dLvl3
{
public:
    unsigned long getRunGranularity() const override { return 1; }
};

TEST_P(ExtremaKernel, ComparesWhatIsLeftOfARunWithItsNextPixelsAlone)
{
    const unsigned long vector = set() == core::eIS_Avx512 ? 64 : set() == core::eIS_Avx2 ? 32 : 16;
    const unsigned long block = 4 * vector / getImageBufferBaseSize(type());
    for (const unsigned long width : {block, block + 1, 2 * block - 1, 7ul})
        for (const eLocalExtremumType kind : kKinds)
            for (const unsigned int dist : {0u, 1u, 4u}) {
                const ImagePtr image = drawnImage(type(), {width, 9}, {1, 2, 3}, 33);
                const auto algorithm = boost::make_shared<UnpaddedLvl3>();
                const auto pixels = Pixels2d::createNode();
                algorithm->init(processor::ePRP_WithRules);
                algorithm->set<InKnlYStrip2d>(boost::make_shared<InputImageYStrip2dWithKernel>(
                    image, PlanIndex(), 0, 9, StripMargins{dist, dist, dist, dist, 0, 0}));
                algorithm->set<InLocalExtremaConfig>(configOf(kind, noThreshold(kind)));
                algorithm->set<OutPixels2d>(pixels);
                processor::executeSyncRun(algorithm);
                const unsigned long whole = set() == core::eIS_Generic ? width : width - width % block;
                EXPECT_TRUE(same(listOf(pixelsOf(*image, dist, dist, kind, noThreshold(kind), static_cast<long>(whole))),
                                 numbersOf(pixels)))
                    << width << " columns, kind " << kind << ", distance " << dist;
            }
}

TEST(Extrema, AreAllMaximaOrTheHighestOfThose)
{
    const ImagePtr plane = drawnImage(eIBT_UInt16, {60, 90}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 34);
    const Numbers all = expectedList(*plane, 2, 3, eLET_Maxima, -1e300);
    EXPECT_TRUE(same(all, numbersOf(extractLocalExtrema2d(plane, 2, 3))));
    EXPECT_TRUE(same(all, numbersOf(extractLocalExtrema2d(plane, 2, 3, nullptr))));
    EXPECT_TRUE(same(expectedList(*plane, 2, 3, eLET_StrictMinima, 3, 40),
                     numbersOf(extractLocalExtrema2d(plane, 2, 3, configOf(eLET_StrictMinima, 3, 40)))));
}

TEST(Extrema, ListsOfTheCallersAreEmptiedFirst)
{
    const ImagePtr plane = drawnImage(eIBT_Int16, {30, 20}, {1, 2, 3, 4}, 36);
    const auto lists = PlanIndexedPixels2d::createOfOnePlane();
    for (int run = 0; run < 2; ++run) {
        ran<ExtractLocalExtrema2dLvl1, InImg, InFeaturesDistX, InFeaturesDistY, OutPIPixels2d>(plane, 1, 1, lists);
        EXPECT_TRUE(same(expectedList(*plane, 1, 1, eLET_Maxima, -1e300), numbersOf(lists)));
    }
}

TEST(Extrema, AreNoneOrMaximaForValuesBeyondTheUsual)
{
    const ImagePtr plane = drawnImage(eIBT_UInt8, {30, 20}, {1, 2, 3, 4}, 37);
    EXPECT_EQ(Numbers{0}, numbersOf(extractLocalExtrema2d(plane, 2, 1, createLocalExtremaConfig(0ul))));
    EXPECT_TRUE(same(expectedList(*plane, 2, 1, eLET_Maxima, -1e300),
                     numbersOf(extractLocalExtrema2d(plane, 2, 1, configOf(static_cast<eLocalExtremumType>(7), -1e300)))));
}

TEST(Extrema, RefuseWhatDoesNotFitInWords)
{
    const ImagePtr stack = blank(4, 3, 2);
    const boost::shared_ptr<ExtractLocalExtrema2dLvl1> none;
    const std::string plans = "failed: entries of OutPIPixels2d are the planes (z, c, t) of InImg: 1 entries, 2 planes";
    expectRefusals({}, {{"ExtractLocalExtrema2dLvl1 refuses to run: mandatory attribute InImg has no value (unset or null)",
                         [] { multiSlice_extractLocalExtrema2d(nullptr, 1, 1); }},
                        {plans, [&] { extractLocalExtrema2d(stack, 1, 1); }},
                        {plans, [&] { getAsyncProcessorOutput(extractLocalExtrema2d_async(stack, 1, 1)); }},
                        {"A null processor can't be run", [&] { getAsyncProcessorOutput(none); }},
                        {"A null processor can't be run", [&] { getAsyncProcessorMultiSliceOutput(none); }}});
}

TEST(Extrema, WithinAnyDistanceBeyondTheImageAreThoseOfItsSize)
{
    const ImagePtr plane = randomImage(image::eIBT_Int16, {40, 30}, 8);
    for (const unsigned int distX : {3u, 40u}) {
        const auto expected = numbersOf(extractLocalExtrema2d(plane, distX, 30));
        EXPECT_LE(distX == 3 ? 2 : 1, expected.at(0));
        for (const unsigned int beyond : {3000000000u, 4294967295u})
            EXPECT_EQ(expected, numbersOf(extractLocalExtrema2d(plane, distX == 3 ? distX : beyond, beyond)));
    }
}

/// The voxels of a volume, found by a window for each line of its slices; what lies in other lines of the slice is told here.
template<class T>
Pixels voxelsOf(const BaseImage& volume, long distX, long distY, long distZ, eLocalExtremumType kind, long whole)
{
    struct NothingNext
    {
        void prefetchNext(unsigned long, unsigned long) const {}
    };
    const bool minima = areMinima(kind);
    const long sizeX = static_cast<long>(volume.getSizeX()), sizeY = static_cast<long>(volume.getSizeY()),
               sizeZ = static_cast<long>(volume.getSizeZ());
    const auto bordered = borderedReader(volume, minima);
    const auto at = [&](long x, long y, long z) { return static_cast<T>(bordered(x, y, z)); };
    const auto orientedAt = [&](long x, long y, long z) {
        const T value = oriented(at(x, y, z), minima);
        return NumericLimits<T>::s_min < value ? value : NumericLimits<T>::s_min;  // nor NaN
    };
    ExtremaKind<T> looked{minima, kind == eLET_StrictMaxima || kind == eLET_StrictMinima, true, T()};
    EXPECT_TRUE(getLowestListed(minima, static_cast<float>(noThreshold(kind)), looked.lowestListed));
    std::vector<ExtremaBuffers> buffers(volume.getSizeY());
    std::vector<ExtremaWindow<T>> windows;
    for (ExtremaBuffers& each : buffers) {
        each.init(DataTypeOf<T>::value, volume.getSizeX(), static_cast<unsigned long>(distX),
                  static_cast<unsigned long>(distZ));
        windows.emplace_back(each, looked, volume.getSizeX(), static_cast<unsigned long>(whole));
    }
    Pixels voxels;
    for (long z = -distZ; z < sizeZ + distZ; ++z)
        for (long y = 0; y < sizeY; ++y) {
            const long room = 64;  // what vectors reach beyond a line
            std::vector<T> raw, parts[5];
            for (std::vector<T>& part : parts)
                part.assign(static_cast<std::size_t>(sizeX + 2 * room), NumericLimits<T>::s_min);
            for (long x = -distX; x < sizeX + distX; ++x)
                raw.push_back(at(x, y, z));
            for (long x = 0; x < sizeX; ++x)
                for (long ny = y - distY; ny <= y + distY; ++ny)
                    for (long nx = x - distX; nx <= x + distX; ++nx) {
                        const int part = ny < y ? 3 : ny > y ? 4 : nx < x ? 1 : nx > x ? 2 : 0;
                        T& extremum = parts[part][static_cast<std::size_t>(room + x)];
                        extremum = std::max(extremum, orientedAt(nx, ny, z));
                    }
            ExtremaWindow<T>& window = windows[static_cast<std::size_t>(y)];
            window.enterElement({&parts[0][room], &parts[1][room], &parts[2][room], &parts[3][room], &parts[4][room]},
                                NothingNext());
            window.closeNearNan(raw.data());
            const long centreZ = z - distZ;
            if (centreZ < 0)
                continue;
            std::vector<T> centre(static_cast<std::size_t>(sizeX + room));
            for (long x = 0; x < sizeX; ++x)
                centre[static_cast<std::size_t>(x)] = at(x, y, centreZ);
            window.forEachExtremum(centre.data(), [&](unsigned long x) {
                voxels.push_back({static_cast<double>(x), static_cast<double>(y), static_cast<double>(centreZ),
                                  static_cast<double>(centre[x])});
            });
        }
    return voxels;
}

TEST(ExtremaWindow, OfEachLineOfASliceFindsThoseOfVolumes)
{
    unsigned int seed = 41;
    for (const long width : {3l, 70l, 131l})
        for (const eLocalExtremumType kind : kKinds)
            for (const std::array<long, 3>& dist : {std::array<long, 3>{1, 1, 1}, {0, 2, 3}, {2, 0, 6}, {1, 1, 0}}) {
                const auto expectFound = [&](eImageBufferType type, const std::vector<double>& values, auto zero) {
                    const ImagePtr volume = drawnImage(type, {static_cast<unsigned long>(width), 5, 7}, values, seed++);
                    for (const long whole : {width, width - width % 64}) {
                        const Pixels expected = pixelsOf(*volume, dist[0], dist[1], kind, noThreshold(kind), whole, dist[2]);
                        EXPECT_EQ(expected, (voxelsOf<decltype(zero)>(*volume, dist[0], dist[1], dist[2], kind, whole)))
                            << width << " columns, the first " << whole << " in blocks, kind " << kind << ", distances "
                            << dist[0] << ", " << dist[1] << ", " << dist[2];
                    }
                };
                expectFound(eIBT_UInt8, {1, 2, 3, 4, 5, 6}, static_cast<unsigned char>(0));
                expectFound(eIBT_Real32, {-2, 1, 1.5, 7, 8, 9, kNan}, 0.0f);
            }
}

TEST(Extrema, WithinTheWholeOfATallImageTakeNoLongerInStripsForThreads)
{
    const unsigned long height = 4742;
    const ImagePtr plane = randomImage(eIBT_UInt16, {1, height}, 38);
    const Numbers expected = expectedList(*plane, 0, 5, eLET_Maxima, -1e300),
                  highest = numbersOf(extractLocalExtrema2d(plane, height, height));
    EXPECT_LE(1, highest.at(0));
    const auto search =
        processorWith<ExtractLocalExtrema2dLvl2, InSubImg2d, InFeaturesDistX, InFeaturesDistY, InLocalExtremaConfig>(
            plane, 0, height, createLocalExtremaConfig());
    for (const unsigned long grain : {1ul, 64ul}) {
        const WithGrain lines(grain);
        processor::ProviderPtr provider;
        ASSERT_TRUE(search->retrieveProvider(core::BasePriority(), provider));
        // Each strip reads the whole image, and as many lines again outside of it.
        EXPECT_GE(8ul, provider->start(1));
        EXPECT_TRUE(same(highest, numbersOf(extractLocalExtrema2d(plane, height, height))));
        EXPECT_TRUE(same(expected, numbersOf(extractLocalExtrema2d(plane, 0, 5)))) << "in strips as thin as was asked for";
    }
}

}  // namespace
}  // namespace orvik::test
