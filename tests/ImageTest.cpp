// Images, views, wrapped buffers, buffers of the kernels, borders, strips made by hand.

#include "TestImages.h"
#include "TestRuns.h"

#include "frame/image/Border.h"
#include "frame/image/Strips.h"

#include <boost/weak_ptr.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace orvik::test { namespace {

using namespace image;
typedef imaproc::ORVIKImageProcessingException ImageException;

template<class F>
std::string refusal(F&& f)
{
    return thrownText<ImageException>(f);
}

TEST(CreateImage, GivesZeroedPaddedAlignedLinesOfTheirOwn)
{
    for (const eImageBufferType type : kAllTypes)
        for (const unsigned long width : {1, 64, 65}) {
            const ImagePtr image = createImage(type, ImageSizes(width, 3, 2, 2, 2));
            EXPECT_TRUE(image->hasSlack() && image->getView(PlanIndex(1, 1, 1), 1)->hasSlack());
            const unsigned long padded = (width + 63) / 64 * 64 * getImageBufferBaseSize(type);
            forEachSample(ImageSizes(1, 3, 2, 2, 2), [&](auto, auto y, auto z, auto c, auto t) {
                char* const line = static_cast<char*>(image->accessLine(y, z, c, t));
                EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(line) % 64);
                for (unsigned long i = 0; i < padded; ++i)
                    ASSERT_EQ(0, line[i]) << "line used twice, or not zeroed: byte " << i;
                std::memset(line, 1, padded);
            });
        }
}

TEST(CreateImage, RefusesSizesAndTypesInWords)
{
    for (const ImageSizes& sizes : {ImageSizes(0, 2), {2, 0}, {2, 2, 0}, {2, 2, 2, 0}, {2, 2, 2, 2, 0}})
        EXPECT_EQ("Invalid image: every size must be at least 1, not " + toString(sizes),
                  refusal([&] { createImage(eIBT_UInt8, sizes); }));
    EXPECT_EQ("Invalid image: buffer type 12 is none of the types 1 to 11",
              refusal([] { createImage(static_cast<eImageBufferType>(12), ImageSizes(2, 2)); }));
    const unsigned long huge = std::numeric_limits<unsigned long>::max(), half = 1ul << 32;
    for (const ImageSizes& sizes : {ImageSizes(huge, 1),
                                    {huge - 63, 1},
                                    {1, huge},
                                    {half, half},
                                    {half / 2, half / 4, 16},
                                    {1, 1, half, half},
                                    {64, half / 4, 1, 1, half},
                                    {huge / 2, 1, 1, 2}})
        EXPECT_EQ("Invalid image: the number of bytes of size " + toString(sizes) + " overflows",
                  refusal([&] { createImage(eIBT_Real32, sizes); }));
}

TEST(WrapBuffer, TakesStridesInAnyOrderAndDirection)
{
    std::vector<unsigned char> bytes(1000, 7);
    // Lines of 5 from the bottom up, channels line by line beside one another, slices farther apart.
    unsigned char* const origin = &bytes[300];
    const ImageStrides strides(-30, 200, 10, 0);
    const ImagePtr image = wrapBuffer(static_cast<void*>(origin), eIBT_UInt8, ImageSizes(5, 4, 3, 3), strides);
    EXPECT_FALSE(image->hasSlack());
    EXPECT_EQ(origin - 30 * 3 + 200 * 2 + 10, image->getLine(3, 2, 1));
    const BasePlanStorage plane = image->getView(PlanIndex(1, 1, 0), 2)->getPlanStorage(PlanIndex(1, 0, 0));
    EXPECT_EQ(origin - 30 * 3 + 200 * 2 + 10, plane.getLine(3));
    const ImagePlanGeometry& geometry = plane.getPlanGeometry();
    EXPECT_TRUE(geometry.getSizeX() == 5 && geometry.getSizeY() == 4 && geometry.getBufferType() == eIBT_UInt8);
    fillRandom(*image, 5);
    std::vector<unsigned char> dense(5 * 4 * 3 * 3);
    copyOut(*image, dense.data());
    EXPECT_EQ(sampleAt(*image, 2, 3, 0, 1), dense[5 * 4 * 3 + 3 * 5 + 2]);
    EXPECT_TRUE(sameSamples(*image, *wrapBuffer(static_cast<const void*>(dense.data()), eIBT_UInt8, {5, 4, 3, 3})));
    const ImagePtr own = createImage(eIBT_UInt8, ImageSizes(5, 4, 3, 3));
    copyIn(*own, dense.data());
    EXPECT_TRUE(sameSamples(*image, *own));
    copyIn(*own, origin, strides);
    EXPECT_TRUE(sameSamples(*image, *own));
    EXPECT_EQ(bytes.size() - dense.size(), static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), 7))
                                               - static_cast<std::size_t>(std::count(dense.begin(), dense.end(), 7)));
}

