#include "Volumes.h"

#include "VolumeIo.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace orvik::bench {

namespace {

/// A place between two samples of an axis.
struct Between
{
    unsigned long before;
    double share;  // of the one after it
    Between(unsigned long i, unsigned long size, unsigned long sizeOfFile)
    {
        const double at = static_cast<double>(i) * static_cast<double>(sizeOfFile - 1) / static_cast<double>(size);
        before = static_cast<unsigned long>(at);
        share = at - static_cast<double>(before);
    }
    double of(double a, double b) const { return a + share * (b - a); }
};

}  // namespace

ImagePtr enlargedHead(unsigned long size, image::eImageBufferType type)
{
    const char* const chosen = std::getenv("ORVIK_VOLUME");
    examples::Volume volume;
    try {
        volume = examples::readVolume(chosen ? chosen : std::string(ORVIK_DEMO_PICTURES) + "/ch2.nii.gz");
    } catch (const examples::PictureError& e) {
        std::fprintf(stderr, "%s\nRun scripts/demo.sh once, or name a volume of one byte a voxel in ORVIK_VOLUME.\n",
                     e.what());
        std::exit(1);
    }
    if (volume.sampleType != examples::SampleType::UInt8 || volume.sizeX < 2 || volume.sizeY < 2 || volume.sizeZ < 2) {
        std::fprintf(stderr, "ORVIK_VOLUME: a volume of one byte a voxel is expected\n");
        std::exit(1);
    }
    const ImagePtr image = image::createImage(type, {size, size, size});
    image::withSampleType(image::toDataType(type), [&](auto zero) {
        typedef decltype(zero) Sample;
        for (unsigned long z = 0; z < size; ++z)
            for (unsigned long y = 0; y < size; ++y) {
                const Between atZ(z, size, volume.sizeZ), atY(y, size, volume.sizeY);
                Sample* const line = static_cast<Sample*>(image->accessLine(y, z));
                for (unsigned long x = 0; x < size; ++x) {
                    const Between atX(x, size, volume.sizeX);
                    const unsigned char* const at =
                        &volume.samples[(atZ.before * volume.sizeY + atY.before) * volume.sizeX + atX.before];
                    const auto alongX = [&](const unsigned char* row) { return atX.of(row[0], row[1]); };
                    const auto alongY = [&](const unsigned char* slice) {
                        return atY.of(alongX(slice), alongX(slice + volume.sizeX));
                    };
                    line[x] = static_cast<Sample>(atZ.of(alongY(at), alongY(at + volume.sizeX * volume.sizeY)));
                }
            }
    });
    return image;
}

}  // namespace orvik::bench
