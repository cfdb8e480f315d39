// Smoothed products of gradients of volumes: the formula, results in place of the gradients, what is refused.

#include "FamilyShapes.h"
#include "GaussianFormula.h"
#include "InstructionSets.h"

#include "siblings/Filtering/Processor/SmoothSlices3dImg/SmoothSlices3dImgLvl3.h"
#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgLvl2.h"
#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::filter;

typedef std::vector<ImagePtr> Images;

void smoothProducts(const Images& gradients, float stdDev, double coverage, const Images& out)
{
    ran<StructureTensor3dImgLvl2, InSubGxImg3d, InSubGyImg3d, InSubGzImg3d, InSmoothingStdDev, InGaussianCoverage,
        OutGxGxImg, OutGyGyImg, OutGzGzImg, OutGxGyImg, OutGxGzImg, OutGyGzImg>(
        gradients[0], gradients[1], gradients[2], stdDev, GaussianCoverage::createNode(coverage), out[0], out[1], out[2],
        out[3], out[4], out[5]);
}

/// A new tensor of that type.
Images tensorOf(const Images& gradients, eImageBufferType type, float stdDev, double coverage)
{
    Images out;
    for (int i = 0; i < 6; ++i)
        out.push_back(createImageLike(*gradients[0], type));
    smoothProducts(gradients, stdDev, coverage, out);
    return out;
}

Images randomGradients(eImageBufferType type, const ImageSizes& sizes)
{
    return {randomImage(type, sizes, 1), randomImage(type, sizes, 2), randomImage(type, sizes, 3)};
}

Numbers allOf(const Images& tensor)
{
    Numbers all;
    for (const ImagePtr& product : tensor)
        append(all, numbersOf(product));
    return all;
}

const std::size_t kFactors[6][2] = {{0, 0}, {1, 1}, {2, 2}, {0, 1}, {0, 2}, {1, 2}};

void expectFormula(const Images& gradients, float stdDev, double coverage, const Images& found)
{
    for (std::size_t p = 0; p < 6; ++p) {
        std::vector<double> samples = samplesOf(*gradients[kFactors[p][0]]);
        const std::vector<double> others = samplesOf(*gradients[kFactors[p][1]]);
        double largest = 0;
        for (std::size_t i = 0; i < samples.size(); ++i)
            largest = std::max(largest, std::fabs(samples[i] *= others[i]));
        for (const int axis : {0, 1, 2})
            samples = filteredAlong(samples, gradients[0]->getGeometry().getSizes(), axis, false,
                                    static_cast<double>(stdDev), coverage);
        // Sums of floats are off by some units in the last place of the largest product.
        expectVolume(samples, *found[p], 2e-6 * largest);
    }
}

