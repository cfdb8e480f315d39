#include "frame/imaproc/StripParsers.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace orvik;
using namespace orvik::imaproc;

namespace {

short sampleAt(long x, long y, long z)
{
    return static_cast<short>(1 + x + 10 * y + 100 * z);
}

long clamped(long i, long size)
{
    return std::max(0l, std::min(i, size - 1));
}

boost::shared_ptr<const image::BaseImage> numberedImage(long sizeX, long sizeY, long sizeZ)
{
    const boost::shared_ptr<image::BaseImage> image =
        image::createImage(image::eIBT_Int16, image::ImageSizes(sizeX, sizeY, sizeZ));
    for (long z = 0; z < sizeZ; ++z)
        for (long y = 0; y < sizeY; ++y)
            for (long x = 0; x < sizeX; ++x)
                static_cast<short*>(image->accessLine(y, z))[x] = sampleAt(x, y, z);
    return image;
}

// Margins that differ on every side and exceed the image.
const image::StripMargins g_margins = {2, 9, 1, 6, 3, 4};
const long g_sizeX = 5, g_sizeY = 4, g_sizeZ = 3;

/// What a kernel may read of a line, checked sample by sample.
void expectLine(const short* line, long sizeX, long y, long z, short (*expected)(long x, long y, long z))
{
    const long padded = 64;
    for (long i = 0; i < 2 + sizeX + 9; ++i)
        ASSERT_EQ(line[i], expected(i - 2, y, z)) << "x " << i - 2 << ", y " << y << ", z " << z;
    for (long i = 2 + sizeX; i < 2 + padded + 9 + 1; ++i)
        ASSERT_EQ(line[i], expected(i - 2, y, z)) << "padding at " << i - 2 << ", y " << y << ", z " << z;
}

short nearestSample(long x, long y, long z)
{
    return sampleAt(clamped(x, g_sizeX), clamped(y, g_sizeY), clamped(z, g_sizeZ));
}

short sampleOrSeven(long x, long y, long z)
{
    const bool inside = x >= 0 && x < g_sizeX && y >= 0 && y < g_sizeY && z >= 0 && z < g_sizeZ;
    return inside ? sampleAt(x, y, z) : 7;
}

void parsePlane(const image::Border2dPolicy& border, short (*expected)(long, long, long))
{
    const auto image = numberedImage(g_sizeX, g_sizeY, 1);
    LineYStrip2dWithKernelParser<short, BaseInputYStrip2dWithKernelAttribute> parser;
    parser.init(boost::make_shared<image::InputImageYStrip2dWithKernel>(image, PlanIndex(), 1, 3, g_margins));
    parser.setBorder2dPolicy(border);
    parser.start(64);
    for (long line = 0; line < 3; ++line) {
        parser.beginLine(line);
        for (long row = 0; row < 1 + 1 + 6; ++row)
            expectLine(parser.accessBuffer(row), g_sizeX, 1 + line + row - 1, 0, expected);
    }
}

void parseVolume(const image::Border3dPolicy& border, short (*expected)(long, long, long))
{
    const auto image = numberedImage(g_sizeX, g_sizeY, g_sizeZ);
    LineZStrip3dWithKernelParser<short, BaseInputZStrip3dWithKernelAttribute> parser;
    parser.init(boost::make_shared<image::InputImageZStrip3dWithKernel>(image, PlanIndex(), 1, 2, g_margins));
    parser.setBorder3dPolicy(border);
    parser.start(64);
    for (long line = 0; line < 2 * g_sizeY; ++line) {
        parser.beginLine(line);
        for (long slice = 0; slice < 3 + 1 + 4; ++slice)
            for (long row = 0; row < 1 + 1 + 6; ++row)
                expectLine(parser.accessBuffer(slice, row), g_sizeX, line % g_sizeY + row - 1,
                           1 + line / g_sizeY + slice - 3, expected);
    }
}

TEST(Border, RepeatsTheNearestSampleOfAPlane)
{
    parsePlane(image::nearestBorder2d(), &nearestSample);
}

TEST(Border, RepeatsTheNearestSampleOfAVolume)
{
    parseVolume(image::nearestBorder3d(), &nearestSample);
}

TEST(Border, ReadsAsAConstantAroundPlanesAndVolumes)
{
    parsePlane(image::valuedBorder2d(7), &sampleOrSeven);
    parseVolume(image::valuedBorder3d(7), &sampleOrSeven);
}

}  // namespace