TEST(WrapBuffer, KeepsTheBufferAliveAsLongAsAnyView)
{
    boost::shared_ptr<std::vector<float>> owner = boost::make_shared<std::vector<float>>(6, 1.5f);
    const boost::weak_ptr<std::vector<float>> watch = owner;
    ImagePtr image = wrapBuffer(static_cast<void*>(owner->data()), eIBT_Real32, ImageSizes(2, 1, 3), ImageStrides(), owner);
    owner.reset();
    ImagePtr view = image->getView(PlanIndex(2), 1);
    image.reset();
    EXPECT_FALSE(watch.expired());
    EXPECT_EQ(1.5, sampleAt(*view, 1, 0));
    view.reset();
    EXPECT_TRUE(watch.expired());
}

TEST(WrapBuffer, RefusesInWords)
{
    alignas(8) char buffer[64];
    const auto wrap = [&](eImageBufferType type, const ImageSizes& sizes, const ImageStrides& strides, long from = 0) {
        return refusal([&] { wrapBuffer(static_cast<void*>(from < 0 ? nullptr : buffer + from), type, sizes, strides); });
    };
    EXPECT_EQ("Invalid image: the buffer is null", wrap(eIBT_UInt8, {2, 2}, {}, -1));
    EXPECT_EQ("Invalid image: the buffer is not aligned to its samples of 4 bytes", wrap(eIBT_Real32, {2, 2}, {}, 2));
    EXPECT_EQ("Invalid image: buffer type 0 is none of the types 1 to 11", wrap(eImageBufferType(), {2, 2}, {}));
    EXPECT_EQ("Invalid image: the stride of axis Y, 9 bytes, is no multiple of the sample's size, 2",
              wrap(eIBT_Int16, {2, 2}, ImageStrides(9)));
    const auto tooSmall = [](const std::string& axis, int bytes, int within) {
        return "Invalid image: the stride of axis " + axis + ", " + std::to_string(bytes)
               + " bytes, is too small: " + std::to_string(within) + " bytes lie within one step of it";
    };
    EXPECT_EQ(tooSmall("Y", -6, 8), wrap(eIBT_Int16, {4, 2}, ImageStrides(-6)));
    // Slices between the lines, one too few bytes apart.
    EXPECT_EQ(tooSmall("Y", 11, 12), wrap(eIBT_UInt8, {4, 2, 3}, ImageStrides(11, 4)));
    EXPECT_NO_THROW(wrapBuffer(static_cast<void*>(buffer), eIBT_UInt8, {4, 2, 3}, ImageStrides(12, 4)));
    // One stride given and another forgotten: the samples would lie on one another.
    EXPECT_EQ(tooSmall("C", 0, 4), wrap(eIBT_UInt8, {4, 2, 1, 2}, ImageStrides(4)));
    EXPECT_NO_THROW(wrapBuffer(static_cast<void*>(buffer), eIBT_UInt8, {4, 2, 1, 1}, ImageStrides(4)));
    const long far = std::numeric_limits<long>::max() - 7;
    for (const long stride : {far, -far, std::numeric_limits<long>::min()})
        EXPECT_EQ("Invalid image: the number of bytes of size 8 x 3 x 1 x 1 x 1 overflows",
                  wrap(eIBT_UInt8, ImageSizes(8, 3), ImageStrides(stride)));
    EXPECT_EQ("Invalid image: the buffer is null",
              refusal([] { copyIn(*createImage(eIBT_UInt8, ImageSizes(1, 1)), nullptr); }));
}

TEST(RingBuffer, HasAlignedAndZeroedLinesWithRoomForAWholeBlock)
{
    FragHybridBuffer ring;
    ring.init(eDT_Int16, 10, 3);
    for (unsigned long i = 0; i < 3; ++i) {
        short* const line = static_cast<short*>(ring.getDataPtr(i));
        EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(line) % 64);
        EXPECT_EQ(74, std::count(line, line + 74, 0)) << "a line and 64 values past its end";
        std::fill_n(line, 74, static_cast<short>(1));
    }
}

