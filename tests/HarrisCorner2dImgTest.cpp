// The Harris corner response: its arithmetic, the chain of stages, the calls.

#include "FamilyShapes.h"
#include "GaussianFormula.h"
#include "InstructionSets.h"

#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;
typedef std::vector<ImagePtr> Images;

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

/// Bit by bit; all NaNs are one.
void expectResponses(const Images& tensor, const BaseImage& out, int type, float k)
{
    withSampleType(toDataType(out.getBufferType()), [&](auto zero) {
        typedef decltype(zero) T;
        forEachSample(out.getGeometry().getSizes(), [&](auto... at) {
            const auto part = [&](unsigned long i) { return static_cast<float>(sampleAt(*tensor[i], at...)); };
            const float value = response(part(0), part(1), part(2), type, k);
            // What whole numbers keep: the low bits of the whole part, of 64.
            const double whole = std::fabs(value) < 9.2e18f ? static_cast<double>(static_cast<T>(static_cast<long>(value)))
                                                            : 0;
            const double expected = std::is_integral<T>::value ? whole
                                    : std::isnan(value)        ? kNan
                                                               : static_cast<double>(value);
            const double found = sampleAt(out, at...);
            ASSERT_TRUE(same({expected}, {found})) << toString(out.getGeometry().getSizes()) << ", type " << type << ", k "
                                                   << k << ": " << expected << " against " << found;
        });
    });
}

/// Level 3 on whole images: xx, yy, xy.
void respond(const Images& tensor, const ImagePtr& out, int type, float k)
{
    ran<HarrisCorner2dImgLvl3, InXXYStrip2d, InYYYStrip2d, InXYYStrip2d, InCornerDetectionParams, OutYStrip2d>(
        stripOf(tensor[0]), stripOf(tensor[1]), stripOf(tensor[2]), params(type, k), outStripOf(out));
}

