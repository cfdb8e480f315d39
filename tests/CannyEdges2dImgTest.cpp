// Canny edges of planes: the classes of pixels, both hysteresis strategies, the calls.

#include "CannyReference.h"
#include "InstructionSets.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"
#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl2.h"
#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

/// The detector pixel by pixel, from its definition: of all planes.
class Reference
{
public:
    Reference(const ImagePtr& gx, const ImagePtr& gy, double low, double high)
        : m_gradient({gx, gy}), m_classes(createImageLike(*gx, eIBT_UInt8))
    {
        forEachSample(gx->getGeometry().getSizes(), [&](long x, long y, long z, auto...) {
            setSample(*m_classes, classOf(x, y, z, low * low, high * high), x, y, z);
        });
    }
    const ImagePtr& classes() const { return m_classes; }
    ImagePtr edges() const { return joinedToStrong(m_classes, 0); }

private:
    int classOf(long x, long y, long z, double low, double high) const
    {
        const double m = m_gradient.squaredMagnitude(x, y, z), gx = m_gradient.at(0, x, y, z),
                     gy = m_gradient.at(1, x, y, z);
        const volatile double along = std::fabs(gx) * 0.41421356237309503, across = std::fabs(gx) * 2.414213562373095;
        const auto near = [&](long dx, long dy) { return m_gradient.squaredMagnitude(x + dx, y + dy, z); };
        bool kept;
        if (along > std::fabs(gy))
            kept = m > near(-1, 0) && m >= near(1, 0);
        else if (std::fabs(gy) > across)
            kept = m >= near(0, 1) && m > near(0, -1);
        else if ((gx < 0) == (gy < 0))
            kept = m > near(1, 1) && m > near(-1, -1);
        else
            kept = m > near(-1, 1) && m > near(1, -1);
        return low >= m || !kept ? 0 : m > high ? 2 : 1;
    }

    GradientSamples m_gradient;
    ImagePtr m_classes;
};

