// The Harris corner response: its arithmetic, the chain of stages, the calls.

#include "InstructionSets.h"
#include "TestImages.h"
#include "TestRuns.h"

#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvik::test {
namespace {

using namespace imaproc::attr;
using imaproc::fd::harrisCorner2dImg;
using imaproc::fd::harrisCorner2dImg_async;
using imaproc::fd::HarrisCorner2dImgLvl1;
using imaproc::fd::HarrisCorner2dImgLvl3;

boost::shared_ptr<const CornerDetectionParams> params(int type, float k)
{
    return CornerDetectionParams::createNode(static_cast<eCornerResponseType>(type), k);
}

/// The response, step by step in float.
float response(float xx, float yy, float xy, int type, float k)
{
    if (type != 1) {
        const float d = xx - yy, s = d * d + 4.0f * (xy * xy);
        return (xx + yy - std::sqrt(s)) * 0.5f;
    }
    const float t = xx + yy, r = xx * yy - xy * xy - k * (t * t);
    return (0.0f <= r ? 1.0f : -1.0f) * std::sqrt(std::fabs(r));
}

/// What a sample type keeps of a response: the low bits of its whole part, of 64.
template<class T>
T stored(float value)
{
    if constexpr (std::is_floating_point<T>::value)
        return value;
    else
        return std::fabs(value) < 9.2e18f ? static_cast<T>(static_cast<long>(value)) : T(0);
}

/// Bit by bit, but any NaN is as good as any other: which of two operands' bits it gets is up to the compiler.
void expectResponses(const std::vector<ImagePtr>& tensor, const image::BaseImage& out, int type, float k)
{
    image::withSampleType(image::toDataType(out.getBufferType()), [&](auto zero) {
        typedef decltype(zero) T;
        forEachSample(out.getGeometry().getSizes(), [&](unsigned long x, unsigned long y, auto...) {
            const auto at = [&](unsigned long i) {
                return static_cast<float>(static_cast<const T*>(tensor[i]->getLine(y))[x]);
            };
            const T expected = stored<T>(response(at(0), at(1), at(2), type, k));
            const T found = static_cast<const T*>(out.getLine(y))[x];
            ASSERT_TRUE(std::memcmp(&expected, &found, sizeof found) == 0 || (expected != expected && found != found))
                << "size " << toString(out.getGeometry().getSizes()) << ", type " << type << ", k " << k << ", at " << x
                << ", " << y << ": " << +expected << " against " << +found << " of " << at(0) << ", " << at(1) << ", "
                << at(2);
        });
    });
}

/// Level 3 on whole images: xx, yy, xy.
void respond(const std::vector<ImagePtr>& tensor, const ImagePtr& out, int type, float k)
{
    const auto strip = [](const ImagePtr& image) {
        return boost::make_shared<image::InputImageYStrip2d>(image, PlanIndex(), 0, image->getSizeY());
    };
    const auto processor = processor::createInitialised<HarrisCorner2dImgLvl3>();
    processor->set<InXXYStrip2d>(strip(tensor[0]));
    processor->set<InYYYStrip2d>(strip(tensor[1]));
    processor->set<InXYYStrip2d>(strip(tensor[2]));
    processor->set<InCornerDetectionParams>(params(type, k));
    processor->set<OutYStrip2d>(boost::make_shared<image::OutputImageYStrip2d>(out, PlanIndex(), 0, out->getSizeY()));
    processor::executeSyncRun(processor);
}

class HarrisKernel : public KernelTest<HarrisCorner2dImgLvl3>
{
protected:
    /// Random samples of the whole type, and what floats are odd about.
    std::vector<ImagePtr> tensor(const image::ImageSizes& sizes) const
    {
        std::vector<ImagePtr> made;
        for (unsigned int i = 0; i < 3; ++i)
            made.push_back(randomImage(type(), sizes, 10 + i));
        std::mt19937 random(13);
        const float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
        const float odd[] = {0.0f, -0.0f, 1e-42f, 1e30f, 3e38f, infinity, -infinity, nan};
        if (type() == image::eIBT_Real32)
            forEachSample(sizes, [&](auto x, auto y, auto...) {
                if (random() % 3 == 0)
                    static_cast<float*>(made[random() % 3]->accessLine(y))[x] = odd[random() % 8];
            });
        return made;
    }
};

INSTANTIATE_TEST_SUITE_P(AllKernels, HarrisKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(HarrisKernel, ResponsesEqualTheDefinition)
{
    for (const unsigned long width : {1ul, 15ul, 16ul, 17ul, 63ul, 64ul, 65ul, 127ul, 128ul, 200ul}) {
        const std::vector<ImagePtr> from = tensor({width, 5});
        const ImagePtr out = image::createImageLike(*from[0], type());
        // Types other than 1 are the smaller eigenvalue; the last k takes integers past what 64 bits hold.
        for (const auto& [response, k] : {std::make_pair(1, 0.04f), {0, 0.04f}, {2, 1.0f}, {-1, 1.0f}, {1, 0.0f},
                                          {1, -3.0f}, {1, 1e30f}}) {
            respond(from, out, response, k);
            expectResponses(from, *out, response, k);
        }
        EXPECT_EQ(processor::getAlgorithmEntry(HarrisCorner2dImgLvl3::getTypeName()).lastEfficiency.load() / 256,
                  static_cast<unsigned int>(set()));
    }
}

TEST_P(HarrisKernel, TheResultMayLieOverAComponentAndBetweenBytesOfOthers)
{
    for (const unsigned long width : {5ul, 70ul, 130ul}) {
        const image::ImageSizes sizes(width, 7);
        const std::vector<ImagePtr> from = tensor(sizes);
        GuardedImage guarded(type(), sizes, 9);
        const ImagePtr own = image::createImage(type(), sizes);
        for (const ImagePtr& xx : {guarded.get(), own}) {
            for (unsigned long y = 0; y < sizes.y; ++y)
                std::memcpy(xx->accessLine(y), from[0]->getLine(y), width * image::getImageBufferBaseSize(type()));
            respond({xx, from[1], from[2]}, xx, 1, 0.04f);
            expectResponses(from, *xx, 1, 0.04f);
        }
        EXPECT_TRUE(guarded.areGuardsIntact());
    }
}

/// The chain in double, sums over the whole square of each kernel: xx, yy, xy.
class Reference
{
public:
    Reference(const image::BaseImage& in, double stdDev, double coverage)
        : m_sizeX(static_cast<long>(in.getSizeX())), m_sizeY(static_cast<long>(in.getSizeY())), m_stdDev(stdDev),
          m_halfSize(std::max(1l, static_cast<long>(std::floor(coverage * stdDev + 0.5))))
    {
        std::vector<double> image;
        forEachSample({in.getSizeX(), in.getSizeY()}, [&](auto x, auto y, auto...) { image.push_back(sampleAt(in, x, y)); });
        double slope = 0;
        for (long k = -m_halfSize; k <= m_halfSize; ++k)
            slope += static_cast<double>(k * k) * gauss(k) / norm();
        const auto derivative = [&](long k) { return static_cast<double>(k) / slope * gauss(k); };
        const auto gx = filtered(image, [&](long i, long j) { return derivative(i) * gauss(j); });
        const auto gy = filtered(image, [&](long i, long j) { return derivative(j) * gauss(i); });
        for (const auto& [a, b] : {std::make_pair(&gx, &gx), {&gy, &gy}, {&gx, &gy}}) {
            std::vector<double> product(a->size());
            std::transform(a->begin(), a->end(), b->begin(), product.begin(), std::multiplies<double>());
            m_tensor.push_back(filtered(product, [&](long i, long j) { return gauss(i) * gauss(j); }));
        }
    }

    /// Of the Harris measure, before its root.
    double harris(unsigned long i) const
    {
        const double xx = m_tensor[0][i], yy = m_tensor[1][i], xy = m_tensor[2][i];
        return xx * yy - xy * xy - 0.04 * (xx + yy) * (xx + yy);
    }
    double smallerEigenvalue(unsigned long i) const
    {
        const double xx = m_tensor[0][i], yy = m_tensor[1][i], xy = m_tensor[2][i];
        return 0.5 * (xx + yy - std::hypot(xx - yy, 2 * xy));
    }
    double largest() const { return *std::max_element(m_tensor[0].begin(), m_tensor[0].end()); }

private:
    double gauss(long k) const { return std::exp(-0.5 * static_cast<double>(k * k) / (m_stdDev * m_stdDev)); }
    double norm() const
    {
        double sum = 0;
        for (long k = -m_halfSize; k <= m_halfSize; ++k)
            sum += gauss(k);
        return sum;
    }
    template<class Weight>
    std::vector<double> filtered(const std::vector<double>& f, const Weight& weight) const
    {
        std::vector<double> result;
        for (long y = 0; y < m_sizeY; ++y)
            for (long x = 0; x < m_sizeX; ++x) {
                double sum = 0;
                for (long j = -m_halfSize; j <= m_halfSize; ++j)
                    for (long i = -m_halfSize; i <= m_halfSize; ++i)
                        sum += weight(i, j) / (norm() * norm())
                               * f[static_cast<unsigned long>(std::clamp(y + j, 0l, m_sizeY - 1) * m_sizeX
                                                              + std::clamp(x + i, 0l, m_sizeX - 1))];
                result.push_back(sum);
            }
        return result;
    }

    const long m_sizeX, m_sizeY;
    const double m_stdDev;
    const long m_halfSize;
    std::vector<std::vector<double> > m_tensor;
};

TEST(HarrisCorner2dImg, IsTheChainOfGradientTensorAndResponseOfEveryType)
{
    const image::ImageSizes sizes(41, 23);
    for (const image::eImageBufferType type : kAllTypes) {
        SCOPED_TRACE(toString(type));
        const ImagePtr in = randomImage(type, sizes, 20);
        const Reference reference(*in, 0.9, 3.0);
        const ImagePtr harris = image::createImage(image::eIBT_Real32, sizes);
        const ImagePtr eigen = image::createImage(image::eIBT_Real32, sizes);
        const auto coverage = GaussianCoverage::createNode(3.0);
        harrisCorner2dImg(in, 0.9f, coverage, nullptr, harris);
        harrisCorner2dImg(in, 0.9f, coverage, params(0, 0), eigen);
        // Deviation, gradient and tensor are floats.
        const double tolerance = 3e-6 * reference.largest();
        for (unsigned long i = 0; i < sizes.x * sizes.y; ++i) {
            const double root = sampleAt(*harris, i % sizes.x, i / sizes.x);
            ASSERT_NEAR(reference.harris(i), root * std::fabs(root), tolerance * reference.largest()) << i;
            ASSERT_NEAR(reference.smallerEigenvalue(i), sampleAt(*eigen, i % sizes.x, i / sizes.x), tolerance) << i;
        }
    }
}

TEST(HarrisCorner2dImg, IsTheSameByEveryCallShapeAndForAnyStripsAndThreads)
{
    const ImagePtr in = randomImage(image::eIBT_UInt8, {90, 70}, 21), out = image::createImageLike(*in, image::eIBT_Real32);
    const auto explicitCall = [&] {
        harrisCorner2dImg(in, 1.0f, GaussianCoverage::createNode(4.0), params(1, 0.04f), out);
        return out;
    };
    ImagePtr expected;
    {
        const WithThreads one(1);
        const WithGrain whole(1000);
        expected = harrisCorner2dImg(in);
    }
    EXPECT_TRUE(sameSamples(*expected, *harrisCorner2dImg(in, 1.0f)));
    EXPECT_TRUE(sameSamples(*expected, *getAsyncProcessorOutput(harrisCorner2dImg_async(in))));
    EXPECT_TRUE(sameSamples(*expected, *getAsyncProcessorOutput(harrisCorner2dImg_async(in, 1.0f))));
    EXPECT_EQ(out, getAsyncProcessorOutput(harrisCorner2dImg_async(in, 1.0f, nullptr, nullptr, out)));
    EXPECT_TRUE(sameSamples(*expected, *out));
    for (const unsigned int nbThreads : {1u, 3u})
        for (const unsigned long grain : {0ul, 1ul, 5ul, 33ul}) {
            const WithThreads threads(nbThreads);
            const WithGrain strips(grain);
            EXPECT_TRUE(sameSamples(*expected, *explicitCall())) << nbThreads << " threads, strips of " << grain;
        }
    EXPECT_FALSE(sameSamples(*expected, *harrisCorner2dImg(in, 1.5f)));
}

TEST(HarrisCorner2dImg, TakesEachPlaneForItselfAndGivesZeroWhereItIsFlat)
{
    const image::ImageSizes sizes(33, 21, 2, 2, 2);
    const ImagePtr in = randomImage(image::eIBT_Int16, sizes, 22);
    const ImagePtr all = harrisCorner2dImg(in);
    EXPECT_EQ(image::eIBT_Real32, all->getBufferType());
    forEachSample({1, 1, 2, 2, 2}, [&](auto, auto, auto z, auto c, auto t) {
        const ImagePtr one = harrisCorner2dImg(in->getView(PlanIndex(z, c, t), 1));
        EXPECT_TRUE(sameSamples(*one, *all->getView(PlanIndex(z, c, t), 1))) << z << c << t;
    });
    const ImagePtr flat = image::createImage(image::eIBT_Real32, {70, 9});
    const ImagePtr zero = image::createImage(image::eIBT_Real32, {70, 9});
    forEachSample({70, 9}, [&](auto x, auto y, auto...) { setSample(*flat, 123.456, x, y); });
    for (const int type : {0, 1}) {
        const ImagePtr out = randomImage(image::eIBT_Real32, {70, 9}, 23);
        harrisCorner2dImg(flat, 2.0f, nullptr, params(type, 0.04f), out);
        EXPECT_TRUE(sameSamples(*zero, *out)) << "response type " << type;
    }
}

/// Level 1 with images of the caller's.
boost::shared_ptr<HarrisCorner2dImgLvl1> run(const ImagePtr& in, const std::vector<ImagePtr>& wk, const ImagePtr& out)
{
    const auto processor = processor::createInitialised<HarrisCorner2dImgLvl1>();
    processor->set<InImg>(in);
    processor->set<OutWk1Img>(wk[0]);
    processor->set<OutWk2Img>(wk[1]);
    processor->set<OutWk3Img>(wk[2]);
    processor->set<OutImg>(out);
    processor::executeSyncRun(processor);
    return processor;
}

TEST(HarrisCorner2dImg, WorkingImagesTellTheTypeAndHoldTheTensor)
{
    const image::ImageSizes sizes(60, 40);
    const ImagePtr in = randomImage(image::eIBT_UInt8, sizes, 24);
    for (const image::eImageBufferType type : kAllTypes) {
        SCOPED_TRACE(toString(type));
        std::vector<ImagePtr> wk, again;
        for (int i = 0; i < 3; ++i) {
            wk.push_back(image::createImage(type, sizes));
            again.push_back(image::createImage(type, sizes));
        }
        const ImagePtr out = image::createImage(type, sizes);
        run(in, wk, out);
        expectResponses(wk, *out, 1, 0.04f);
        // The response over the first of them; the others are as before.
        EXPECT_EQ(again[0], run(in, again, again[0])->getStorage<OutImg>());
        EXPECT_TRUE(sameSamples(*out, *again[0]) && sameSamples(*wk[1], *again[1]) && sameSamples(*wk[2], *again[2]));
    }
    // At a vertical edge the measure is below 0: in unsigned samples it wraps.
    const auto bytes = [] { return image::createImage(image::eIBT_UInt8, {20, 20}); };
    const ImagePtr edge = bytes(), out = bytes();
    forEachSample({20, 20}, [&](auto x, auto y, auto...) { setSample(*edge, x < 10 ? 0 : 60, x, y); });
    run(edge, {bytes(), bytes(), bytes()}, out);
    const double xx = 255;  // the squared gradient, saturated
    EXPECT_EQ(256 - std::floor(std::sqrt(0.04) * xx), sampleAt(*out, 10, 10));
}

TEST(HarrisCorner2dImg, RefusesBeforeAnyWorkAndSaysWhy)
{
    const image::ImageSizes sizes(8, 8);
    const ImagePtr in = randomImage(image::eIBT_UInt8, sizes, 25), untouched = randomImage(image::eIBT_Real32, sizes, 26);
    const ImagePtr out = randomImage(image::eIBT_Real32, sizes, 26);
    const auto expectPart = [](const std::string& part, const auto& call) {
        const std::string text = thrownText<processor::ORVIKBaseProcessingException>(call);
        EXPECT_NE(text.find(part), std::string::npos) << text;
    };
    const float infinity = std::numeric_limits<float>::infinity();
    for (const auto& [stdDev, text] : {std::make_pair(0.0f, "0"), {-1.5f, "-1.5"}, {infinity, "inf"},
                                       {std::nanf(""), "nan"}})
        expectPart(std::string("failed: InOptGradStdDev is ") + text + ", it must be a finite number above 0",
                   [&, s = stdDev] { harrisCorner2dImg(in, s, nullptr, nullptr, out); });
    expectPart("failed: InOptGradientGaussianCoverage is -1, it must be a finite number above 0",
               [&] { harrisCorner2dImg(in, 1.0f, GaussianCoverage::createNode(-1.0), nullptr, out); });
    expectPart("mandatory attribute InImg has no value", [&] { harrisCorner2dImg(nullptr); });
    expectPart("OutImg (8 x 9 x 1 x 1 x 1)",
               [&] { harrisCorner2dImg(in, 1.0f, nullptr, nullptr, image::createImage(image::eIBT_Real32, {8, 9})); });
    // The working images that are made are float.
    expectPart("failed: buffer type of OutWk1Img",
               [&] { harrisCorner2dImg(in, 1.0f, nullptr, nullptr, image::createImage(image::eIBT_Int16, sizes)); });
    const ImagePtr a = image::createImage(image::eIBT_Real32, sizes), b = image::createImage(image::eIBT_Real32, sizes);
    expectPart("failed: memory of OutWk1Img", [&] { run(in, {out, a, out}, b); });
    expectPart("failed: memory of InImg", [&] { run(out, {a, out, b}, a); });
    EXPECT_TRUE(sameSamples(*untouched, *out));
}

}  // namespace
}  // namespace orvik::test