typedef KernelTest<HarrisCorner2dImgLvl3> HarrisKernel;
INSTANTIATE_TEST_SUITE_P(AllKernels, HarrisKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(HarrisKernel, ResponsesEqualTheDefinitionAlsoOverAComponentAndBetweenBytesOfOthers)
{
    for (const unsigned long width : kWidths)
        for (const bool odd : {false, true}) {
            Images from;
            for (unsigned int i = 0; i < 3; ++i)
                from.push_back(odd ? drawnImage(type(), {width, 5}, oddValues(type()), 13 + i)
                                   : randomImage(type(), {width, 5}, 10 + i));
            // Types other than 1 are the smaller eigenvalue; the last k takes integers past what 64 bits hold.
            for (const auto& [kind, k] :
                 {std::make_pair(1, 0.04f), {0, 0.04f}, {2, 1.0f}, {-1, 1.0f}, {1, 0.0f}, {1, -3.0f}, {1, 1e30f}}) {
                const GuardedImage guarded(*from[0], width % 4), out(type(), {width, 5}, 9);
                respond(from, out.get(), kind, k);
                expectResponses(from, *out.get(), kind, k);
                for (const ImagePtr& xx : {guarded.get(), copyOf(*from[0])}) {
                    respond({xx, from[1], from[2]}, xx, kind, k);
                    EXPECT_TRUE(sameSamples(*out.get(), *xx)) << "over a component";
                }
            }
        }
}

TEST(HarrisCorner2dImg, IsTheChainOfGradientTensorAndResponseOfEveryType)
{
    for (const eImageBufferType type : kAllTypes) {
        SCOPED_TRACE(toString(type));
        const ImagePtr in = randomImage(type, {41, 23}, 20);
        const ImagePtr harris = createImage(eIBT_Real32, {41, 23}), eigen = createImage(eIBT_Real32, {41, 23});
        const auto coverage = GaussianCoverage::createNode(3.0);
        harrisCorner2dImg(in, 0.9f, coverage, nullptr, harris);
        harrisCorner2dImg(in, 0.9f, coverage, params(0, 0), eigen);
        const Plane gx = gradient(planeOf(*in), true, 0.9, 0.9, 3.0), gy = gradient(planeOf(*in), false, 0.9, 0.9, 3.0);
        const Plane tensor[] = {smoothedProduct(gx, gx, 0.9, 3.0), smoothedProduct(gy, gy, 0.9, 3.0),
                                smoothedProduct(gx, gy, 0.9, 3.0)};
        // Deviation, gradient and tensor are floats.
        const double largest = *std::max_element(tensor[0].samples.begin(), tensor[0].samples.end());
        forEachSample({41, 23}, [&](long x, long y, auto...) {
            const double xx = tensor[0].at(x, y), yy = tensor[1].at(x, y), xy = tensor[2].at(x, y);
            const unsigned long column = static_cast<unsigned long>(x), line = static_cast<unsigned long>(y);
            const double root = sampleAt(*harris, column, line);
            ASSERT_NEAR(xx * yy - xy * xy - 0.04 * (xx + yy) * (xx + yy), root * std::fabs(root), 3e-6 * largest * largest);
            ASSERT_NEAR(0.5 * (xx + yy - std::hypot(xx - yy, 2 * xy)), sampleAt(*eigen, column, line), 3e-6 * largest);
        });
    }
}

TEST(HarrisCorner2dImg, IsTheUsualMeasureWhereNothingIsSaid)
{
    const ImagePtr in = randomImage(eIBT_UInt8, {60, 70}, 21), usual = harrisCorner2dImg(in),
                   wider = harrisCorner2dImg(in, 1.5f);
    const auto into = [&](float stdDev) {
        const ImagePtr out = randomImage(eIBT_Real32, {60, 70}, 22);
        harrisCorner2dImg(in, stdDev, GaussianCoverage::createNode(4.0), params(1, 0.04f), out);
        return out;
    };
    EXPECT_TRUE(sameSamples(*into(1.0f), *usual) && sameSamples(*into(1.5f), *wider));
    EXPECT_FALSE(sameSamples(*usual, *wider));
}

/// Level 1 with images of the caller's.
void run(const ImagePtr& in, const Images& wk, const ImagePtr& out)
{
    ran<HarrisCorner2dImgLvl1, InImg, OutWk1Img, OutWk2Img, OutWk3Img, OutImg>(in, wk[0], wk[1], wk[2], out);
}

Images blanks(eImageBufferType type, unsigned long size)
{
    Images images;
    for (int i = 0; i < 4; ++i)
        images.push_back(createImage(type, {size, size}));
    return images;
}

TEST(HarrisCorner2dImg, WorkingImagesTellTheTypeAndHoldTheTensor)
{
    const ImagePtr in = randomImage(eIBT_UInt8, {60, 60}, 24);
    for (const eImageBufferType type : kAllTypes) {
        SCOPED_TRACE(toString(type));
        const Images wk = blanks(type, 60), again = blanks(type, 60);
        run(in, wk, wk[3]);
        expectResponses(wk, *wk[3], 1, 0.04f);
        // The response over the first of them; the others are as before.
        run(in, again, again[0]);
        EXPECT_TRUE(sameSamples(*wk[3], *again[0]) && sameSamples(*wk[1], *again[1]) && sameSamples(*wk[2], *again[2]));
    }
    // At a vertical edge the measure is below 0: in unsigned samples it wraps. The squared gradient is saturated to 255.
    const Images bytes = blanks(eIBT_UInt8, 20);
    const ImagePtr edge = blank(20, 20);
    forEachSample({20, 20}, [&](auto x, auto y, auto...) { setSample(*edge, x < 10 ? 0 : 60, x, y); });
    run(edge, bytes, bytes[3]);
    EXPECT_EQ(256 - std::floor(std::sqrt(0.04) * 255), sampleAt(*bytes[3], 10, 10));
    EXPECT_TRUE(sampleAt(*bytes[0], 10, 10) == 255 && sampleAt(*bytes[1], 10, 10) == 0) << "xx and yy";
}

TEST(HarrisCorner2dImg, RefusesBeforeAnyWorkAndSaysWhy)
{
    const ImagePtr in = randomImage(eIBT_Real32, {8, 8}, 25), out = copyOf(*in), higher = createImage(eIBT_Real32, {8, 9});
    const Images wk = blanks(eIBT_Real32, 8), whole = blanks(eIBT_Int16, 8);
    const auto with = [&](float stdDev, double coverage, const ImagePtr& result) {
        return [=] { harrisCorner2dImg(in, stdDev, GaussianCoverage::createNode(coverage), nullptr, result); };
    };
    const auto on = [&](const Images& working, const ImagePtr& result) { return [=] { run(in, working, result); }; };
    const std::string finite = ", it must be a finite number above 0";
    expectRefusals(
        {in, out, wk[0], wk[1], wk[2], higher},
        {
            {"failed: InOptGradStdDev is -1.5" + finite, with(-1.5f, 4, out)},
            {"failed: InOptGradientGaussianCoverage is -1" + finite, with(1.0f, -1, out)},
            {"mandatory attribute InImg has no value", [&] { harrisCorner2dImg(nullptr, 1.0f, nullptr, nullptr, out); }},
            {"mandatory attribute OutImg has no value", with(1.0f, 4, nullptr)},
            {"mandatory attribute OutImg has no value",
             [&] { harrisCorner2dImg_async(in, 1.0f, nullptr, nullptr, nullptr); }},
            {"OutImg (8 x 9 x 1 x 1 x 1)", with(1.0f, 4, higher)},
            {"failed: buffer type of OutWk1Img", with(1.0f, 4, whole[0])},  // the working images that are made are float
            {"OutWk1Img (8 x 9 x 1 x 1 x 1)", on({higher, wk[1], wk[2]}, out)},
            {"OutWk2Img (8 x 9 x 1 x 1 x 1)", on({wk[0], higher, wk[2]}, out)},
            {"OutWk3Img (signed 16 bits (type 3))", on({wk[0], wk[1], whole[2]}, out)},
        },
        "HarrisCorner2dImgLvl1 refuses to run:");
}

}  // namespace
}  // namespace orvik::test