class CannyKernel : public KernelTest<CannyEdges2dImgLvl3>
{
protected:
    void expectReference(const ImagePtr& gx, const ImagePtr& gy, double low, double high) const
    {
        const ImagePtr out = createImageLike(*gx, eIBT_UInt8);
        ran<CannyEdges2dImgLvl2, InSubGxImg2d, InSubGyImg2d, InCannyThresholds, OutBinImg>(gx, gy, thresholds(low, high),
                                                                                           out);
        EXPECT_TRUE(sameSamples(*Reference(gx, gy, low, high).classes(), *out)) << "thresholds " << low << ", " << high;
    }
};
INSTANTIATE_TEST_SUITE_P(AllKernels, CannyKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(CannyKernel, ClassesEqualTheDefinitionForAnyWidth)
{
    for (const unsigned long width : kWidths) {
        const ImageSizes sizes(width, 1 + width % 5);
        expectReference(tiedImage(type(), sizes, 3, 7), tiedImage(type(), sizes, 3, 8), 1.0, 3.0);
    }
}

TEST_P(CannyKernel, ClassesEqualTheDefinitionForAnyValues)
{
    const ImagePtr gx = randomImage(type(), {137, 9}, 9), gy = randomImage(type(), {137, 9}, 10);
    // Low above high, negative, whole roots that magnitudes meet, and thresholds that are no numbers or beyond all.
    for (const auto& [low, high] : {std::make_pair(0.0, 0.0),
                                    {100.0, 250.0},
                                    {5.0, 2.0},
                                    {-40.0, -60.0},
                                    {65535.0, 65536.0},
                                    {kNan, 10.0},
                                    {1.0, kNan},
                                    {1e300, 1e300}})
        expectReference(gx, gy, low, high);
    const ImagePtr oddX = drawnImage(type(), {70, 12}, oddValues(type()), 11);
    const ImagePtr oddY = drawnImage(type(), {70, 12}, oddValues(type()), 12);
    expectReference(oddX, oddY, 0.0, 100.0);
    expectReference(oddX, oddY, 180.0, 46000.0);
}

// The widest type whose sectors are decided in whole numbers.
typedef CannyKernel CannySectors;
INSTANTIATE_TEST_SUITE_P(Int16Kernels, CannySectors, ::testing::ValuesIn(kernelsOf({eIBT_Int16})), kernelName);

TEST_P(CannySectors, OfWholeNumbersAreThoseOfTheTangents)
{
    // One line per length: four gradients next to each of the two limits of a sector, each beside an equal one, which
    // suppresses it in the sector along that side alone. Both signs meet both corners of the range.
    const int step = 7;
    const unsigned long nbLengths = 32768 / step + 1;
    const ImagePtr gx = createImage(type(), {24, 3 * nbLengths}), gy = createImage(type(), {24, 3 * nbLengths});
    for (unsigned long i = 0; i < nbLengths; ++i) {
        const int length = 32768 - static_cast<int>(i) * step;
        const int limit = static_cast<int>(std::floor(length * 0.41421356237309503));
        for (unsigned long k = 0; k < 8; ++k)
            for (const bool swapped : {false, true}) {
                const unsigned long x = k / 2 * 3 + k % 2 + (swapped ? 12 : 0);
                setSample(swapped ? *gy : *gx, -length, x, 3 * i);
                setSample(swapped ? *gx : *gy, limit - 1 + static_cast<int>(k / 2), x, 3 * i);
            }
    }
    expectReference(gx, gy, 0.0, 1.0);
}

// Floats are told apart by rounded magnitudes where those suffice.
typedef CannyKernel CannyCloseFloats;
INSTANTIATE_TEST_SUITE_P(FloatKernels, CannyCloseFloats, ::testing::ValuesIn(kernelsOf({eIBT_Real32})), kernelName);

TEST_P(CannyCloseFloats, AreComparedExactly)
{
    // Pairs of neighbours on an empty image, so far apart that no other comparison shares a vector with theirs. Lengths
    // differ by roundings alone, from each other and from the thresholds; a third of the directions lie that close to the
    // limit of a sector. At the outer scales squares vanish, lose digits or overflow in float.
    const ImageSizes sizes(20ul * 70, 3ul * 40);
    for (const float scale : {1e-43f, 1e-23f, 3e-21f, 1e-15f, 1.0f, 1e10f, 1.8e19f, 1e30f}) {
        const ImagePtr gx = createImage(type(), sizes), gy = createImage(type(), sizes);
        std::mt19937 random(12);
        const auto setGradient = [&](unsigned long x, unsigned long y) {
            const double angle = kPi / 8 * (random() % 3 ? static_cast<double>(random() % 2000) / 1000.0 : 1.0);
            float along = scale * static_cast<float>(std::cos(angle)), across = scale * static_cast<float>(std::sin(angle));
            if (random() % 2)
                std::swap(along, across);
            setSample(*gx, static_cast<double>(along), x, y);
            setSample(*gy, static_cast<double>(random() % 4 ? across : -across), x, y);
        };
        for (unsigned long y = 0; y < sizes.y; y += 3)
            for (unsigned long x = 1; x < sizes.x; x += 20) {
                setGradient(x, y);
                const unsigned long step = random() % 4;
                setGradient(x + (step > 0) - 2ul * (step == 3), y + (step != 1));
            }
        const double length = static_cast<double>(scale);
        expectReference(gx, gy, 0.5 * length, length);
        expectReference(gx, gy, length, 1.5 * length);
    }
}

TEST(CannyEdges, EqualTheDefinitionForEveryType)
{
    for (const eImageBufferType type : kAllTypes) {
        const ImagePtr gx = tiedImage(type, {77, 61, 2}, 20, 12), gy = tiedImage(type, {77, 61, 2}, 20, 13);
        EXPECT_TRUE(sameSamples(*Reference(gx, gy, 10, 22).edges(), *cannyEdges2dImg(gx, gy, thresholds(10, 22))));
    }
}

TEST(CannyEdges, WorkingImagesAreTheCallersWhereTheyFit)
{
    const ImagePtr gx = tiedImage(eIBT_Int16, {40, 30}, 20, 14), gy = tiedImage(eIBT_Int16, {40, 30}, 20, 15);
    const Reference reference(gx, gy, 10, 22);
    const auto run = [&](const ImagePtr& out, const ImagePtr& wk1, eProcessingOptimizationPolicy policy,
                         const ImagePtr& expected) {
        const auto canny = ran<CannyEdges2dImgLvl1, InGxGreyImg2d, InGyGreyImg2d, InCannyThresholds, InOptOptimizationPolicy,
                               OutBinImg, OutOptWk1BinImg>(gx, gy, thresholds(10, 22), policy, out, wk1);
        forEachSample({40, 30},
                      [&](auto x, auto y, auto...) { ASSERT_EQ(sampleAt(*expected, x, y), sampleAt(*out, x, y)); });
        return canny->getStorage<OutOptWk1BinImg>();
    };
    // The result holds the classes itself: the working image stays untouched.
    const ImagePtr working = randomImage(eIBT_UInt8, {40, 30}, 16), copy = copyOf(*working);
    run(createImage(eIBT_Label8, {40, 30}), working, ePOP_Labels, reference.edges());
    EXPECT_TRUE(sameSamples(*working, *copy));
    // A result of another type goes through the working image; one that cannot hold the classes is replaced.
    const ImagePtr wide = createImage(eIBT_Real32, {40, 30});
    EXPECT_EQ(working, run(wide, working, ePOP_Iterative, reference.edges()));
    EXPECT_EQ(eIBT_UInt8, run(wide, copyOf(*gx), ePOP_Iterative, reference.edges())->getBufferType());
    // By labels only the strong candidates reach such a result: deliberate.
    const ImagePtr strong = copyOf(*reference.classes());
    forEachSample({40, 30}, [&](auto... at) { setSample(*strong, sampleAt(*strong, at...) == 2, at...); });
    run(wide, nullptr, ePOP_Labels, strong);
}

TEST(CannyEdges, StagesEndAtTheFifthAndRefuseASixth)
{
    const auto canny = processor::createInitialised<CannyEdges2dImgLvl1>();
    processor::ProviderPtr provider;
    EXPECT_EQ(processor::eRRT_NoMoreProvider, canny->retrieveProvider(core::BasePriority(), 5u, provider).getValue());
    expectLastIteration(5, *canny);
}

TEST(CannyEdges, RefuseWhatDoesNotFitInWordsBeforeAnythingIsWritten)
{
    const ImagePtr gx = randomImage(eIBT_Int16, {20, 10}, 19), gy = randomImage(eIBT_Int16, {20, 10}, 20);
    const ImagePtr out = randomImage(eIBT_UInt8, {20, 10}, 21), other = randomImage(eIBT_UInt8, {10, 20}, 22);
    const auto canny = [&](const ImagePtr& x, const ImagePtr& y, const ImagePtr& result) {
        return [=] { cannyEdges2dImg(x, y, thresholds(1, 2), ePOP_Iterative, result); };
    };
    const auto withWorking = [&](auto attribute) {
        return [=] {
            ran<CannyEdges2dImgLvl1, InGxGreyImg2d, InGyGreyImg2d, InCannyThresholds, OutBinImg, decltype(attribute)>(
                gx, gy, thresholds(1, 2), out, other);
        };
    };
    const std::string mandatory = "CannyEdges2dImgLvl1 refuses to run: mandatory attribute ",
                      unset = " has no value (unset or null)";
    const std::string size = "failed: size X x Y x Z x C x T of InGxGreyImg2d (20 x 10 x 1 x 1 x 1) equals that of ";
    expectRefusals(
        {out, other},
        {
            {mandatory + "InGxGreyImg2d" + unset, canny(nullptr, gy, out)},
            {mandatory + "InCannyThresholds" + unset, [&] { cannyEdges2dImg(gx, gy, nullptr, ePOP_Labels, out); }},
            {mandatory + "OutBinImg" + unset, canny(gx, gy, nullptr)},
            {mandatory + "OutBinImg" + unset,
             [&] { cannyEdges2dImg_async(gx, gy, thresholds(1, 2), ePOP_Iterative, nullptr); }},
            {size + "InGyGreyImg2d (20 x 11 x 1 x 1 x 1)", canny(gx, blank(20, 11, 1, 1, eIBT_Int16), out)},
            {"failed: buffer type of InGxGreyImg2d (signed 16 bits (type 3)) equals that of InGyGreyImg2d "
             "(unsigned 8 bits (type 2))",
             canny(gx, blank(20, 10), out)},
            {size + "OutBinImg (10 x 20 x 1 x 1 x 1)", canny(gx, gy, other)},
            {"OutOptWk1BinImg (10 x 20 x 1 x 1 x 1)", withWorking(OutOptWk1BinImg())},
            {"OutOptWk2BinImg (10 x 20 x 1 x 1 x 1)", withWorking(OutOptWk2BinImg())},
            {"OutOptWk1LabelImg (10 x 20 x 1 x 1 x 1)", withWorking(OutOptWk1LabelImg())},
        });
}

TEST(CannyEdges, MoreComponentsThanLabelsEndTheRunInWords)
{
    // Every third pixel of every third line is an edge of its own.
    const ImagePtr gx = createImage(eIBT_Int16, {780, 780}), gy = createImage(eIBT_Int16, {780, 780});
    forEachSample({260, 260}, [&](auto x, auto y, auto...) { setSample(*gx, 10, 3 * x, 3 * y); });
    const ImagePtr out = createImage(eIBT_Binary, {780, 780});
    EXPECT_EQ("there are 67600 connected components, but OutLabelImg, label 16 bits (type 9), can name only 65535: use the "
              "iterative optimization policy or wider labels",
              refusalOf([&] { cannyEdges2dImg(gx, gy, thresholds(1, 2), ePOP_Labels, out); }));
    cannyEdges2dImg(gx, gy, thresholds(1, 2), ePOP_Iterative, out);
    EXPECT_TRUE(sameSamples(*Reference(gx, gy, 1, 2).edges(), *out));
}

}  // namespace
}  // namespace orvik::test
