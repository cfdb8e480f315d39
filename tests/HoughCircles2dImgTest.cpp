// Scores of centres of circles, real and complex, in both forms of the accumulator: every kernel against the definition, the
// calls, what is refused.

#include "InstructionSets.h"
#include "Rings.h"

#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl1.h"
#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl2.h"
#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl3.h"
#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl1.h"
#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl3.h"
#include "Processor/RingVotes.h"

namespace orvik::test { namespace {

using namespace imaproc::fd;

const unsigned int kAll = NumericLimits<unsigned int>::s_max;
const eCircleIntensityType kTypes[] = {eCIT_Outward, eCIT_Inward, eCIT_Both};

ConstPtr<HoughCirclesRadiusRange> rangeOf(const RingOptions& options)
{
    return createHoughCirclesRadiusRange(options.minRadius, options.maxRadius);
}

Numbers scoresOf(const ImagePtr& gx, const ImagePtr& gy, const RingOptions& o, bool isComplex)
{
    const GuardedImage re(*createImageLike(*gx, eIBT_Real32), 3), im(*createImageLike(*gx, eIBT_Real32), 5);
    if (isComplex)
        houghCirclesPhaseCoded2dImg(gx, gy, rangeOf(o), o.type, o.angle, o.nbPts, re.get(), im.get());
    else
        houghCircles2dImg(gx, gy, rangeOf(o), o.type, o.angle, o.nbPts, re.get());
    Numbers scores = numbersOf(re.get());
    return isComplex ? append(scores, numbersOf(im.get())) : scores;
}

struct WithForm
{
    explicit WithForm(eRingForm form) { force(form); }
    ~WithForm() { force(eRF_ByCost); }
    static void force(eRingForm form)
    {
        HoughCircles2dImgLvl3::forceForm(form);
        HoughCirclesPhaseCoded2dImgLvl3::forceForm(form);
    }
};

/// Both forms give the scores of the definition.
template<class X>
class RingsKernel : public KernelTest<X>
{
protected:
    static constexpr bool s_isComplex = std::is_same<X, HoughCirclesPhaseCoded2dImgLvl3>::value;

