// Canny edges of planes: the classes of pixels, both hysteresis strategies, the calls.

#include "InstructionSets.h"
#include "TestImages.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"
#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl2.h"
#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"
#include "frame/util/BaseException.h"

#include <cmath>
#include <deque>
#include <limits>

namespace orvik::test {
namespace {

using namespace imaproc::attr;
using imaproc::fd::cannyEdges2dImg;
using imaproc::fd::CannyEdges2dImgLvl1;
using imaproc::fd::CannyEdges2dImgLvl2;
using imaproc::fd::CannyEdges2dImgLvl3;

const double kNan = std::numeric_limits<double>::quiet_NaN();

/// The detector pixel by pixel, from its definition.
class Reference
{
public:
    Reference(const image::BaseImage& gx, const image::BaseImage& gy, double low, double high, unsigned long z = 0)
        : m_gx(gx), m_gy(gy), m_z(z), m_low(low * low), m_high(high * high)
    {
    }

    std::vector<int> classes() const
    {
        std::vector<int> result;
        for (long y = 0; y < sizeY(); ++y)
            for (long x = 0; x < sizeX(); ++x)
                result.push_back(classOf(x, y));
        return result;
    }

    /// 1 on strong pixels and on weak ones that are joined to one by steps of one pixel, diagonal ones included.
    std::vector<int> edges() const
    {
        std::vector<int> all = classes(), result(all.size(), 0);
        std::deque<long> open;
        for (std::size_t i = 0; i < all.size(); ++i)
            if (all[i] == 2) {
                result[i] = 1;
                open.push_back(static_cast<long>(i));
            }
        while (!open.empty()) {
            const long x = open.front() % sizeX(), y = open.front() / sizeX();
            open.pop_front();
            for (long ny = std::max(0l, y - 1); ny <= std::min(sizeY() - 1, y + 1); ++ny)
                for (long nx = std::max(0l, x - 1); nx <= std::min(sizeX() - 1, x + 1); ++nx) {
                    const std::size_t i = static_cast<std::size_t>(ny * sizeX() + nx);
                    if (all[i] != 0 && result[i] == 0) {
                        result[i] = 1;
                        open.push_back(static_cast<long>(i));
                    }
                }
        }
        return result;
    }

private:
    long sizeX() const { return static_cast<long>(m_gx.getSizeX()); }
    long sizeY() const { return static_cast<long>(m_gx.getSizeY()); }
    double at(const image::BaseImage& g, long x, long y) const
    {
        const bool inside = x >= 0 && y >= 0 && x < sizeX() && y < sizeY();
        return inside ? sampleAt(g, static_cast<unsigned long>(x), static_cast<unsigned long>(y), m_z) : 0.0;
    }
    /// Squared magnitude with the wrap of its type. Squares of whole numbers below 2^32 need 64 bits.
    double magnitude(long x, long y) const
    {
        const double gx = at(m_gx, x, y), gy = at(m_gy, x, y);
        const eDataType type = image::toDataType(m_gx.getBufferType());
        if (type == eDT_Real32) {
            const volatile double xx = gx * gx, yy = gy * gy;
            return xx + yy;
        }
        const unsigned long wx = static_cast<unsigned long>(static_cast<long>(gx));
        const unsigned long wy = static_cast<unsigned long>(static_cast<long>(gy));
        const unsigned long sum = wx * wx + wy * wy;
        return static_cast<double>(type == eDT_Int8 || type == eDT_UInt8 ? sum & 0xFFFF : sum & 0xFFFFFFFF);
    }
    int classOf(long x, long y) const
    {
        const double m = magnitude(x, y);
        if (m_low >= m)
            return 0;
        const double gx = at(m_gx, x, y), gy = at(m_gy, x, y);
        const volatile double along = std::fabs(gx) * 0.41421356237309503, across = std::fabs(gx) * 2.414213562373095;
        bool kept;
        if (along > std::fabs(gy))
            kept = m > magnitude(x - 1, y) && m >= magnitude(x + 1, y);
        else if (std::fabs(gy) > across)
            kept = m >= magnitude(x, y + 1) && m > magnitude(x, y - 1);
        else if ((gx < 0) == (gy < 0))
            kept = m > magnitude(x + 1, y + 1) && m > magnitude(x - 1, y - 1);
        else
            kept = m > magnitude(x - 1, y + 1) && m > magnitude(x + 1, y - 1);
        return kept ? (m > m_high ? 2 : 1) : 0;
    }

