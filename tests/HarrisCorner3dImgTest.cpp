// The corner response of volumes: its arithmetic, the chain of stages, the calls.

#include "FamilyShapes.h"
#include "GaussianFormula.h"
#include "InstructionSets.h"

#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl1.h"
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl3.h"

#include "frame/attr/StripAttributes.h"

#include <array>

namespace orvik::test { namespace {

using namespace imaproc::fd;
typedef std::vector<ImagePtr> Images;
typedef std::array<float, 6> Tensor;  // xx, yy, zz, xy, xz, yz

boost::shared_ptr<const CornerDetectionParams> params(int type, float k)
{
    return CornerDetectionParams::createNode(static_cast<eCornerResponseType>(type), k);
}

/// What a response may be.
struct Interval
{
    double low, high;
};

double rootOf(float r)
{
    const float x = std::fabs(r) + NumericLimits<float>::s_eps, l = static_cast<float>(std::log(static_cast<double>(x)));
    const double root = std::isinf(x) ? kInfinity : std::exp(static_cast<double>(l * 0.33333334f));
    return 0.0f <= r ? root : -root;
}

const double kUnit = std::ldexp(1.0, -24);  // half a unit in the last place of 1

/// Step by step in float, but for logarithm and exponential: a unit of the logarithm is a third of it in the result. Fused, the
/// measure is off by some units of its terms.
Interval harris(const Tensor& t, float k, bool isFused)
{
    const auto [xx, yy, zz, xy, xz, yz] = t;
    const float trace = xx + yy + zz;
    const float r = (xy * yz - yy * xz) * xz + ((yy * zz - yz * yz) * xx - (zz * xy - xz * yz) * xy)
                    - trace * (trace * trace) * k;
    double largest = 0;
    for (const float part : t)
        largest = std::max(largest, std::fabs(static_cast<double>(part)));
    const double terms = isFused ? 8 * kUnit * (6 + 27 * std::fabs(static_cast<double>(k))) * std::pow(largest, 3) : 0;
    const double low = rootOf(static_cast<float>(static_cast<double>(r) - terms));
    const double high = rootOf(static_cast<float>(static_cast<double>(r) + terms));
    const auto off = [](double root) {
        return std::isfinite(root) ? std::fabs(root) * kUnit * (6 + 6 * std::fabs(std::log(std::fabs(root)))) : 0;
    };
    return {low - off(low), high + off(high)};
}

/// Step by step in float, but for the angle. Fused, the cosine is off by some units, and its angle by more near 1.
Interval eigenvalue(const Tensor& t, bool isFused)
{
    const auto [xx, yy, zz, xy, xz, yz] = t;
    const float q = (xx + yy + zz) / 3, p1 = yz * yz + (xy * xy + xz * xz), a = xx - q, b = yy - q, c = zz - q;
    const float p = std::sqrt((a * a + b * b + c * c + p1 + p1) / 6), s = NumericLimits<float>::s_sqrt_eps;
    float r = 0;
    if (p > s * s)
        r = (2 * xy * yz * xz + a * b * c - b * (xz * xz) - c * (xy * xy) - a * (yz * yz)) / (2 * (p * p * p));
    float first = 1, second = -0.50000006f;
    if (!(r > -1))
        r = -1;
    if (r < 1) {
        const float phi = static_cast<float>(std::acos(static_cast<double>(r))) / 3;
        first = static_cast<float>(std::cos(static_cast<double>(phi)));
        second = static_cast<float>(std::cos(static_cast<double>(phi - 2.0943952f)));
    }
    const float e1 = q + 2 * p * first, e2 = q + 2 * p * second;
    const double value = static_cast<double>(3 * q - e1 - e2), size = static_cast<double>(p);
    if (!std::isfinite(value))
        return {value, value};
    double off = 8 * kUnit * (std::fabs(static_cast<double>(q)) + 2 * size);
    if (isFused) {
        const double ofCosine = 64 * kUnit,
                     slope = std::sqrt(std::max(0.0, 1.0 - static_cast<double>(r) * static_cast<double>(r)));
        off = 4 * off + 4 * size * std::min(ofCosine / slope, std::sqrt(2 * ofCosine)) + 1e-6;
    }
    return {value - off, value + off};
}

/// What whole numbers keep: the low bits of the whole part, of 64.
template<class T>
bool isWhole(const Interval& expected, double found)
{
    if (!(std::fabs(expected.low) < 9.2e18 && std::fabs(expected.high) < 9.2e18))
        return found == 0;
    const long low = static_cast<long>(expected.low), span = static_cast<long>(expected.high) - low;
    const auto bits = static_cast<unsigned long>(static_cast<long>(found)) - static_cast<unsigned long>(low);
    typedef typename std::make_unsigned<T>::type Bits;
    return static_cast<Bits>(bits) <= static_cast<unsigned long>(span);
}

void expectResponses(const Images& tensor, const BaseImage& out, int type, float k, bool isFused = false)
{
    withSampleType(toDataType(out.getBufferType()), [&](auto zero) {
        typedef decltype(zero) T;
        forEachSample(out.getGeometry().getSizes(), [&](auto... at) {
            Tensor parts;
            float largest = 0;
            for (std::size_t i = 0; i < 6; ++i) {
                parts[i] = static_cast<float>(sampleAt(*tensor[i], at...));
                largest = std::max(largest, std::isnan(parts[i]) ? NumericLimits<float>::s_max : std::fabs(parts[i]));
            }
            if (isFused && largest > 1e10f)
                return;  // where one overflows the other need not
            const Interval expected = type == 1 ? harris(parts, k, isFused) : eigenvalue(parts, isFused);
            const double found = sampleAt(out, at...);
            const auto said = [&, k = k] {
                return "type " + std::to_string(type) + ", k " + std::to_string(k) + ", parts "
                       + ::testing::PrintToString(parts);
            };
            if constexpr (std::is_integral<T>::value) {
                ASSERT_TRUE(isWhole<T>(expected, found)) << found << " instead of " << expected.low << ", " << said();
            } else if (std::isnan(expected.low)) {
                ASSERT_TRUE(same({kNan}, {found})) << said();
            } else {
                ASSERT_LE(expected.low, found) << said();
                ASSERT_GE(expected.high, found) << said();
            }
        });
    });
}

/// Level 3 on whole images.
void respond(const Images& tensor, const ImagePtr& out, int type, float k)
{
    const auto strip = [&](std::size_t i) {
        return boost::make_shared<InputImageZStrip3d>(tensor[i], PlanIndex(), 0, out->getSizeZ());
    };
    ran<HarrisCorner3dImgLvl3, InXXZStrip3d, InYYZStrip3d, InZZZStrip3d, InXYZStrip3d, InXZZStrip3d, InYZZStrip3d,
        InCornerDetectionParams, OutZStrip3d>(strip(0), strip(1), strip(2), strip(3), strip(4), strip(5), params(type, k),
                                              boost::make_shared<OutputImageZStrip3d>(out, PlanIndex(), 0, out->getSizeZ()));
}

std::vector<TypeAndSets> allPairs()
{
    using core::eInstructionSet;
    std::vector<core::InstructionSetsIdentifier> pairs;
    for (const eInstructionSet set : {core::eIS_Generic, core::eIS_Sse2, core::eIS_Avx, core::eIS_Avx2, core::eIS_Avx512})
        pairs.push_back(setsOf(set, set));
    pairs.push_back(setsOf(core::eIS_Fma, core::eIS_Avx2));
    return kernelsOf({std::begin(kAllTypes), std::end(kAllTypes)}, pairs);
}

typedef KernelTest<HarrisCorner3dImgLvl3> Harris3dKernel;
INSTANTIATE_TEST_SUITE_P(AllKernels, Harris3dKernel, ::testing::ValuesIn(allPairs()), kernelName);

TEST_P(Harris3dKernel, ResponsesAreTheStepsAndThePlainCodeAlsoOverAComponentAndBetweenBytesOfOthers)
{
    const bool isFused = sets().getSet(0) == core::eIS_Fma;
    for (const unsigned long width : {1ul, 3ul, 17ul, 63ul, 64ul, 65ul, 130ul})
        for (const int values : {0, 1, 2}) {
            Images from;
            for (unsigned int i = 0; i < 6; ++i)
                from.push_back(values == 0   ? randomImage(type(), {width, 3, 2}, 10 + i)
                               : values == 1 ? drawnImage(type(), {width, 3, 2}, oddValues(type()), 13 + i)
                                             : drawnImage(type(), {width, 3, 2}, {0, 1, 2, 100}, 23 + i));
            // Types other than 1 are the smallest eigenvalue; the last k takes integers past what 64 bits hold.
            for (const auto& [kind, k] :
                 {std::make_pair(1, 0.005f), {0, 0.04f}, {2, 1.0f}, {-1, 1.0f}, {1, 0.0f}, {1, -3.0f}, {1, 1e35f}}) {
                const GuardedImage guarded(*from[0], width % 4), out(type(), {width, 3, 2}, 9);
                respond(from, out.get(), kind, k);
                if (!isFused || k < 1e30f)
                    expectResponses(from, *out.get(), kind, k, isFused);
                if (!isFused) {
                    const auto plain = withPlainCode([&, kind = kind, k = k] {
                        const ImagePtr result = createImageLike(*from[0], type());
                        respond(from, result, kind, k);
                        return result;
                    });
                    EXPECT_TRUE(sameSamples(*plain, *out.get()));
                }
                for (const ImagePtr& xx : {guarded.get(), copyOf(*from[0])}) {
                    Images tensor = from;
                    tensor[0] = xx;
                    respond(tensor, xx, kind, k);
                    EXPECT_TRUE(sameSamples(*out.get(), *xx)) << "over a component";
                }
            }
        }
}

/// A tensor that is the same everywhere, with what it gives.
double responseOf(const Tensor& parts, int type, float k)
{
    Images tensor;
    for (const float part : parts)
        tensor.push_back(drawnImage(eIBT_Real32, {5, 1, 1}, {static_cast<double>(part)}, 1));
    const ImagePtr out = createImage(eIBT_Real32, {5, 1, 1});
    respond(tensor, out, type, k);
    return sampleAt(*out, 4, 0, 0);
}

TEST_P(Harris3dKernel, GivesWhatIsKnownOfFlatEvenAndFlatteningTensors)
{
    if (type() != eIBT_Real32)
        return respond(Images(6, createImage(type(), {1, 1, 1})), createImage(type(), {1, 1, 1}), 0, 0);
    EXPECT_NEAR(std::cbrt(std::ldexp(1.0, -23)), responseOf({}, 1, 0.005f), 2e-8) << "a flat volume is not 0";
    EXPECT_EQ(0, responseOf({}, 0, 0)) << "but its eigenvalue is";
    EXPECT_EQ(7, responseOf({7, 7, 7, 0, 0, 0}, 0, 0)) << "a multiple of the identity";
    EXPECT_NEAR(std::cbrt(343.0 - 0.005 * 9261), responseOf({7, 7, 7, 0, 0, 0}, 1, 0.005f), 1e-5);
    // One direction alone: r is 1, or beyond by rounding. Two alike: it is -1. The cosine of r = 1 is a given number.
    EXPECT_NEAR(0, responseOf({3, 0, 0, 0, 0, 0}, 0, 0), 5e-7);
    EXPECT_NEAR(0, responseOf({3, 3, 3, 3, 3, 3}, 0, 0), 2e-6);
    EXPECT_NEAR(0, responseOf({3, 3, 0, 0, 0, 0}, 0, 0), 2e-6);
    EXPECT_NEAR(-std::cbrt(0.005 * 27), responseOf({3, 0, 0, 0, 0, 0}, 1, 0.005f), 1e-6) << "a surface is below 0";
}

TEST(HarrisCorner3dImg, TakesTheFusedPairWhereThereIsOneUnlessThereIsAvx512)
{
    if (core::isAvailable(core::eIS_Avx512) || !core::isAvailable(core::eIS_Avx2) || !core::isAvailable(core::eIS_Fma))
        GTEST_SKIP() << "AVX2 with FMA are not the newest sets here";
    responseOf({}, 0, 0);
    EXPECT_EQ(rankOf<HarrisCorner3dImgLvl3>(eIBT_Real32, setsOf(core::eIS_Fma, core::eIS_Avx2), 0),
              processor::getAlgorithmEntry(HarrisCorner3dImgLvl3::getTypeName()).lastEfficiency.load());
}

TEST(HarrisCorner3dImg, IsTheChainOfGradientTensorAndResponseOfEveryType)
{
    const ImageSizes sizes(21, 13, 11);
    for (const eImageBufferType type : kAllTypes) {
        SCOPED_TRACE(toString(type));
        const ImagePtr in = drawnImage(type, sizes, {0, 3, 20, 90, 110}, 20);
        const ImagePtr harris = createImage(eIBT_Real32, sizes), eigen = createImage(eIBT_Real32, sizes);
        const auto coverage = GaussianCoverage::createNode(3.0);
        harrisCorner3dImg(in, 0.9f, coverage, nullptr, harris);
        harrisCorner3dImg(in, 0.9f, coverage, params(0, 0), eigen);
        std::vector<double> gradients[3], tensor[6];
        const auto along = [&](std::vector<double>& samples, int derived) {
            for (const int axis : {0, 1, 2})
                samples = filteredAlong(samples, sizes, axis, axis == derived, 0.9, 3.0);
        };
        for (int axis = 0; axis < 3; ++axis)
            along(gradients[axis] = samplesOf(*in), axis);
        const std::size_t factors[6][2] = {{0, 0}, {1, 1}, {2, 2}, {0, 1}, {0, 2}, {1, 2}};
        for (std::size_t p = 0; p < 6; ++p) {
            tensor[p] = gradients[factors[p][0]];
            for (std::size_t i = 0; i < tensor[p].size(); ++i)
                tensor[p][i] *= gradients[factors[p][1]][i];
            along(tensor[p], -1);
        }
        const double largest = *std::max_element(tensor[0].begin(), tensor[0].end());
        const std::vector<double> roots = samplesOf(*harris), smallest = samplesOf(*eigen);
        for (std::size_t i = 0; i < roots.size(); ++i) {
            const double xx = tensor[0][i], yy = tensor[1][i], zz = tensor[2][i], xy = tensor[3][i], xz = tensor[4][i],
                         yz = tensor[5][i], trace = xx + yy + zz;
            const auto determinant = [&](double e) {
                return (xx - e) * ((yy - e) * (zz - e) - yz * yz) - xy * (xy * (zz - e) - yz * xz)
                       + xz * (xy * yz - (yy - e) * xz);
            };
            const double cube = largest * largest * largest;
            ASSERT_NEAR(determinant(0) - 0.005 * trace * trace * trace, roots[i] * roots[i] * roots[i], 2e-5 * cube);
            ASSERT_NEAR(0, determinant(smallest[i]), 2e-5 * cube);
            ASSERT_LE(smallest[i], trace / 3 + 1e-5 * largest);
        }
    }
}

TEST(HarrisCorner3dImg, IsTheUsualMeasureWhereNothingIsSaid)
{
    const ImagePtr in = randomImage(eIBT_UInt8, {40, 20, 10}, 21), usual = harrisCorner3dImg(in),
                   wider = harrisCorner3dImg(in, 1.5f);
    const auto into = [&](float stdDev) {
        const ImagePtr out = randomImage(eIBT_Real32, {40, 20, 10}, 22);
        harrisCorner3dImg(in, stdDev, GaussianCoverage::createNode(4.0), params(1, 0.005f), out);
        return out;
    };
    EXPECT_TRUE(sameSamples(*into(1.0f), *usual) && sameSamples(*into(1.5f), *wider));
    EXPECT_FALSE(sameSamples(*usual, *wider));
}

TEST(HarrisCorner3dImg, OfStripsThreadsAndStacksIsThatOfEachVolume)
{
    const GuardedImage guarded(*drawnImage(eIBT_UInt8, {41, 11, 13, 2, 2}, {0, 0, 1, 7, 20}, 34), 3);
    const ImagePtr& stack = guarded.get();
    Numbers each;
    forEachSample({1, 1, 1, 2, 2}, [&](auto, auto, auto, auto c, auto t) {
        append(each, numbersOf(harrisCorner3dImg(stack->getView(PlanIndex(0, c, t), 13))));
    });
    expectForStripsAndThreads(each, [&] { return harrisCorner3dImg(stack); });
    expectForStripsAndThreads(each, [&] { return harrisCorner3dImg_async(stack); });
}

/// Level 1 with images of the caller's.
void run(const ImagePtr& in, const Images& wk, const ImagePtr& out)
{
    ran<HarrisCorner3dImgLvl1, InImg3d, OutWk1Img, OutWk2Img, OutWk3Img, OutWk4Img, OutWk5Img, OutWk6Img, OutImg>(
        in, wk[0], wk[1], wk[2], wk[3], wk[4], wk[5], out);
}

Images blanks(eImageBufferType type, const ImageSizes& sizes)
{
    Images images;
    for (int i = 0; i < 7; ++i)
        images.push_back(createImage(type, sizes));
    return images;
}

TEST(HarrisCorner3dImg, WorkingImagesTellTheTypeAndHoldTheTensor)
{
    const ImagePtr in = randomImage(eIBT_UInt8, {30, 20, 10}, 24);
    const ForcedSet<HarrisCorner3dImgLvl3> unfused(setsOf(core::eIS_Generic, core::eIS_Generic));
    for (const eImageBufferType type : kAllTypes) {
        SCOPED_TRACE(toString(type));
        const Images wk = blanks(type, {30, 20, 10}), again = blanks(type, {30, 20, 10});
        run(in, wk, wk[6]);
        expectResponses(wk, *wk[6], 1, 0.005f);
        // The response over the first of them; the others are as before.
        run(in, again, again[0]);
        EXPECT_TRUE(sameSamples(*wk[6], *again[0]));
        for (std::size_t i = 1; i < 6; ++i)
            EXPECT_TRUE(sameSamples(*wk[i], *again[i])) << i;
    }
}

TEST(HarrisCorner3dImg, RefusesBeforeAnyWorkAndSaysWhy)
{
    const ImagePtr in = randomImage(eIBT_Real32, {8, 8, 3}, 25), out = copyOf(*in);
    const ImagePtr deeper = createImage(eIBT_Real32, {8, 8, 4}), whole = createImage(eIBT_Int16, {8, 8, 3});
    const Images wk = blanks(eIBT_Real32, {8, 8, 3});
    const auto with = [&](float stdDev, double coverage, const ImagePtr& result) {
        return [=] { harrisCorner3dImg(in, stdDev, GaussianCoverage::createNode(coverage), nullptr, result); };
    };
    const auto on = [&](std::size_t place, const ImagePtr& image) {
        return [=] {
            Images working = wk;
            working[place] = image;
            run(in, working, out);
        };
    };
    const std::string finite = ", it must be a finite number above 0";
    expectRefusals(
        {in, out, wk[0], wk[1], wk[5], deeper},
        {
            {"failed: InOptGradStdDev is -1.5" + finite, with(-1.5f, 4, out)},
            {"failed: InOptGradientGaussianCoverage is -1" + finite, with(1.0f, -1, out)},
            {"mandatory attribute InImg3d has no value", [&] { harrisCorner3dImg(nullptr, 1.0f, nullptr, nullptr, out); }},
            {"mandatory attribute OutImg has no value", with(1.0f, 4, nullptr)},
            {"OutImg (8 x 8 x 4 x 1 x 1)", with(1.0f, 4, deeper)},
            {"failed: buffer type of OutWk1Img", with(1.0f, 4, whole)},
            {"OutWk1Img (8 x 8 x 4 x 1 x 1)", on(0, deeper)},
            {"OutWk4Img (8 x 8 x 4 x 1 x 1)", on(3, deeper)},
            {"OutWk6Img (signed 16 bits (type 3))", on(5, whole)},
        },
        "HarrisCorner3dImgLvl1 refuses to run:");
}

}  // namespace
}  // namespace orvik::test
