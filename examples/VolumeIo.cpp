#include "OutputFiles.h"
#include "VolumeCodec.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <new>
#include <string_view>
#include <utility>

namespace orvik::examples {
namespace {

using namespace codec;

Volume readAnyFormat(const std::string& path)
{
    const OpenFile file = openFile(path);
    switch (file.format) {
    case FileFormat::Png: return toVolume(readPng(file.handle.get(), file.bytes));
    case FileFormat::Jpeg: return toVolume(readJpeg(file.handle.get(), file.bytes));
    case FileFormat::Tiff: return readTiffVolume(path, file.bytes);
    case FileFormat::Nifti:
    case FileFormat::Gzip: return readNifti(file.handle.get(), file.bytes);
    case FileFormat::Unknown: break;
    }
    throw Refusal("neither a NIfTI, a TIFF, a PNG nor a JPEG file");
}

Volume readRaw(const std::string& path, const RawLayout& layout)
{
    const OpenFile file = openFile(path);
    Volume volume;
    volume.sizeX = layout.sizeX;
    volume.sizeY = layout.sizeY;
    volume.sizeZ = layout.sizeZ;
    volume.sampleType = layout.sampleType;
    const std::size_t bytes = checkedBytes(volume);
    if (bytes != file.bytes) {
        throw Refusal("a raw volume of " + sizeText(volume) + ", " + nameOf(volume.sampleType) + ", has "
                      + std::to_string(bytes) + " bytes, but the file has " + std::to_string(file.bytes));
    }
    requireMemoryFor(bytes, availableMemory(), "volume of " + sizeText(volume));
    volume.samples.resize(bytes);
    if (std::fread(volume.samples.data(), 1, bytes, file.handle.get()) != bytes)
        throw Refusal(std::ferror(file.handle.get()) ? systemReason(errno) : "the file ends too early");
    if (layout.isBigEndian) {
        const std::size_t each = bytesPerSample(volume.sampleType);
        swapSamples(volume.samples.data(), bytes / each, each);
    }
    return volume;
}

template<class Read>
Volume naming(const std::string& path, Read&& read)
{
    try {
        return read();
    } catch (const Refusal& refusal) {
        throw PictureError("cannot read '" + path + "': " + refusal.what());
    } catch (const std::bad_alloc&) {
        throw PictureError("cannot read '" + path + "': not enough memory for the volume");
    }
}

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

void VolumeSpace::setSpacing(double x, double y, double z)
{
    const std::array<double, 3> distances = {x, y, z};
    const auto isDistance = [](double distance) { return std::isfinite(distance) && distance > 0; };
    if (std::all_of(distances.begin(), distances.end(), isDistance))
        spacing = distances;
}

std::string sizeText(const Volume& volume)
{
    return std::to_string(volume.sizeX) + " x " + std::to_string(volume.sizeY) + " x " + std::to_string(volume.sizeZ);
}

Volume toVolume(Picture picture)
{
    return {picture.sizeX, picture.sizeY, 1, picture.sampleType, std::move(picture.samples), {}};
}

Picture toPicture(Volume volume)
{
    if (volume.sizeZ != 1)
        throw std::invalid_argument("a volume of " + sizeText(volume) + " is no picture");
    return {volume.sizeX, volume.sizeY, volume.sampleType, std::move(volume.samples)};
}

Volume readVolume(const std::string& path)
{
    return naming(path, [&] { return readAnyFormat(path); });
}

Volume readRawVolume(const std::string& path, const RawLayout& layout)
{
    return naming(path, [&] { return readRaw(path, layout); });
}

void addVolume(OutputFiles& files, const std::string& path, const Volume& volume)
{
    files.add(path, [&](std::FILE* file) {
        if (volume.samples.size() != checkedBytes(volume)) {
            throw Refusal("a volume of " + sizeText(volume) + " with " + std::to_string(volume.samples.size())
                          + " bytes of samples");
        }
        if (endsWith(path, ".tif") || endsWith(path, ".tiff"))
            writeTiffVolume(file, volume);
        else if (endsWith(path, ".nii") || endsWith(path, ".nii.gz"))
            writeNifti(file, volume, endsWith(path, ".gz"));
        else
            throw Refusal("volumes are written to files whose names end in .tif, .tiff, .nii or .nii.gz");
    });
}

namespace codec {

std::size_t checkedBytes(const Volume& volume)
{
    constexpr std::uint64_t most = std::uint64_t(1) << 44;
    if (volume.sizeX == 0 || volume.sizeY == 0 || volume.sizeZ == 0)
        throw Refusal("the volume is empty (" + sizeText(volume) + ")");
    // Divided rather than multiplied: the product of sizes from a damaged header may not fit 64 bits.
    const std::size_t each = bytesPerSample(volume.sampleType);
    if (volume.sizeX > most / each / volume.sizeY / volume.sizeZ)
        throw Refusal("the volume is too large (" + sizeText(volume) + ")");
    return volume.sizeX * volume.sizeY * volume.sizeZ * each;
}

void swapSamples(unsigned char* samples, std::size_t count, std::size_t bytesPerSample)
{
    for (unsigned char* sample = samples; sample != samples + count * bytesPerSample; sample += bytesPerSample)
        std::reverse(sample, sample + bytesPerSample);
}

}  // namespace codec

}  // namespace orvik::examples