    void expectReference(const ImagePtr& gx, const ImagePtr& gy, const RingOptions& o) const
    {
        const Numbers expected = definedScores(*gx, *gy, o, s_isComplex);
        for (const eRingForm form : {eRF_Gather, eRF_Votes}) {
            const WithForm forced(form);
            EXPECT_TRUE(same(expected, scoresOf(gx, gy, o, s_isComplex)))
                << gx->getSizeX() << " columns, radii " << o.minRadius << " to " << o.maxRadius << ", type " << o.type
                << ", angle " << o.angle << ", points " << o.nbPts << ", form " << form;
        }
    }
    void expectAnyWidth() const
    {
        int turn = 0;
        for (const unsigned long width : kWidths) {
            const ImageSizes sizes(width, 7 + width % 5);
            const ImagePtr gx = drawnImage(this->type(), sizes, {0, 0, 1, 3, 100}, 1),
                           gy = randomImage(this->type(), sizes, 2);
            expectReference(gx, gy, {1 + turn % 2, 2 + turn % 4, kTypes[turn % 3], turn % 2 ? 0.4 : 0.1, kAll});
            ++turn;
        }
        const ImagePtr gx = randomImage(this->type(), {75, 52}, 3), gy = randomImage(this->type(), {75, 52}, 4);
        for (const eCircleIntensityType type : kTypes)
            expectReference(gx, gy, {3, 14, type, 0.2, kAll});
    }
    void expectOddValues() const
    {
        const std::vector<double> odd = oddValues(this->type());
        expectReference(drawnImage(this->type(), {40, 31}, odd, 5), drawnImage(this->type(), {40, 31}, odd, 6),
                        {2, 9, eCIT_Both, 0.3, kAll});
        std::vector<double> rarely(300, 5);  // so that not every ring has one
        rarely.insert(rarely.end(), odd.begin(), odd.end());
        for (const eCircleIntensityType type : kTypes)
            expectReference(drawnImage(this->type(), {40, 31}, rarely, 7), drawnImage(this->type(), {40, 31}, rarely, 8),
                            {2, 5, type, 0.3, kAll});
    }
};
/// Label and binary images are served by the kernels of their sample types.
std::vector<TypeAndSets> kernelsOfSamples()
{
    return kernelsOf({eIBT_Int8, eIBT_UInt8, eIBT_Int16, eIBT_UInt16, eIBT_Int32, eIBT_UInt32, eIBT_Real32});
}

typedef RingsKernel<HoughCircles2dImgLvl3> CirclesKernel;
typedef RingsKernel<HoughCirclesPhaseCoded2dImgLvl3> CodedCirclesKernel;
INSTANTIATE_TEST_SUITE_P(AllKernels, CirclesKernel, ::testing::ValuesIn(kernelsOfSamples()), kernelName);
INSTANTIATE_TEST_SUITE_P(AllKernels, CodedCirclesKernel, ::testing::ValuesIn(kernelsOfSamples()), kernelName);

TEST_P(CirclesKernel, SumsTheRingsInListOrderForAnyWidth)
{
    expectAnyWidth();
}
TEST_P(CirclesKernel, SumsTheRingsInListOrderAtTheTypesLimits)
{
    expectOddValues();
}
TEST_P(CodedCirclesKernel, SumsTheRingsInListOrderForAnyWidth)
{
    expectAnyWidth();
}
TEST_P(CodedCirclesKernel, SumsTheRingsInListOrderAtTheTypesLimits)
{
    expectOddValues();
}

TEST(Circles, ScoresAreDefinedForAnyAngleRangeAndThinning)
{
    const ImagePtr gx = randomImage(eIBT_Int16, {33, 23}, 9), gy = drawnImage(eIBT_Int16, {33, 23}, {0, 0, 5, -7}, 10);
    const auto expectDefined = [&](const RingOptions& o) {
        for (const bool isComplex : {false, true})
            for (const eRingForm form : {eRF_ByCost, eRF_Votes}) {
                const WithForm forced(form);
                EXPECT_TRUE(same(definedScores(*gx, *gy, o, isComplex), scoresOf(gx, gy, o, isComplex)))
                    << isComplex << ", radii " << o.minRadius << " to " << o.maxRadius << ", type " << o.type << ", angle "
                    << o.angle << ", points " << o.nbPts;
            }
    };
    for (const double angle : {0.0, 1e-9, 1e-5, 0.1, 1.0, kPi / 2, 2.0, 4.0, -0.2, kNan, kInfinity})
        for (const eCircleIntensityType type : kTypes)
            expectDefined({2, 6, type, angle, kAll});
    for (const unsigned int nbPts : {0u, 1u, 7u, 13u})
        for (const eCircleIntensityType type : kTypes)
            expectDefined({1, 8, type, 0.3, nbPts});
    // One radius, none, that of the centre alone, beyond the image.
    for (const auto& [min, max] :
         std::vector<std::pair<long, long>>{{5, 5}, {7, 4}, {0, 3}, {-4, 2}, {0, 0}, {4, 500}, {30, 40}})
        expectDefined({min, max, eCIT_Both, 0.3, kAll});
    const RingOptions unset = {1, 11, eCIT_Both, 0.1, kAll};
    EXPECT_TRUE(same(definedScores(*gx, *gy, unset, false), numbersOf(houghCircles2dImg(gx, gy, nullptr))));
}

TEST(Circles, ScoresAreTheSameForStripsAndThreads)
{
    const GuardedImage gx(*randomImage(eIBT_Real32, {90, 61}, 11), 3), gy(*randomImage(eIBT_Real32, {90, 61}, 12), 7);
    const RingOptions o = {4, 13, eCIT_Both, 0.1, kAll};
    for (const bool isComplex : {false, true}) {
        const Numbers expected = definedScores(*gx.get(), *gy.get(), o, isComplex);
        for (const eRingForm form : {eRF_Gather, eRF_Votes}) {
            const WithForm forced(form);
            expectForStripsAndThreads(expected, [&] { return scoresOf(gx.get(), gy.get(), o, isComplex); });
        }
    }
}

TEST(Circles, ScoresAreRefusedInWords)
{
    const ImagePtr gx = blank(9, 8, 1, 1, eIBT_Real32), gy = copyOf(*gx), out = copyOf(*gx),
                   narrow = blank(8, 8, 1, 1, eIBT_Real32);
    const auto into = [&](const ImagePtr& x, const ImagePtr& y, long max, const ImagePtr& scores) {
        return [=] { houghCircles2dImg(x, y, createHoughCirclesRadiusRange(1, max), eCIT_Both, 0.1, kAll, scores); };
    };
    const auto asComplex = [&](const ImagePtr& re, const ImagePtr& im) {
        return [=] { houghCirclesPhaseCoded2dImg(gx, gy, nullptr, eCIT_Both, 0.1, kAll, re, im); };
    };
    // A list that does not belong to its range.
    const auto places = HoughCirclesKernelXY::createNode();
    places->access<HoughCirclesKernelXY::Coll>().push_back(HoughCirclesKernelXYElt::createNode(3, 0, 1.f, 0.f, 3.f, 1));
    const auto foreign = [&] {
        ran<HoughCircles2dImgLvl2, InSubGxImg2d, InSubGyImg2d, InCircleIntensityType, InMaxAngleWithGradDir,
            InHoughCirclesRadiusRange, InHoughCirclesKernelXY, OutRealImg>(gx, gy, eCIT_Both, 0.1,
                                                                           createHoughCirclesRadiusRange(1, 2), places, out);
    };
    expectRefusals(
        {gx, gy, out},
        {{"(9 x 8 x 1 x 1 x 1) equals that of InGyGreyImg2d (8 x 8 x 1 x 1 x 1)", into(gx, narrow, 3, out)},
         {"(9 x 8 x 1 x 1 x 1) equals that of OutRealImg (8 x 8 x 1 x 1 x 1)", into(gx, gy, 3, narrow)},
         {"(float 32 bits (type 7)) equals that of InGyGreyImg2d (unsigned 8 bits (type 2))", into(gx, blank(9, 8), 3, out)},
         {"failed: buffer type, of OutRealImg", into(gx, gy, 3, blank(9, 8))},
         {"InOptHoughCirclesRadiusRange::MaxRadius", into(gx, gy, -1, out)},
         {"OutRealImg shares memory with InGyGreyImg2d", into(gx, gy, 3, gy)},
         {"mandatory attribute InGyGreyImg2d has no value", into(gx, nullptr, 3, out)},
         {"mandatory attribute OutRealImg has no value", into(gx, gy, 3, nullptr)},
         {"OutComplexImImg shares memory with OutComplexRealImg", asComplex(out, out)},
         {"failed: buffer type, of OutComplexRealImg", asComplex(blank(9, 8), blank(9, 8))},
         {"at offset (3, 0), lies beyond the greatest radius, 2", foreign}});
}

}  // namespace
}  // namespace orvik::test
