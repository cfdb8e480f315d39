#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"
#include "frame/util/BaseException.h"
#include "frame/util/NumericLimits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <random>

using namespace orvik;
using namespace orvik::imaproc;
using filter::gaussianGradient2dImg;
using filter::GaussianGradient2dImgLvl1;
using filter::GaussianGradient2dImgLvl3;
using image::BaseImage;
using image::eImageBufferType;
using image::ImageSizes;

namespace {

typedef boost::shared_ptr<BaseImage> ImagePtr;

const double g_infinity = std::numeric_limits<double>::infinity();

double sample(const BaseImage& image, unsigned long x, unsigned long y)
{
    double value = 0;
    image::withSampleType(image::toDataType(image.getBufferType()), [&](auto zero) {
        value = static_cast<double>(static_cast<const decltype(zero)*>(image.getLine(y))[x]);
    });
    return value;
}

ImagePtr makeImage(eImageBufferType type, const ImageSizes& sizes, const std::function<double(long x, long y)>& value)
{
    const ImagePtr image = image::createImage(type, sizes);
    for (unsigned long t = 0; t < sizes.t; ++t)
        for (unsigned long c = 0; c < sizes.c; ++c)
            for (unsigned long z = 0; z < sizes.z; ++z)
                for (unsigned long y = 0; y < sizes.y; ++y)
                    for (unsigned long x = 0; x < sizes.x; ++x)
                        image::withSampleType(image::toDataType(type), [&](auto zero) {
                            static_cast<decltype(zero)*>(image->accessLine(y, z, c, t))[x] =
                                static_cast<decltype(zero)>(value(static_cast<long>(x), static_cast<long>(y)));
                        });
    return image;
}

/// Samples over the whole range of the type; floats between -1000 and 1000.
ImagePtr randomImage(eImageBufferType type, const ImageSizes& sizes, unsigned int seed)
{
    std::mt19937 generator(seed);
    double low = -1000, high = 1000;
    image::withSampleType(image::toDataType(type), [&](auto zero) {
        if (std::is_integral<decltype(zero)>::value) {
            low = static_cast<double>(NumericLimits<decltype(zero)>::s_min);
            high = static_cast<double>(NumericLimits<decltype(zero)>::s_max);
        }
    });
    std::uniform_real_distribution<double> values(low, high);
    return makeImage(type, sizes, [&](long, long) { return values(generator); });
}

/// One kernel of the formula at one place of a line that is repeated at its ends.
double filtered(const std::function<double(long)>& f, long x, long size, double stdDev, double coverage, bool derivative)
{
    const long halfSize = std::max(1l, static_cast<long>(std::floor(coverage * stdDev + 0.5)));
    double sum = 0, norm = 0;
    for (long k = -halfSize; k <= halfSize; ++k) {
        const double g = std::exp(-0.5 * k * k / (stdDev * stdDev));
        sum += (derivative ? k * g : g) * f(std::max(0l, std::min(x + k, size - 1)));
        norm += derivative ? k * k * g : g;
    }
    return sum / norm;
}

/// Rows first, then columns: the processor goes the other way round.
std::vector<double> reference(const BaseImage& in, double stdDevX, double stdDevY, double coverage, bool alongX)
{
    const long sizeX = static_cast<long>(in.getSizeX()), sizeY = static_cast<long>(in.getSizeY());
    std::vector<double> rows(sizeX * sizeY), result(sizeX * sizeY);
    for (long i = 0; i < sizeX * sizeY; ++i)
        rows[i] = filtered([&](long x) { return sample(in, x, i / sizeX); }, i % sizeX, sizeX, stdDevX, coverage, alongX);
    for (long i = 0; i < sizeX * sizeY; ++i)
        result[i] = filtered([&](long y) { return rows[y * sizeX + i % sizeX]; }, i / sizeX, sizeY, stdDevY, coverage,
                             !alongX);
    return result;
}

/// Orders of summation differ, so a sum is off by some 1e-15 of the largest sample; 1e-13 leaves room, and hides nothing
/// that a wrong weight would do. On top comes half a unit in the last place of the float, or half of one for integers.
void expectReference(const BaseImage& in, const BaseImage& out, const std::vector<double>& expected)
{
    double largest = 0;
    for (unsigned long y = 0; y < in.getSizeY(); ++y)
        for (unsigned long x = 0; x < in.getSizeX(); ++x)
            largest = std::max(largest, std::fabs(sample(in, x, y)));
    image::withSampleType(image::toDataType(out.getBufferType()), [&](auto zero) {
        typedef decltype(zero) T;
        const double low = static_cast<double>(NumericLimits<T>::s_min), high = static_cast<double>(NumericLimits<T>::s_max);
        for (unsigned long y = 0; y < in.getSizeY(); ++y)
            for (unsigned long x = 0; x < in.getSizeX(); ++x) {
                const double e = std::max(low, std::min(expected[y * in.getSizeX() + x], high));
                const double rounding = std::is_integral<T>::value ? 0.5 : std::ldexp(std::fabs(e), -24);
                ASSERT_NEAR(sample(out, x, y), e, rounding + 1e-13 * largest)
                    << toString(in.getBufferType()) << " to " << toString(out.getBufferType()) << ", size "
                    << toString(in.getGeometry().getSizes()) << ", at " << x << ", " << y;
            }
    });
}

bool sameBits(const BaseImage& a, const BaseImage& b)
{
    const std::size_t lineBytes = a.getSizeX() * getImageBufferBaseSize(a.getBufferType());
    for (unsigned long y = 0; y < a.getSizeY(); ++y)
        if (std::memcmp(a.getLine(y), b.getLine(y), lineBytes) != 0)
            return false;
    return true;
}

std::string refusal(const std::function<void()>& call)
{
    try {
        call();
    } catch (const BaseException& e) {
        return e.what();
    }
    return "no exception";
}

class GaussianGradient2dImg : public ::testing::Test
{
protected:
    void TearDown() override
    {
        GaussianGradient2dImgLvl3::releaseForcedInstructionSets();
        core::setStripGrain(0);
        core::setNbThreads(0);
    }
    void force(core::eInstructionSet set)
    {
        core::InstructionSetsIdentifier sets;
        sets.init(set);
        GaussianGradient2dImgLvl3::forceInstructionSets(sets);
    }
};

class GaussianGradient2dImgKernel : public GaussianGradient2dImg,
                                    public ::testing::WithParamInterface<core::eInstructionSet>
{
protected:
    void SetUp() override
    {
        if (!core::isAvailable(GetParam()))
            GTEST_SKIP() << "this machine lacks " << getInstructionSetName(GetParam());
    }
};

/// Each input type with each output type, widths around every block, some images smaller than the kernels; compared with
/// the formula and, bit by bit, with plain code.
TEST_P(GaussianGradient2dImgKernel, IsTheFormulaAndThePlainCode)
{
    for (unsigned long width = 1; width <= 70; ++width) {
        const eImageBufferType inType = static_cast<eImageBufferType>(1 + width % 11);
        const eImageBufferType outType = static_cast<eImageBufferType>(1 + width * 7 / 11 % 11);
        const ImagePtr in = randomImage(inType, ImageSizes(width, 1 + width % 13), static_cast<unsigned int>(width));
        const float stdDevX = width % 3 == 0 ? 3.0f : 0.8f, stdDevY = width % 2 == 0 ? 1.5f : 0.3f;
        ImagePtr outs[2][3];
        for (const bool plain : {false, true}) {
            ImagePtr* const out = outs[plain];
            out[0] = createImageLike(*in, image::eIBT_Real32);
            out[1] = createImageLike(*in, image::eIBT_Real32);
            out[2] = createImageLike(*in, outType);
            force(plain ? core::eIS_Generic : GetParam());
            gaussianGradient2dImg(in, stdDevX, stdDevY, 3.5, out[0], out[1]);
            gaussianGradient2dImg(in, stdDevX, stdDevY, 3.5, out[2], ImagePtr());
        }
        const std::vector<double> alongX = reference(*in, stdDevX, stdDevY, 3.5, true);
        expectReference(*in, *outs[0][0], alongX);
        expectReference(*in, *outs[0][1], reference(*in, stdDevX, stdDevY, 3.5, false));
        expectReference(*in, *outs[0][2], alongX);
        for (int i = 0; i < 3; ++i)
            ASSERT_TRUE(sameBits(*outs[0][i], *outs[1][i])) << "width " << width << ", output " << i;
    }
}

TEST_P(GaussianGradient2dImgKernel, RunsTheForcedSet)
{
    const ImagePtr in = randomImage(image::eIBT_UInt8, ImageSizes(70, 20), 1);
    force(GetParam());
    gaussianGradient2dImg(in, 1.0f);
    EXPECT_EQ(processor::getAlgorithmEntry(GaussianGradient2dImgLvl3::getTypeName()).lastEfficiency.load() / 256,
              static_cast<unsigned int>(GetParam()));
}

TEST_P(GaussianGradient2dImgKernel, IntegersRoundHalfToEvenAndSaturate)
{
    force(GetParam());
    // So narrow a Gaussian weighs the centre 1 and the neighbours 0.5: halves are met exactly.
    const auto slope = [](float perPixel, eImageBufferType type) {
        const ImagePtr in = makeImage(image::eIBT_Real32, ImageSizes(3, 1), [&](long x, long) { return perPixel * x; });
        const ImagePtr out = createImageLike(*in, type);
        gaussianGradient2dImg(in, 0.1f, 0.1f, 4.0, out, ImagePtr());
        return sample(*out, 1, 0);
    };
    EXPECT_EQ(slope(2.5f, image::eIBT_Int8), 2);
    EXPECT_EQ(slope(3.5f, image::eIBT_Int16), 4);
    EXPECT_EQ(slope(-2.5f, image::eIBT_Int32), -2);
    EXPECT_EQ(slope(-3.5f, image::eIBT_Int8), -4);
    EXPECT_EQ(slope(300, image::eIBT_UInt8), 255);
    EXPECT_EQ(slope(-300, image::eIBT_Binary), 0);
    EXPECT_EQ(slope(-300, image::eIBT_Int8), -128);
    EXPECT_EQ(slope(70000, image::eIBT_Label16), 65535);
    EXPECT_EQ(slope(3e9f, image::eIBT_Int32), 2147483647);
    EXPECT_EQ(slope(3e9f, image::eIBT_UInt32), 3e9);
    EXPECT_EQ(slope(1e30f, image::eIBT_Label32), 4294967295);
    EXPECT_EQ(slope(std::numeric_limits<float>::quiet_NaN(), image::eIBT_Int16), 0);
    EXPECT_TRUE(std::isnan(slope(std::numeric_limits<float>::quiet_NaN(), image::eIBT_Real32)));
}

INSTANTIATE_TEST_SUITE_P(Sets, GaussianGradient2dImgKernel,
                         ::testing::Values(core::eIS_Generic, core::eIS_Sse2, core::eIS_Avx2, core::eIS_Avx512),
                         [](const auto& info) { return getInstructionSetName(info.param); });

TEST_F(GaussianGradient2dImg, AUnitRampGivesExactlyOne)
{
    for (const float stdDev : {0.01f, 0.5f, 1.0f, 2.7f, 5.0f}) {
        const long margin = std::max(1l, std::lround(4 * stdDev));
        const ImagePtr in = makeImage(image::eIBT_Int16, ImageSizes(80, 60), [](long x, long y) { return x - y + 5000; });
        const auto gradient = gaussianGradient2dImg(in, stdDev);
        for (long y = margin; y < 60 - margin; ++y)
            for (long x = margin; x < 80 - margin; ++x) {
                ASSERT_EQ(sample(*gradient.first, x, y), 1) << stdDev << ": " << x << ", " << y;
                ASSERT_EQ(sample(*gradient.second, x, y), -1) << stdDev << ": " << x << ", " << y;
            }
    }
}

TEST_F(GaussianGradient2dImg, AFlatImageGivesExactlyZeroUpToItsBorders)
{
    for (const ImageSizes& sizes : {ImageSizes(1, 1), ImageSizes(70, 1), ImageSizes(1, 70), ImageSizes(67, 33)}) {
        const ImagePtr in = makeImage(image::eIBT_Real32, sizes, [](long, long) { return 1234.56789; });
        const auto gradient = gaussianGradient2dImg(in, 2.3f);
        const ImagePtr zero = createImageLike(*in, image::eIBT_Real32);
        EXPECT_TRUE(sameBits(*gradient.first, *zero)) << toString(sizes);
        EXPECT_TRUE(sameBits(*gradient.second, *zero)) << toString(sizes);
    }
}

TEST_F(GaussianGradient2dImg, KernelsMayBeMuchLargerThanTheImage)
{
    const ImagePtr in = randomImage(image::eIBT_UInt16, ImageSizes(5, 3), 3);
    const ImagePtr x = createImageLike(*in, image::eIBT_Real32), y = createImageLike(*in, image::eIBT_Real32);
    gaussianGradient2dImg(in, 4.0f, 60.0f, 5.0, x, y);
    expectReference(*in, *x, reference(*in, 4.0, 60.0, 5.0, true));
    expectReference(*in, *y, reference(*in, 4.0, 60.0, 5.0, false));
    gaussianGradient2dImg(in, 1048576.0f, 1.0f, 1.0, x, y);  // the largest half-size
}

TEST_F(GaussianGradient2dImg, StripsAndThreadsDoNotMatter)
{
    const ImagePtr in = randomImage(image::eIBT_Real32, ImageSizes(90, 130), 5);
    core::setNbThreads(1);
    core::setStripGrain(1000);
    const auto whole = gaussianGradient2dImg(in, 1.4f);
    for (const unsigned int nbThreads : {1u, 3u})
        for (const unsigned long grain : {1ul, 3ul, 5ul, 0ul}) {
            core::setNbThreads(nbThreads);
            core::setStripGrain(grain);
            const auto cut = gaussianGradient2dImg(in, 1.4f);
            EXPECT_TRUE(sameBits(*whole.first, *cut.first)) << nbThreads << " threads, strips of " << grain;
            EXPECT_TRUE(sameBits(*whole.second, *cut.second)) << nbThreads << " threads, strips of " << grain;
        }
}

TEST_F(GaussianGradient2dImg, PlanesAreIndependent)
{
    const ImageSizes sizes(33, 21, 3, 2, 2);
    const ImagePtr in = randomImage(image::eIBT_Int16, sizes, 7);
    const auto all = gaussianGradient2dImg(in, 1.0f);
    EXPECT_EQ(all.first->getGeometry().getSizes(), sizes);
    for (unsigned long t = 0; t < 2; ++t)
        for (unsigned long c = 0; c < 2; ++c)
            for (unsigned long z = 0; z < 3; ++z) {
                const PlanIndex plane(z, c, t);
                const auto one = gaussianGradient2dImg(in->getView(plane, 1), 1.0f);
                EXPECT_TRUE(sameBits(*one.first, *all.first->getView(plane, 1))) << z << c << t;
                EXPECT_TRUE(sameBits(*one.second, *all.second->getView(plane, 1))) << z << c << t;
            }
}

TEST_F(GaussianGradient2dImg, BytesBetweenTheLinesOfACallersBufferAreLeftAlone)
{
    const unsigned long sizeX = 37, sizeY = 9, stride = 41;
    const ImageSizes sizes(sizeX, sizeY);
    const ImagePtr in = randomImage(image::eIBT_Real32, sizes, 9);
    std::vector<float> inBuffer(stride * sizeY, std::numeric_limits<float>::quiet_NaN());
    std::vector<short> outBuffer(stride * sizeY, 12345);
    copyOut(*in, inBuffer.data(), image::ImageStrides(stride * sizeof(float)));
    const boost::shared_ptr<const BaseImage> wrapped = image::wrapBuffer(
        static_cast<const float*>(inBuffer.data()), image::eIBT_Real32, sizes, image::ImageStrides(stride * sizeof(float)));
    const ImagePtr out =
        image::wrapBuffer(outBuffer.data(), image::eIBT_Int16, sizes, image::ImageStrides(stride * sizeof(short)));
    const ImagePtr expected = createImageLike(*in, image::eIBT_Int16);
    gaussianGradient2dImg(in, 1.0f, 2.0f, 4.0, ImagePtr(), expected);
    gaussianGradient2dImg(wrapped, 1.0f, 2.0f, 4.0, ImagePtr(), out);
    EXPECT_TRUE(sameBits(*expected, *out));
    for (unsigned long y = 0; y < sizeY; ++y)
        for (unsigned long x = sizeX; x < stride; ++x)
            ASSERT_EQ(outBuffer[y * stride + x], 12345) << x << ", " << y;
}

TEST_F(GaussianGradient2dImg, ComputesTheOutputsThatWereGivenOrElseBoth)
{
    const ImagePtr in = randomImage(image::eIBT_UInt8, ImageSizes(20, 10), 11);
    const auto processor = processor::createInitialised<GaussianGradient2dImgLvl1>();
    processor->set<attr::InImg>(in);
    processor->set<attr::InStdDevX>(1.0f);
    processor->set<attr::InStdDevY>(1.0f);
    executeSyncRun(processor);
    const ImagePtr both[] = {processor->getStorage<attr::OutOptGradXImg>(), processor->getStorage<attr::OutOptGradYImg>()};
    ASSERT_TRUE(both[0] && both[1]);
    EXPECT_EQ(both[0]->getBufferType(), image::eIBT_Real32);
    EXPECT_EQ(both[1]->getBufferType(), image::eIBT_Real32);

    const ImagePtr y = createImageLike(*in, image::eIBT_Real32);
    processor->set<attr::OutOptGradYImg>(y);
    executeSyncRun(processor);
    EXPECT_FALSE(processor->getStorage<attr::OutOptGradXImg>());
    EXPECT_EQ(processor->getStorage<attr::OutOptGradYImg>(), y);
    EXPECT_TRUE(sameBits(*y, *both[1]));
}

TEST_F(GaussianGradient2dImg, RefusesWhatMakesNoKernelAndNamesIt)
{
    const ImagePtr in = randomImage(image::eIBT_UInt8, ImageSizes(8, 8), 13);
    const ImagePtr x = makeImage(image::eIBT_Real32, ImageSizes(8, 8), [](long, long) { return 42; });
    const ImagePtr y = createImageLike(*in, image::eIBT_Real32);
    const auto text = [&](float stdDevX, float stdDevY, double coverage) {
        return refusal([&] { gaussianGradient2dImg(in, stdDevX, stdDevY, coverage, x, y); });
    };
    const auto expectPart = [](const std::string& text, const std::string& part) {
        EXPECT_NE(text.find("GaussianGradient2dImgLvl1 refuses to run:\n"), std::string::npos) << text;
        EXPECT_NE(text.find("failed: " + part), std::string::npos) << text;
    };
    expectPart(text(-1, 1, 4), "InStdDevX is -1, it must be a finite number above 0");
    expectPart(text(1, 0, 4), "InStdDevY is 0, it must be a finite number above 0");
    expectPart(text(1, std::nanf(""), 4), "InStdDevY is nan, it must be a finite number above 0");
    expectPart(text(static_cast<float>(g_infinity), 1, 4), "InStdDevX is inf, it must be a finite number above 0");
    expectPart(text(1, 1, -2.5), "InOptGradientGaussianCoverage is -2.5, it must be a finite number above 0");
    expectPart(text(1, 1, g_infinity), "InOptGradientGaussianCoverage is inf, it must be a finite number above 0");
    expectPart(text(1e6f, 1, 4), "InStdDevX is 1000000 and InOptGradientGaussianCoverage is 4, which makes a kernel of "
                                 "half-size 4000000, it must be at most 1048576");
    EXPECT_EQ(sample(*x, 3, 3), 42);
}

TEST_F(GaussianGradient2dImg, RefusesImagesThatDoNotGoTogether)
{
    const ImagePtr in = randomImage(image::eIBT_Real32, ImageSizes(8, 8), 15), other = createImageLike(*in, image::eIBT_Real32);
    const auto text = [&](const ImagePtr& image, const ImagePtr& x, const ImagePtr& y) {
        return refusal([&] { gaussianGradient2dImg(image, 1.0f, 1.0f, 4.0, x, y); });
    };
    EXPECT_NE(text(in, in, other).find("failed: memory of InImg"), std::string::npos);
    EXPECT_NE(text(in, other, in).find("failed: memory of InImg"), std::string::npos);
    EXPECT_NE(text(in, other, other).find("failed: memory of OutOptGradXImg"), std::string::npos);
    const std::string sizes = text(in, other, image::createImage(image::eIBT_Real32, ImageSizes(8, 9)));
    EXPECT_NE(sizes.find("OutOptGradYImg (8 x 9 x 1 x 1 x 1)"), std::string::npos) << sizes;
    EXPECT_NE(text(ImagePtr(), other, ImagePtr()).find("mandatory attribute InImg has no value"), std::string::npos);
    EXPECT_EQ(text(in, ImagePtr(), ImagePtr()), "gaussianGradient2dImg failed: outX and outY are both null");
}

}  // namespace
