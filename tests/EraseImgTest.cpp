// Erasing: all types, all planes, nothing else.

#include "TestImages.h"

#include "siblings/Utility/Processor/EraseImg/EraseImgLvl2.h"

#include "frame/attr/ImageAttributes.h"

namespace orvik::test {
namespace {

TEST(EraseImg, SetsAllPlanesToZeroAndNothingBetweenTheLines)
{
    for (const image::eImageBufferType type : kAllTypes)
        for (const unsigned long width : {1, 63, 65})
            for (const unsigned long gap : {0, 5}) {
                const image::ImageSizes sizes(width, 3, 2, 3, 2);
                const GuardedImage guarded(type, sizes, gap);
                fillRandom(*guarded.get(), 5);
                const auto erase = processor::createInitialised<imaproc::util::EraseImgLvl2>();
                erase->set<imaproc::attr::OutSubImg2d>(guarded.get());
                executeSyncRun(erase);
                EXPECT_TRUE(sameSamples(*image::createImage(type, sizes), *guarded.get()));
                EXPECT_TRUE(guarded.areGuardsIntact());
            }
}

}  // namespace
}  // namespace orvik::test
