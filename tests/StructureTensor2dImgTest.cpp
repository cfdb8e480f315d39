// Smoothed products of gradients: the formula, results in place of the gradients, what is refused.

#include "FamilyShapes.h"
#include "GaussianFormula.h"
#include "InstructionSets.h"

#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl2.h"
#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::filter;

typedef std::vector<ImagePtr> Tensor;  // xx, yy, xy

void smoothProducts(const ImagePtr& gx, const ImagePtr& gy, float stdDev, double coverage, const Tensor& out)
{
    ran<StructureTensor2dImgLvl2, InSubGxImg2d, InSubGyImg2d, InSmoothingStdDev, InGaussianCoverage, OutGxGxImg, OutGyGyImg,
        OutGxGyImg>(gx, gy, stdDev, GaussianCoverage::createNode(coverage), out[0], out[1], out[2]);
}

/// A new tensor of that type.
Tensor tensorOf(const ImagePtr& gx, const ImagePtr& gy, eImageBufferType type, float stdDev, double coverage)
{
    Tensor out;
    for (int i = 0; i < 3; ++i)
        out.push_back(createImageLike(*gx, type));
    smoothProducts(gx, gy, stdDev, coverage, out);
    return out;
}

Numbers allOf(const Tensor& tensor)
{
    Numbers all;
    for (const ImagePtr& product : tensor)
        append(all, numbersOf(product));
    return all;
}

typedef KernelTest<StructureTensor2dImgLvl3> TensorKernel;
INSTANTIATE_TEST_SUITE_P(AllKernels, TensorKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(TensorKernel, IsTheFormulaAndThePlainCodeForAnyWidth)
{
    for (const unsigned long width : kWidths) {
        const ImagePtr gx = randomImage(type(), {width, 1 + width % 13}, 1),
                       gy = randomImage(type(), {width, 1 + width % 13}, 2);
        const float stdDev = width % 2 ? 0.8f : 1.5f;
        const Plane x = planeOf(*gx), y = planeOf(*gy);
        for (const eImageBufferType outType : {eIBT_Real32, eIBT_Int16}) {
            const auto run = [&] { return tensorOf(gx, gy, outType, stdDev, 3.5); };
            const Tensor plain = withPlainCode(run), found = run();
            for (unsigned long p = 0; p < 3; ++p) {
                EXPECT_TRUE(sameSamples(*plain[p], *found[p])) << "product " << p;
                const Plane &a = p == 1 ? y : x, &b = p == 0 ? x : y;
                double largest = 0;
                for (std::size_t i = 0; i < a.samples.size(); ++i)
                    largest = std::max(largest, std::fabs(a.samples[i] * b.samples[i]));
                // Sums of floats are off by some units in the last place of the largest product.
                const double tolerance = (type() == eIBT_Real32 ? 2e-6 : 1e-14) * largest;
                expectPlane(smoothedProduct(a, b, static_cast<double>(stdDev), 3.5), *found[p], tolerance);
            }
        }
    }
}

TEST(StructureTensor, InPlaceAndOnBuffersWithGapsIsTheSameForStripsAndThreads)
{
    for (const eImageBufferType type : kAllTypes)
        for (const ImageSizes& sizes : {ImageSizes(71, 53), ImageSizes(9, 3)}) {
            const ImagePtr gx = randomImage(type, sizes, 3), gy = randomImage(type, sizes, 4);
            SCOPED_TRACE(toString(type));
            const Numbers expected = allOf(tensorOf(gx, gy, type, 1.2f, 4.0));
            for (const bool crossed : {false, true})
                expectForStripsAndThreads(expected, [&] {
                    const GuardedImage x(*gx, 5), y(*gy, 3), xy(type, sizes, 1);
                    const Tensor out = {crossed ? y.get() : x.get(), crossed ? xy.get() : y.get(),
                                        crossed ? x.get() : xy.get()};
                    smoothProducts(x.get(), y.get(), 1.2f, 4.0, out);
                    return allOf(out);
                });
        }
}

TEST(StructureTensor, IntegersSaturateAndNanSpreadsNoFartherThanTheKernel)
{
    const ImagePtr gx = drawnImage(eIBT_Real32, {40, 30}, {100}, 1), gy = drawnImage(eIBT_Real32, {40, 30}, {-100}, 1);
    setSample(*gx, kNan, 20, 15);
    const Tensor tensor = tensorOf(gx, gy, eIBT_Real32, 1.0f, 4.0), bytes = tensorOf(gx, gy, eIBT_Int8, 1.0f, 4.0);
    forEachSample({40, 30}, [&](auto x, auto y, auto...) {
        const bool near = x >= 16 && x <= 24 && y >= 11 && y <= 19;
        ASSERT_EQ(near, std::isnan(sampleAt(*tensor[0], x, y))) << x << ", " << y;
        ASSERT_EQ(near ? 0 : 127, sampleAt(*bytes[0], x, y)) << x << ", " << y;
        ASSERT_EQ(near ? 0 : -128, sampleAt(*bytes[2], x, y)) << x << ", " << y;
        ASSERT_FALSE(std::isnan(sampleAt(*tensor[1], x, y)));
    });
}

TEST(StructureTensor, RefusesWhatDoesNotGoTogether)
{
    const ImagePtr gx = randomImage(eIBT_Real32, {70, 24}, 7), gy = randomImage(eIBT_Real32, {70, 24}, 8);
    const ImagePtr a = copyOf(*gx), b = copyOf(*gx), c = copyOf(*gx), other = createImage(eIBT_Int16, {70, 24});
    const ImagePtr higher = createImage(eIBT_Real32, {70, 25});
    const auto with = [&](const ImagePtr& y, const Tensor& out, float stdDev = 1.0f) {
        return [=] { smoothProducts(gx, y, stdDev, 4.0, out); };
    };
    expectRefusals({a, b, c, higher},
                   {
                       {"failed: InSmoothingStdDev is -1, it must be a finite number above 0", with(gy, {a, b, c}, -1.0f)},
                       {"failed: buffer type of InSubGxImg2d", with(other, {a, b, c})},
                       {"OutGxGxImg (70 x 25 x 1 x 1 x 1)", with(gy, {higher, b, c})},
                       {"OutGyGyImg (70 x 25 x 1 x 1 x 1)", with(gy, {a, higher, c})},
                       {"OutGxGyImg (70 x 25 x 1 x 1 x 1)", with(gy, {a, b, higher})},
                   });
}

typedef TensorKernel TensorOfFloats;
INSTANTIATE_TEST_SUITE_P(FloatKernels, TensorOfFloats, ::testing::ValuesIn(kernelsOf({eIBT_Real32})), kernelName);

TEST_P(TensorOfFloats, OfNansAndInfinitiesIsThatOfThePlainCodeButForTheBitsOfNan)
{
    Numbers values(200, 7);
    append(values, {kNan, kInfinity, -kInfinity, -20, 3});
    const ImagePtr gx = drawnImage(eIBT_Real32, {150, 70}, values, 9), gy = drawnImage(eIBT_Real32, {150, 70}, values, 10);
    const auto run = [&] {
        Numbers all = allOf(tensorOf(gx, gy, eIBT_Real32, 1.0f, 4.0));
        std::replace_if(
            all.begin(), all.end(), [](double v) { return std::isnan(v); }, kNan);
        return all;
    };
    const Numbers plain = withPlainCode(run);
    EXPECT_TRUE(std::any_of(plain.begin(), plain.end(), [](double v) { return std::isnan(v); }));
    EXPECT_TRUE(same(plain, run()));
}

}  // namespace
}  // namespace orvik::test
