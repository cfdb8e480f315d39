// Erasing: all types, all planes, nothing else.

#include "FamilyShapes.h"

#include "siblings/Utility/Processor/EraseImg/EraseImgLvl2.h"

namespace orvik::test { namespace {

TEST(EraseImg, SetsAllPlanesToZeroAndNothingBetweenTheLines)
{
    for (const image::eImageBufferType type : kAllTypes)
        for (const auto& [width, gap] : {std::make_pair(1ul, 5ul), {63, 0}, {65, 5}}) {
            const GuardedImage guarded(*randomImage(type, {width, 3, 2, 3, 2}, 5), gap);
            ran<imaproc::util::EraseImgLvl2, OutSubImg2d>(guarded.get());
            EXPECT_TRUE(sameSamples(*image::createImage(type, {width, 3, 2, 3, 2}), *guarded.get()));
        }
}

}  // namespace
}  // namespace orvik::test