    const image::BaseImage& m_gx;
    const image::BaseImage& m_gy;
    const unsigned long m_z;
    const double m_low, m_high;
};

boost::shared_ptr<const CannyThresholds> thresholds(double low, double high)
{
    return CannyThresholds::createNode(low, high);
}

std::vector<int> samplesOf(const image::BaseImage& image, unsigned long z = 0)
{
    std::vector<int> result;
    for (unsigned long y = 0; y < image.getSizeY(); ++y)
        for (unsigned long x = 0; x < image.getSizeX(); ++x)
            result.push_back(static_cast<int>(sampleAt(image, x, y, z)));
    return result;
}

/// The class image as Level 2 makes it.
std::vector<int> classesOf(const ImagePtr& gx, const ImagePtr& gy, double low, double high)
{
    const auto processor = processor::createInitialised<CannyEdges2dImgLvl2>();
    const ImagePtr out = image::createImageLike(*gx, image::eIBT_UInt8);
    processor->set<InSubGxImg2d>(gx);
    processor->set<InSubGyImg2d>(gy);
    processor->set<InCannyThresholds>(thresholds(low, high));
    processor->set<OutBinImg>(out);
    processor::executeSyncRun(processor);
    return samplesOf(*out);
}

/// Gradients of which many are equal, so that ties are met in every sector; `spread` values on each side of 0.
ImagePtr tiedImage(image::eImageBufferType type, const image::ImageSizes& sizes, int spread, unsigned int seed)
{
    const ImagePtr image = image::createImage(type, sizes);
    std::mt19937 random(seed);
    const bool isSigned = type == image::eIBT_Int8 || type == image::eIBT_Int16 || type == image::eIBT_Int32
                          || type == image::eIBT_Real32;
    forEachSample(sizes, [&](auto x, auto y, auto z, auto c, auto t) {
        const int value = static_cast<int>(random() % static_cast<unsigned int>(2 * spread + 1)) - spread;
        setSample(*image, isSigned ? value : std::abs(value), x, y, z, c, t);
    });
    return image;
}

class CannyKernel : public KernelTest<CannyEdges2dImgLvl3>
{
protected:
    void expectReference(const ImagePtr& gx, const ImagePtr& gy, double low, double high) const
    {
        SCOPED_TRACE(toString(gx->getGeometry().getSizes()) + ", thresholds " + std::to_string(low) + ", "
                     + std::to_string(high));
        EXPECT_EQ(Reference(*gx, *gy, low, high).classes(), classesOf(gx, gy, low, high));
    }
};

INSTANTIATE_TEST_SUITE_P(AllKernels, CannyKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(CannyKernel, ClassesEqualTheDefinitionForAnyWidth)
{
    for (const unsigned long width : {1ul, 2ul, 3ul, 15ul, 16ul, 17ul, 31ul, 33ul, 62ul, 63ul, 64ul, 65ul, 66ul, 70ul, 127ul,
                                      128ul, 129ul, 200ul}) {
        const image::ImageSizes sizes(width, 1 + width % 5);
        const ImagePtr gx = tiedImage(type(), sizes, 3, 7), gy = tiedImage(type(), sizes, 3, 8);
        expectReference(gx, gy, 1.0, 3.0);
    }
    EXPECT_NE(0u, processor::getAlgorithmEntry(CannyEdges2dImgLvl3::getTypeName()).lastEfficiency
                      + (set() == core::eIS_Generic ? 1 : 0))
        << "plain code ran instead of the forced set";
}

TEST_P(CannyKernel, ClassesEqualTheDefinitionForAnyValues)
{
    const image::ImageSizes sizes(137, 9);
    const ImagePtr gx = randomImage(type(), sizes, 9), gy = randomImage(type(), sizes, 10);
    // Low above high, negative, whole roots that magnitudes meet, and thresholds that are no numbers or beyond all.
    for (const auto& limits : {std::make_pair(0.0, 0.0), std::make_pair(100.0, 250.0), std::make_pair(5.0, 2.0),
                               std::make_pair(-40.0, -60.0), std::make_pair(65535.0, 65536.0), std::make_pair(kNan, 10.0),
                               std::make_pair(1.0, kNan), std::make_pair(1e300, 1e300)})
        expectReference(gx, gy, limits.first, limits.second);
}

TEST_P(CannyKernel, ClassesEqualTheDefinitionAtTheTypesLimits)
{
    const image::ImageSizes sizes(70, 12);
    const ImagePtr gx = image::createImage(type(), sizes), gy = image::createImage(type(), sizes);
    std::mt19937 random(11);
    image::withSampleType(image::toDataType(type()), [&](auto sample) {
        typedef decltype(sample) T;
        std::vector<T> odd = {NumericLimits<T>::s_min, NumericLimits<T>::s_max, T(0), T(1), T(-1), T(NumericLimits<T>::s_max / 2)};
        if constexpr (std::is_floating_point<T>::value)
            for (const float value : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                                      -std::numeric_limits<float>::infinity(), -0.0f, 1e-42f})
                odd.push_back(value);
        forEachSample(sizes, [&](auto x, auto y, auto, auto, auto) {
            static_cast<T*>(gx->accessLine(y))[x] = odd[random() % odd.size()];
            static_cast<T*>(gy->accessLine(y))[x] = odd[random() % odd.size()];
        });
    });
    expectReference(gx, gy, 0.0, 100.0);
    expectReference(gx, gy, 180.0, 46000.0);
}

// The widest type whose sectors are decided in whole numbers.
class CannySectors : public CannyKernel
{
};
INSTANTIATE_TEST_SUITE_P(Int16Kernels, CannySectors, ::testing::ValuesIn(kernelsOf(image::eIBT_Int16)), kernelName);

TEST_P(CannySectors, OfWholeNumbersAreThoseOfTheTangents)
{
    // One line per length: four gradients next to each of the two limits of a sector, each beside an equal one, which
    // suppresses it in the sector along that side alone. Both signs meet both corners of the range.
    const int step = 7;
    const unsigned long nbLengths = 32768 / step + 1, sizeX = 24;
    const image::ImageSizes sizes(sizeX, 3 * nbLengths);
    const ImagePtr gx = image::createImage(type(), sizes), gy = image::createImage(type(), sizes);
    for (unsigned long i = 0; i < nbLengths; ++i) {
        const int length = 32768 - static_cast<int>(i) * step;
        const int limit = static_cast<int>(std::floor(length * 0.41421356237309503));
        short* const x = static_cast<short*>(gx->accessLine(3 * i));
        short* const y = static_cast<short*>(gy->accessLine(3 * i));
        for (int k = 0; k < 4; ++k)
            for (int side = 0; side < 2; ++side) {
                x[3 * k + side] = static_cast<short>(-length);
                y[3 * k + side] = static_cast<short>(limit - 1 + k);
                x[12 + 3 * k + side] = static_cast<short>(limit - 1 + k);
                y[12 + 3 * k + side] = static_cast<short>(-length);
            }
    }
    expectReference(gx, gy, 0.0, 1.0);
}

// Floats are told apart by rounded magnitudes where those suffice.
class CannyCloseFloats : public CannyKernel
{
};
INSTANTIATE_TEST_SUITE_P(FloatKernels, CannyCloseFloats, ::testing::ValuesIn(kernelsOf(image::eIBT_Real32)), kernelName);

TEST_P(CannyCloseFloats, AreComparedExactly)
{
    // Pairs of neighbours on an empty image, so far apart that no other comparison shares a vector with theirs. Lengths
    // differ by roundings alone, from each other and from the thresholds; a third of the directions lie that close to the
    // limit of a sector. At the outer scales squares vanish, lose digits or overflow in float.
    const image::ImageSizes sizes(20 * 70, 3 * 40);
    for (const float scale : {1e-43f, 1e-23f, 3e-21f, 1e-15f, 1.0f, 1e10f, 1.8e19f, 1e30f}) {
        const ImagePtr gx = image::createImage(type(), sizes), gy = image::createImage(type(), sizes);
        std::mt19937 random(12);
        const auto setGradient = [&](unsigned long x, unsigned long y) {
            const double pi = 3.14159265358979323846;
            const double angle = pi / 8 * (random() % 3 ? static_cast<double>(random() % 2000) / 1000.0 : 1.0);
            float along = scale * static_cast<float>(std::cos(angle)), across = scale * static_cast<float>(std::sin(angle));
            if (random() % 2)
                std::swap(along, across);
            static_cast<float*>(gx->accessLine(y))[x] = along;
            static_cast<float*>(gy->accessLine(y))[x] = random() % 4 ? across : -across;
        };
        for (unsigned long y = 0; y < sizes.y; y += 3)
            for (unsigned long x = 1; x < sizes.x; x += 20) {
                setGradient(x, y);
                const unsigned long step = random() % 4;
                setGradient(x + (step > 0) - 2 * (step == 3), y + (step != 1));
            }
        const double length = static_cast<double>(scale);
        expectReference(gx, gy, 0.5 * length, length);
        expectReference(gx, gy, length, 1.5 * length);
    }
}

struct Call
{
    eProcessingOptimizationPolicy policy;
    unsigned int nbThreads;
    unsigned long grain;
};

TEST(CannyEdges, EqualTheDefinitionForBothStrategiesAndAnyStripsAndThreads)
{
    const image::ImageSizes sizes(211, 61, 2);
    for (const image::eImageBufferType type : kAllTypes) {
        const ImagePtr gx = tiedImage(type, sizes, 20, 12), gy = tiedImage(type, sizes, 20, 13);
        for (const Call& call : {Call{ePOP_Labels, 1, 0}, Call{ePOP_Iterative, 1, 0}, Call{ePOP_Labels, 3, 1},
                                 Call{ePOP_Iterative, 3, 1}, Call{ePOP_Iterative, 2, 7}, Call{ePOP_Iterative, 1, 1000}}) {
            core::setNbThreads(call.nbThreads);
            core::setStripGrain(call.grain);
            const ImagePtr out = image::createImage(image::eIBT_Binary, sizes);
            cannyEdges2dImg(gx, gy, thresholds(10, 22), call.policy, out);
            for (unsigned long z = 0; z < sizes.z; ++z)
                EXPECT_EQ(Reference(*gx, *gy, 10, 22, z).edges(), samplesOf(*out, z))
                    << toString(type) << ", policy " << call.policy << ", " << call.nbThreads << " threads, grain "
                    << call.grain << ", plane " << z;
        }
    }
    core::setNbThreads(0);
    core::setStripGrain(0);
}

/// Edges by hand: a picture of magnitudes along x, one character per pixel, 0 to 9.
std::vector<int> edgesOf(const std::vector<std::string>& magnitudes, double low, double high,
                         eProcessingOptimizationPolicy policy)
{
    const image::ImageSizes sizes(magnitudes[0].size(), magnitudes.size());
    const ImagePtr gx = image::createImage(image::eIBT_Int16, sizes), gy = image::createImage(image::eIBT_Int16, sizes);
    forEachSample(sizes, [&](auto x, auto y, auto, auto, auto) { setSample(*gx, magnitudes[y][x] - '0', x, y); });
    const ImagePtr out = image::createImage(image::eIBT_Binary, sizes);
    cannyEdges2dImg(gx, gy, thresholds(low, high), policy, out);
    return samplesOf(*out);
}

TEST(CannyEdges, WeakPixelsLiveByAStrongOneHoweverFarAndDiagonal)
{
    for (const eProcessingOptimizationPolicy policy : {ePOP_Labels, ePOP_Iterative}) {
        EXPECT_EQ((std::vector<int>{0, 0, 0, 0, 0,  //
                                    1, 0, 0, 0, 0,  //
                                    0, 1, 0, 0, 0,  //
                                    0, 0, 1, 0, 0}),
                  edgesOf({"00003", "50000", "03000", "00300"}, 2, 4, policy));
        EXPECT_EQ(std::vector<int>(20, 0), edgesOf({"00003", "30000", "03000", "00300"}, 2, 4, policy));
        // A serpent that crosses every strip several times, lit at its far end.
        core::setStripGrain(1);
        EXPECT_EQ((std::vector<int>{1, 0, 1, 0, 1, 0, 1,  //
                                    1, 0, 1, 0, 1, 0, 1,  //
                                    0, 1, 0, 1, 0, 1, 0}),
                  edgesOf({"3030303", "3030305", "0303030"}, 2, 4, policy));
        core::setStripGrain(0);
    }
}

TEST(CannyEdges, WorkingImagesAreTheCallersWhereTheyFit)
{
    const image::ImageSizes sizes(40, 30);
    const ImagePtr gx = tiedImage(image::eIBT_Int16, sizes, 20, 14), gy = tiedImage(image::eIBT_Int16, sizes, 20, 15);
    const std::vector<int> expected = Reference(*gx, *gy, 10, 22).edges();
    const auto run = [&](const ImagePtr& out, const ImagePtr& wk1, eProcessingOptimizationPolicy policy) {
        const auto processor = processor::createInitialised<CannyEdges2dImgLvl1>();
        processor->set<InGxGreyImg2d>(gx);
        processor->set<InGyGreyImg2d>(gy);
        processor->set<InCannyThresholds>(thresholds(10, 22));
        processor->set<InOptOptimizationPolicy>(policy);
        processor->set<OutBinImg>(out);
        processor->set<OutOptWk1BinImg>(wk1);
        processor::executeSyncRun(processor);
        return processor;
    };
    // The result holds the classes itself: the working image stays untouched.
    const ImagePtr untouched = randomImage(image::eIBT_UInt8, sizes, 16), copy = randomImage(image::eIBT_UInt8, sizes, 16);
    const ImagePtr out = image::createImage(image::eIBT_Label8, sizes);
    run(out, untouched, ePOP_Labels);
    EXPECT_EQ(expected, samplesOf(*out));
    EXPECT_TRUE(sameSamples(*untouched, *copy));

    // A result of another type goes through the working image; one that cannot hold the classes is replaced.
    const ImagePtr wide = image::createImage(image::eIBT_Real32, sizes);
    EXPECT_EQ(untouched, run(wide, untouched, ePOP_Iterative)->getStorage<OutOptWk1BinImg>());
    EXPECT_EQ(expected, samplesOf(*wide));
    const auto replaced = run(wide, image::createImage(image::eIBT_Int16, sizes), ePOP_Iterative);
    EXPECT_EQ(image::eIBT_UInt8, replaced->getStorage<OutOptWk1BinImg>()->getBufferType());

    // By labels only the strong candidates reach such a result: deliberate.
    std::vector<int> strong = Reference(*gx, *gy, 10, 22).classes();
    for (int& pixel : strong)
        pixel /= 2;
    run(wide, nullptr, ePOP_Labels);
    EXPECT_EQ(strong, samplesOf(*wide));
}

TEST(CannyEdges, AreTheSameByEveryCallShapeAndOnBuffersOfTheCallers)
{
    const image::ImageSizes sizes(77, 19);
    GuardedImage gx(image::eIBT_Int16, sizes, 5), gy(image::eIBT_Int16, sizes, 1), out(image::eIBT_Binary, sizes, 3);
    fillRandom(*gx.get(), 17);
    fillRandom(*gy.get(), 18);
    const auto limits = thresholds(9000, 30000);
    const std::vector<int> expected = Reference(*gx.get(), *gy.get(), 9000, 30000).edges();
    const ImagePtr made = cannyEdges2dImg(gx.get(), gy.get(), limits);
    EXPECT_EQ(image::eIBT_Binary, made->getBufferType());
    EXPECT_EQ(expected, samplesOf(*made));
    EXPECT_EQ(expected, samplesOf(*getAsyncProcessorOutput(imaproc::fd::cannyEdges2dImg_async(gx.get(), gy.get(), limits))));
    for (const eProcessingOptimizationPolicy policy : {ePOP_Labels, ePOP_Iterative}) {
        cannyEdges2dImg(gx.get(), gy.get(), limits, policy, out.get());
        EXPECT_EQ(expected, samplesOf(*out.get()));
        const auto running = imaproc::fd::cannyEdges2dImg_async(gx.get(), gy.get(), limits, policy, out.get());
        EXPECT_EQ(out.get(), getAsyncProcessorOutput(running));
    }
    EXPECT_TRUE(gx.areGuardsIntact() && gy.areGuardsIntact() && out.areGuardsIntact());
}

TEST(CannyEdges, StagesEndAtTheFifthAndRefuseASixth)
{
    const auto processor = processor::createInitialised<CannyEdges2dImgLvl1>();
    processor::ProviderPtr provider;
    const processor::RetrievalResult last = processor->retrieveProvider(core::BasePriority(), 5u, provider);
    EXPECT_EQ(processor::eRRT_NoMoreProvider, last.getValue());
    EXPECT_EQ("", last.getMessage());
    const processor::RetrievalResult beyond = processor->retrieveProvider(core::BasePriority(), 6u, provider);
    EXPECT_EQ(processor::eRRT_RetrievalFailed, beyond.getValue());
    EXPECT_EQ("Invalid iteration number (cannot be greater than 5)", beyond.getMessage());
    EXPECT_FALSE(provider);
}

template<class F>
std::string textOf(F&& call)
{
    try {
        call();
    } catch (const processor::ORVIKBaseProcessingException& e) {
        return e.what();
    }
    return "accepted";
}

TEST(CannyEdges, RefuseWhatDoesNotFitInWordsBeforeAnythingIsWritten)
{
    const image::ImageSizes sizes(20, 10);
    const ImagePtr gx = randomImage(image::eIBT_Int16, sizes, 19), gy = randomImage(image::eIBT_Int16, sizes, 20);
    const auto limits = thresholds(1, 2);
    const auto refusal = [&](const ImagePtr& x, const ImagePtr& y, const ImagePtr& out) {
        return textOf([&] { cannyEdges2dImg(x, y, limits, ePOP_Iterative, out); });
    };
    const ImagePtr out = randomImage(image::eIBT_UInt8, sizes, 21), kept = randomImage(image::eIBT_UInt8, sizes, 21);
    EXPECT_EQ("CannyEdges2dImgLvl1 refuses to run: mandatory attribute InGxGreyImg2d has no value (unset or null)",
              refusal(nullptr, gy, out));
    EXPECT_EQ("CannyEdges2dImgLvl1 refuses to run: mandatory attribute InCannyThresholds has no value (unset or null)",
              textOf([&] { cannyEdges2dImg(gx, gy, nullptr); }));
    EXPECT_NE(std::string::npos,
              refusal(gx, randomImage(image::eIBT_Int16, {20, 11}, 1), out)
                  .find("failed: size X x Y x Z x C x T of InGxGreyImg2d (20 x 10 x 1 x 1 x 1) equals that of InGyGreyImg2d "
                        "(20 x 11 x 1 x 1 x 1)"));
    EXPECT_NE(std::string::npos,
              refusal(gx, randomImage(image::eIBT_UInt16, sizes, 1), out)
                  .find("failed: buffer type of InGxGreyImg2d (signed 16 bits (type 3)) equals that of InGyGreyImg2d "
                        "(unsigned 16 bits (type 4))"));
    EXPECT_NE(std::string::npos, refusal(gx, gy, image::createImage(image::eIBT_Binary, {10, 20}))
                                     .find("of OutBinImg (10 x 20 x 1 x 1 x 1)"));
    EXPECT_TRUE(sameSamples(*out, *kept));
    EXPECT_EQ("A null processor can't be run",
              textOf([] { getAsyncProcessorOutput(boost::shared_ptr<CannyEdges2dImgLvl1>()); }));
    // Strips would read gradients that others have overwritten, wherever in them the result begins.
    const ImagePtr tall = randomImage(image::eIBT_UInt8, {20, 30}, 24);
    const auto lines = [&](unsigned long first) {
        return image::wrapBuffer(tall->accessLine(first), image::eIBT_UInt8, sizes, image::ImageStrides(tall->getStrides().y));
    };
    EXPECT_NE(std::string::npos, refusal(lines(0), lines(20), lines(5)).find("failed: memory of InGxGreyImg2d"));
    EXPECT_EQ("accepted", refusal(lines(0), lines(10), lines(20)));
    const ImagePtr bytes = randomImage(image::eIBT_UInt8, sizes, 22);
    EXPECT_NE(std::string::npos, refusal(bytes, randomImage(image::eIBT_UInt8, sizes, 23), bytes)
                                     .find("failed: memory of InGxGreyImg2d"));
}

TEST(CannyEdges, MoreComponentsThanLabelsEndTheRunInWords)
{
    // Every third pixel of every third line is an edge of its own.
    const image::ImageSizes sizes(3 * 260, 3 * 260);
    const ImagePtr gx = image::createImage(image::eIBT_Int16, sizes), gy = image::createImage(image::eIBT_Int16, sizes);
    for (unsigned long y = 0; y < sizes.y; y += 3)
        for (unsigned long x = 0; x < sizes.x; x += 3)
            setSample(*gx, 10, x, y);
    const ImagePtr out = image::createImage(image::eIBT_Binary, sizes);
    EXPECT_EQ("there are 67600 connected components, but OutLabelImg, label 16 bits (type 9), can name only 65535: use the "
              "iterative optimization policy or wider labels",
              textOf([&] { cannyEdges2dImg(gx, gy, thresholds(1, 2), ePOP_Labels, out); }));
    cannyEdges2dImg(gx, gy, thresholds(1, 2), ePOP_Iterative, out);
    EXPECT_EQ(Reference(*gx, *gy, 1, 2).edges(), samplesOf(*out));
}

}  // namespace
}  // namespace orvik::test
