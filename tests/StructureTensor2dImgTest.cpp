// Smoothed products of gradients: the formula, results in place of the gradients, what is refused.

#include "InstructionSets.h"
#include "TestImages.h"
#include "TestRuns.h"

#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl2.h"
#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>

namespace orvik::test {
namespace {

using namespace imaproc::attr;
using imaproc::filter::StructureTensor2dImgLvl2;
using imaproc::filter::StructureTensor2dImgLvl3;

typedef std::array<ImagePtr, 3> Tensor;  // xx, yy, xy

void smoothProducts(const ImagePtr& gx, const ImagePtr& gy, float stdDev, double coverage, const Tensor& out)
{
    const auto processor = processor::createInitialised<StructureTensor2dImgLvl2>();
    processor->set<InSubGxImg2d>(gx);
    processor->set<InSubGyImg2d>(gy);
    processor->set<InSmoothingStdDev>(stdDev);
    processor->set<InGaussianCoverage>(GaussianCoverage::createNode(coverage));
    processor->set<OutGxGxImg>(out[0]);
    processor->set<OutGyGyImg>(out[1]);
    processor->set<OutGxGyImg>(out[2]);
    processor::executeSyncRun(processor);
}

Tensor newTensor(const ImagePtr& like, image::eImageBufferType type)
{
    return {image::createImageLike(*like, type), image::createImageLike(*like, type), image::createImageLike(*like, type)};
}

ImagePtr copyOf(const ImagePtr& image)
{
    const ImagePtr copy = image::createImageLike(*image, image->getBufferType());
    for (unsigned long y = 0; y < image->getSizeY(); ++y)
        std::memcpy(copy->accessLine(y), image->getLine(y),
                    image->getSizeX() * image::getImageBufferBaseSize(image->getBufferType()));
    return copy;
}

/// The formula at one place, as a plain sum over the square of the kernel.
double smoothed(const std::function<double(long, long)>& f, long x, long y, const image::ImageSizes& sizes, double s,
                double coverage)
{
    const long halfSize = std::max(1l, static_cast<long>(std::floor(coverage * s + 0.5)));
    const long sizeX = static_cast<long>(sizes.x), sizeY = static_cast<long>(sizes.y);
    double sum = 0, norm = 0;
    for (long j = -halfSize; j <= halfSize; ++j)
        for (long i = -halfSize; i <= halfSize; ++i) {
            const double weight = std::exp(-0.5 * static_cast<double>(i * i + j * j) / (s * s));
            sum += weight * f(std::clamp(x + i, 0l, sizeX - 1), std::clamp(y + j, 0l, sizeY - 1));
            norm += weight;
        }
    return sum / norm;
}

typedef KernelTest<StructureTensor2dImgLvl3> TensorKernel;

INSTANTIATE_TEST_SUITE_P(AllKernels, TensorKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(TensorKernel, IsTheFormulaAndThePlainCodeForAnyWidth)
{
    // Sums of floats are off by some units in the last place of the largest product, doubles by far less than the one
    // rounding to float.
    const bool isFloat = type() == image::eIBT_Real32;
    const double tolerance = isFloat ? 2e-6 : 1e-7;
    for (const unsigned long width : {1ul, 2ul, 7ul, 15ul, 16ul, 17ul, 63ul, 64ul, 65ul, 70ul, 130ul}) {
        const image::ImageSizes sizes(width, 1 + width % 13);
        const ImagePtr gx = randomImage(type(), sizes, 1), gy = randomImage(type(), sizes, 2);
        const float stdDev = width % 2 ? 0.8f : 1.5f;
        const Tensor out = newTensor(gx, image::eIBT_Real32), whole = newTensor(gx, image::eIBT_Int16);
        const Tensor plain = newTensor(gx, image::eIBT_Real32), plainWhole = newTensor(gx, image::eIBT_Int16);
        {
            const ForcedSet<StructureTensor2dImgLvl3> forced(set());
            smoothProducts(gx, gy, stdDev, 3.5, out);
            smoothProducts(gx, gy, stdDev, 3.5, whole);
        }
        const ForcedSet<StructureTensor2dImgLvl3> forced(core::eIS_Generic);
        smoothProducts(gx, gy, stdDev, 3.5, plain);
        smoothProducts(gx, gy, stdDev, 3.5, plainWhole);
        for (unsigned long p = 0; p < 3; ++p) {
            EXPECT_TRUE(sameSamples(*plain[p], *out[p])) << "product " << p;
            EXPECT_TRUE(sameSamples(*plainWhole[p], *whole[p])) << "product " << p;
            const image::BaseImage &a = p == 1 ? *gy : *gx, &b = p == 0 ? *gx : *gy;
            double largest = 0;
            const auto product = [&](long x, long y) {
                const unsigned long column = static_cast<unsigned long>(x), line = static_cast<unsigned long>(y);
                return sampleAt(a, column, line) * sampleAt(b, column, line);
            };
            forEachSample(sizes, [&](long x, long y, auto...) { largest = std::max(largest, std::fabs(product(x, y))); });
            forEachSample(sizes, [&](unsigned long x, unsigned long y, auto, auto, auto) {
                const double expected = smoothed(product, static_cast<long>(x), static_cast<long>(y), sizes, stdDev, 3.5);
                ASSERT_NEAR(expected, sampleAt(*out[p], x, y), tolerance * largest) << width << ": " << x << ", " << y;
                ASSERT_NEAR(std::clamp(expected, -32768.0, 32767.0), sampleAt(*whole[p], x, y),
                            0.5 + (isFloat ? tolerance : 1e-14) * largest);
            });
        }
    }
}

TEST(StructureTensor, InPlaceIsTheSameForAnyTypeStripsAndThreads)
{
    for (const image::eImageBufferType type : kAllTypes)
        for (const image::ImageSizes& sizes : {image::ImageSizes(71, 53), image::ImageSizes(9, 3)}) {
            const ImagePtr gx = randomImage(type, sizes, 3), gy = randomImage(type, sizes, 4);
            const Tensor expected = newTensor(gx, type);
            {
                const WithThreads one(1);
                const WithGrain whole(1000);
                smoothProducts(gx, gy, 1.2f, 4.0, expected);
            }
            for (const unsigned int nbThreads : {1u, 3u})
                for (const unsigned long grain : {1ul, 3ul, 17ul, 1000ul}) {
                    SCOPED_TRACE(toString(type) + ", " + std::to_string(nbThreads) + " threads, strips of "
                                 + std::to_string(grain));
                    const WithThreads threads(nbThreads);
                    const WithGrain strips(grain);
                    const ImagePtr x = copyOf(gx), y = copyOf(gy), other = image::createImageLike(*gx, type);
                    const Tensor straight = {x, y, other};
                    smoothProducts(x, y, 1.2f, 4.0, straight);
                    const ImagePtr u = copyOf(gx), v = copyOf(gy);
                    const Tensor crossed = {v, image::createImageLike(*gx, type), u};
                    smoothProducts(u, v, 1.2f, 4.0, crossed);
                    for (unsigned long p = 0; p < 3; ++p) {
                        EXPECT_TRUE(sameSamples(*expected[p], *straight[p])) << "product " << p;
                        EXPECT_TRUE(sameSamples(*expected[p], *crossed[p])) << "product " << p;
                    }
                }
        }
}

TEST(StructureTensor, IntegersSaturateAndNanSpreadsNoFartherThanTheKernel)
{
    const image::ImageSizes sizes(40, 30);
    const ImagePtr gx = image::createImage(image::eIBT_Real32, sizes), gy = image::createImage(image::eIBT_Real32, sizes);
    forEachSample(sizes, [&](auto x, auto y, auto, auto, auto) {
        setSample(*gx, 100, x, y);
        setSample(*gy, -100, x, y);
    });
    const Tensor bytes = newTensor(gx, image::eIBT_Int8);
    smoothProducts(gx, gy, 1.0f, 4.0, bytes);
    EXPECT_EQ(127, sampleAt(*bytes[0], 5, 5));
    EXPECT_EQ(-128, sampleAt(*bytes[2], 39, 29));
    setSample(*gx, std::numeric_limits<double>::quiet_NaN(), 20, 15);
    const Tensor tensor = newTensor(gx, image::eIBT_Real32);
    smoothProducts(gx, gy, 1.0f, 4.0, tensor);
    smoothProducts(gx, gy, 1.0f, 4.0, bytes);
    forEachSample(sizes, [&](auto x, auto y, auto, auto, auto) {
        const bool near = x >= 16 && x <= 24 && y >= 11 && y <= 19;
        EXPECT_EQ(near, std::isnan(sampleAt(*tensor[0], x, y))) << x << ", " << y;
        EXPECT_EQ(near ? 0 : 127, sampleAt(*bytes[0], x, y)) << x << ", " << y;
        EXPECT_FALSE(std::isnan(sampleAt(*tensor[1], x, y)));
    });
}

TEST(StructureTensor, LeavesTheBytesBetweenTheLinesOfACallersBufferAlone)
{
    const image::ImageSizes sizes(37, 21);
    GuardedImage gx(image::eIBT_Real32, sizes, 5), gy(image::eIBT_Real32, sizes, 3), xy(image::eIBT_Real32, sizes, 1);
    fillRandom(*gx.get(), 5);
    fillRandom(*gy.get(), 6);
    const Tensor expected = newTensor(gx.get(), image::eIBT_Real32);
    smoothProducts(gx.get(), gy.get(), 1.0f, 4.0, expected);
    smoothProducts(gx.get(), gy.get(), 1.0f, 4.0, {gx.get(), gy.get(), xy.get()});
    EXPECT_TRUE(sameSamples(*expected[0], *gx.get()) && sameSamples(*expected[1], *gy.get())
                && sameSamples(*expected[2], *xy.get()));
    EXPECT_TRUE(gx.areGuardsIntact() && gy.areGuardsIntact() && xy.areGuardsIntact());
}

TEST(StructureTensor, RefusesWhatDoesNotGoTogether)
{
    const image::ImageSizes sizes(8, 8);
    const ImagePtr gx = randomImage(image::eIBT_Real32, sizes, 7), gy = randomImage(image::eIBT_Real32, sizes, 8);
    const auto expectRefusal = [&](const ImagePtr& y, float stdDev, const Tensor& out, const std::string& part) {
        const std::string text = thrownText<processor::ORVIKBaseProcessingException>(
            [&] { smoothProducts(gx, y, stdDev, 4.0, out); });
        EXPECT_NE(text.find("failed: " + part), std::string::npos) << text;
    };
    const Tensor good = newTensor(gx, image::eIBT_Real32);
    expectRefusal(gy, -1.0f, good, "InSmoothingStdDev is -1, it must be a finite number above 0");
    expectRefusal(image::createImage(image::eIBT_Int16, sizes), 1.0f, good, "buffer type of InSubGxImg2d");
    expectRefusal(gy, 1.0f, {good[0], good[1], image::createImage(image::eIBT_Real32, {8, 9})}, "size X x Y");
    expectRefusal(gy, 1.0f, {good[0], good[0], good[2]}, "memory of OutGxGxImg");
    // The same memory, a line farther on.
    std::vector<float> buffer(8 * 9);
    const auto at = [&](unsigned long line) { return image::wrapBuffer(&buffer[8 * line], image::eIBT_Real32, sizes); };
    expectRefusal(at(0), 1.0f, {good[0], at(1), good[2]}, "memory of InSubGyImg2d");
}

}  // namespace
}  // namespace orvik::test
