// Strong pixels (2) that spread over weak ones (1): every kernel, against the plain code, which NeighborhoodTest is about.

#include "FamilyShapes.h"
#include "InstructionSets.h"

#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl2.h"
#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::advmorpho;

typedef KernelTest<IterativeExtremumPropagation2dImgLvl3> SpreadingKernel;
INSTANTIATE_TEST_SUITE_P(AllKernels, SpreadingKernel, ::testing::ValuesIn(kernelsOf({eIBT_UInt8, eIBT_Binary, eIBT_Label8})),
                         kernelName);

TEST_P(SpreadingKernel, SpreadsAsThePlainCodeDoesForAnyWidthAndStrips)
{
    // Two thirds empty: components of all sizes, few of them with a strong pixel.
    Numbers values(60);
    std::fill(values.begin(), values.begin() + 19, 1);
    values[19] = 2;
    const auto spread = [](const ImagePtr& from, const ImagePtr& to, unsigned long grain) {
        const WithGrain strips(grain);
        ran<IterativeExtremumPropagation2dImgLvl2, InSubImg2d, InNeighborhood2d, InLocalExtremumType, OutImg>(
            from, eN2D_Eight, eLET_Maxima, to);
        return to;
    };
    for (const unsigned long width : kWidths) {
        const ImagePtr in = drawnImage(type(), {width, 12}, values, 3);
        const ImagePtr expected = withPlainCode([&] { return spread(in, createImageLike(*in, type()), 12); });
        for (const unsigned long grain : {1, 3, 12}) {
            const GuardedImage over(*in, width % 5);
            EXPECT_TRUE(sameSamples(*expected, *spread(over.get(), over.get(), grain))) << grain << " lines per strip";
        }
    }
}

}  // namespace
}  // namespace orvik::test