typedef KernelTest<StructureTensor3dImgLvl3> Tensor3dKernel;
INSTANTIATE_TEST_SUITE_P(AllKernels, Tensor3dKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(Tensor3dKernel, IsTheFormulaAndThePlainCodeForAnySize)
{
    for (const ImageSizes& sizes : {ImageSizes(1, 1, 1), {70, 1, 5}, {3, 19, 1}, {64, 9, 12}, {131, 4, 3}}) {
        const Images gradients = randomGradients(type(), sizes);
        const float stdDev = sizes.x % 2 ? 0.8f : 1.5f;
        for (const eImageBufferType outType : {eIBT_Real32, eIBT_Int16}) {
            const auto run = [&] { return tensorOf(gradients, outType, stdDev, 3.5); };
            const Images plain = withPlainCode(run), found = run();
            EXPECT_TRUE(same(allOf(plain), allOf(found)));
            expectFormula(gradients, stdDev, 3.5, found);
        }
    }
}

typedef KernelTest<SmoothSlices3dImgLvl3> SlicesKernel;
INSTANTIATE_TEST_SUITE_P(AllKernels, SlicesKernel, ::testing::ValuesIn(kernelsOf({eIBT_Real32})), kernelName);

TEST_P(SlicesKernel, IsThePlainCodeForAnyTypeOfResult)
{
    const Images gradients = randomGradients(eIBT_Real32, {131, 4, 12});
    for (const eImageBufferType outType : kAllTypes) {
        const auto run = [&] { return tensorOf(gradients, outType, 1.2f, 4.0); };
        const Images plain = withPlainCode(run), found = run();
        EXPECT_TRUE(same(allOf(plain), allOf(found))) << toString(outType);
        expectFormula(gradients, 1.2f, 4.0, found);
    }
}

TEST(StructureTensor3d, OverTheGradientsAndOnBuffersWithGapsIsTheSameForStripsAndThreads)
{
    for (const eImageBufferType type : {eIBT_Real32, eIBT_Int16})
        for (const ImageSizes& sizes : {ImageSizes(71, 23, 19), ImageSizes(9, 3, 2)}) {
            const Images gradients = randomGradients(type, sizes);
            const Numbers expected = allOf(tensorOf(gradients, type, 1.2f, 4.0));
            SCOPED_TRACE(toString(type));
            expectForStripsAndThreads(expected, [&] {
                const GuardedImage x(*gradients[0], 5), y(*gradients[1], 3), z(*gradients[2], 1), xy(type, sizes, 1),
                    xz(type, sizes, 2), yz(type, sizes, 3);
                const Images out = {x.get(), y.get(), z.get(), xy.get(), xz.get(), yz.get()};
                smoothProducts(out, 1.2f, 4.0, out);
                return allOf(out);
            });
        }
}

TEST(StructureTensor3d, IntegersSaturateAndNanSpreadsNoFartherThanTheKernel)
{
    const auto constant = [](double value) { return drawnImage(eIBT_Real32, {20, 18, 16}, {value}, 1); };
    const Images gradients = {constant(100), constant(-100), constant(100)};
    setSample(*gradients[0], kNan, 10, 9, 8);
    const Images tensor = tensorOf(gradients, eIBT_Real32, 1.0f, 4.0), bytes = tensorOf(gradients, eIBT_Int8, 1.0f, 4.0);
    forEachSample({20, 18, 16}, [&](auto x, auto y, auto z, auto...) {
        const bool near = x >= 6 && x <= 14 && y >= 5 && y <= 13 && z >= 4 && z <= 12;
        for (std::size_t p = 0; p < 6; ++p) {
            const bool hasNan = near && kFactors[p][0] == 0;
            ASSERT_EQ(hasNan, std::isnan(sampleAt(*tensor[p], x, y, z))) << p << " at " << x << ", " << y << ", " << z;
            ASSERT_EQ(hasNan ? 0 : p == 3 || p == 5 ? -128 : 127, sampleAt(*bytes[p], x, y, z)) << p;
        }
    });
}

TEST(StructureTensor3d, RefusesWhatDoesNotGoTogether)
{
    const Images gradients = randomGradients(eIBT_Real32, {70, 4, 5}), out = tensorOf(gradients, eIBT_Real32, 1.0f, 4.0);
    const ImagePtr deeper = createImage(eIBT_Real32, {70, 4, 6}), other = createImage(eIBT_Int16, {70, 4, 5});
    const auto with = [&](std::size_t place, const ImagePtr& image, float stdDev = 1.0f) {
        return [=] {
            Images in = gradients, results = out;
            (place < 3 ? in.at(place) : results.at(place - 3)) = image;
            smoothProducts(in, stdDev, 4.0, results);
        };
    };
    expectRefusals(out,
                   {
                       {"failed: InSmoothingStdDev is -1, it must be a finite number above 0", with(0, gradients[0], -1)},
                       {"InSubGzImg3d (signed 16 bits (type 3))", with(2, other)},
                       {"OutGxGxImg (70 x 4 x 6 x 1 x 1)", with(3, deeper)},
                       {"OutGyGzImg (70 x 4 x 6 x 1 x 1)", with(8, deeper)},
                       {"OutGxGyImg shares memory with InSubGxImg3d", with(6, gradients[0])},
                   });
}

}  // namespace
}  // namespace orvik::test