TEST(OwnBuffer, KeepsItsMemoryForSmallerSizes)
{
    TypedOwnBuffer buffer;
    buffer.init(100, eDT_Real64);
    void* const first = buffer.getDataPtr();
    for (const unsigned long size : {200, 0}) {
        buffer.init(size, eDT_Real32);
        EXPECT_EQ(first, buffer.getDataPtr());
    }
}

TEST(Borders, ReadTheNearestValueThatTheTypeHas)
{
    const auto border = [](auto sample, const BorderPolicy& policy) {
        typedef decltype(sample) T;
        T values[3] = {1, 1, 1};
        fillBorder(policy, DataTypeOf<T>::value, values, 2);
        EXPECT_EQ(values[0], values[1]);
        EXPECT_EQ(1, values[2]);
        return values[0];
    };
    const double infinity = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(0, border(0, Border2dPolicy()));
    EXPECT_EQ(0, border(static_cast<unsigned char>(0), valuedBorder2d(-3)));
    EXPECT_EQ(127, border(static_cast<signed char>(0), valuedBorder3d(200)));
    EXPECT_EQ(4294967295u, border(0u, valuedBorder2d(infinity)));
    EXPECT_EQ(-2147483647 - 1, border(0, valuedBorder2d(nan)));
    EXPECT_EQ(-32768, border(static_cast<short>(0), valuedMinBorder3d()));
    EXPECT_EQ(65535, border(static_cast<unsigned short>(0), valuedMaxBorder2d()));
    EXPECT_EQ(-std::numeric_limits<float>::max(), border(0.0f, valuedMinBorder2d()));
    EXPECT_EQ(std::numeric_limits<float>::max(), border(0.0f, valuedMaxBorder3d()));
    EXPECT_EQ(0.5f, border(0.0f, valuedBorder2d(0.5)));
}

TEST(StripExtractor, ShowsTheLinesOfThePlaneAskedAndRefusesWhatLiesOutside)
{
    const ImagePtr image = randomImage(eIBT_Int16, ImageSizes(5, 6, 2, 2, 2));
    boost::shared_ptr<OutputImageYStrip2d> strip;
    const auto text = [&](unsigned long z, unsigned long c, unsigned long t, unsigned long offset, unsigned long size,
                          const ImagePtr& from) {
        return ImageStripExtractor::extractYStrip2d<OutputImageYStrip2d>(z, c, t, offset, size, eSAT_View, eSPD_Forward,
                                                                         from, strip)
            .getMessage();
    };
    EXPECT_EQ("", text(1, 0, 1, 2, 4, image));
    strip->initBuffer();
    EXPECT_EQ("5 x 6 from 2", std::to_string(strip->getSizeX()) + " x " + std::to_string(strip->getImageSizeY()) + " from "
                                  + std::to_string(strip->getStripStartOffsetY()));
    ASSERT_EQ(4u, strip->accessBuffer().getNbFragments());
    EXPECT_EQ(static_cast<const short*>(image->getLine(4, 1, 0, 1)) + 3, strip->accessBuffer().getDataPtr(2, 3));

    strip.reset();
    EXPECT_EQ("A strip of 2 lines from line 5 lies outside an image of size 5 x 6 x 2 x 2 x 2", text(0, 0, 0, 5, 2, image));
    EXPECT_EQ("A strip of 0 lines from line 0 lies outside an image of size 5 x 6 x 2 x 2 x 2", text(0, 0, 0, 0, 0, image));
    EXPECT_NE("", text(0, 0, 0, 2, ~0ul, image));
    EXPECT_EQ("A strip can't be cut from plane (2, 0, 0) of an image of size 5 x 6 x 2 x 2 x 2", text(2, 0, 0, 0, 1, image));
    EXPECT_NE("", text(0, 2, 0, 0, 1, image));
    EXPECT_NE("", text(0, 0, 2, 0, 1, image));
    EXPECT_EQ("A strip can't be cut from a null image", text(0, 0, 0, 0, 1, nullptr));
    EXPECT_FALSE(strip);
}

}  // namespace
}  // namespace orvik::test
