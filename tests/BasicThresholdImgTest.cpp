// Samples between two thresholds: every kernel, into every type.

#include "FamilyShapes.h"
#include "InstructionSets.h"

#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl1.h"
#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl3.h"

namespace orvik::test { namespace {

using namespace imaproc::util;

typedef KernelTest<BasicThresholdImgLvl3> ThresholdKernel;
INSTANTIATE_TEST_SUITE_P(AllKernels, ThresholdKernel, ::testing::ValuesIn(allKernels()), kernelName);

TEST_P(ThresholdKernel, MarksWhatLiesWithinOrOutsideButNoNanAlsoOverItsInput)
{
    const double inf = kInfinity;
    unsigned int turn = 0;
    for (const unsigned long width : kWidths)
        for (const auto& [min, max] : {std::make_pair(1.0, 2.0),
                                       {0.5, 2.5},
                                       {-3.5, 1e300},
                                       {-1e300, 0.0},
                                       {1e300, inf},
                                       {-inf, -1e300},
                                       {1.25, 1.75},
                                       {2.0, 1.0},
                                       {kNan, 2.0},
                                       {1.0, kNan}}) {
            const bool outside = ++turn % 2 == 0;
            const ImageSizes sizes(width, 3);
            const ImagePtr in = drawnImage(type(), sizes, oddValues(type()), turn);
            const GuardedImage over(*in, 3), out(kAllTypes[turn % 11], sizes, turn % 4);
            for (const auto& [from, to] : {std::make_pair(in, out.get()), {over.get(), over.get()}}) {
                ran<BasicThresholdImgLvl3, InYStrip2d, InThresholdMin, InThresholdMax, InOptOutside, OutYStrip2d>(
                    stripOf(from), min, max, outside, outStripOf(to));
                forEachSample(sizes, [&, &low = min, &high = max, &found = *to](auto... at) {
                    const double v = sampleAt(*in, at...);
                    ASSERT_EQ(!std::isnan(v) && (v >= low && v <= high) != outside, sampleAt(found, at...))
                        << v << " between " << low << " and " << high << ", outside " << outside << ", width " << width;
                });
            }
        }
}

TEST(BasicThresholdImg, IsTheSameForStripsAndThreadsAndMadeBinary)
{
    const ImagePtr in = randomImage(eIBT_Int16, {70, 40, 2, 2}, 1), expected = createImageLike(*in, eIBT_Binary);
    forEachSample(in->getGeometry().getSizes(), [&](auto... at) {
        setSample(*expected, sampleAt(*in, at...) >= -5000 && sampleAt(*in, at...) <= 20000, at...);
    });
    expectForStripsAndThreads(numbersOf(expected), [&] {
        return ran<BasicThresholdImgLvl1, InImg, InThresholdMin, InThresholdMax>(in, -5000, 20000)->getStorage<OutBinImg>();
    });
}

}  // namespace
}  // namespace orvik::test
