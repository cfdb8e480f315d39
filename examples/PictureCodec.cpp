#include "PictureCodec.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <system_error>
#include <type_traits>

namespace orvik::examples::codec {
namespace {

template<typename Sample>
Sample luma(Sample red, Sample green, Sample blue)
{
    if constexpr (std::is_floating_point_v<Sample>) {
        return static_cast<Sample>(0.299 * red + 0.587 * green + 0.114 * blue);
    } else {
        // The bias keeps the sum positive, so that the division rounds negative samples to nearest as well.
        constexpr std::int32_t bias = std::is_signed_v<Sample> ? 32768 : 0;
        const std::int32_t sum = 299 * red + 587 * green + 114 * blue + 1000 * bias + 500;
        return static_cast<Sample>(sum / 1000 - bias);
    }
}

template<typename Sample>
Sample inverted(Sample sample)
{
    if constexpr (std::is_floating_point_v<Sample>)
        return -sample;

    else
        return static_cast<Sample>(~sample);
}

template<typename Sample>
void convertSamples(const SourceRow& row, std::size_t count, bool invert, unsigned char* out)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = i * row.step;
        Sample sample = loadSample<Sample>(row.red + at);
        if (row.green != nullptr)
            sample = luma(sample, loadSample<Sample>(row.green + at), loadSample<Sample>(row.blue + at));
        if (invert)
            sample = inverted(sample);
        std::memcpy(out + i * sizeof sample, &sample, sizeof sample);
    }
}

}  // namespace

std::string systemReason(int errorNumber)
{
    return std::generic_category().message(errorNumber);
}

std::string sizeText(std::uint64_t sizeX, std::uint64_t sizeY)
{
    return std::to_string(sizeX) + " x " + std::to_string(sizeY);
}

std::size_t checkedBytes(std::uint64_t sizeX, std::uint64_t sizeY, std::uint64_t bytesPerPixel)
{
    if (sizeX == 0 || sizeY == 0)
        throw Refusal("the picture is empty (" + sizeText(sizeX, sizeY) + ")");
    // Divided rather than multiplied: the product of sizes from a damaged header may not fit 64 bits.
    if (sizeX > maxPictureBytes / bytesPerPixel / sizeY)
        throw Refusal("the picture is too large (" + sizeText(sizeX, sizeY) + ")");
    return sizeX * sizeY * bytesPerPixel;
}

void requireRoomFor(std::uint64_t leastBytes, std::uint64_t fileBytes, std::uint64_t sizeX, std::uint64_t sizeY)
{
    if (fileBytes < leastBytes)
        throw Refusal("the file is too short for a picture of " + sizeText(sizeX, sizeY));
}

std::uint64_t availableMemory()
{
    std::uint64_t available = 0;
    std::ifstream machine("/proc/meminfo");
    std::string name, unit;
    for (std::uint64_t kibibytes = 0; machine >> name >> kibibytes && std::getline(machine, unit);)
        if (name == "MemAvailable:" || name == "SwapFree:")
            available += 1024 * kibibytes;
    if (available == 0)
        available = std::numeric_limits<std::uint64_t>::max();
    // Not a number where there is no limit.
    std::uint64_t limit = 0;
    if (std::ifstream("/sys/fs/cgroup/memory.max") >> limit)
        available = std::min(available, limit);
    return available;
}

void requireMemoryFor(std::uint64_t bytes, std::uint64_t availableBytes, std::uint64_t sizeX, std::uint64_t sizeY)
{
    if (bytes > availableBytes) {
        throw Refusal("a picture of " + sizeText(sizeX, sizeY) + " takes " + std::to_string(bytes) + " bytes of memory, and "
                      + std::to_string(availableBytes) + " are there");
    }
}

RawBytes allocateRaw(std::size_t bytes)
{
    return RawBytes(new unsigned char[bytes]);
}

std::uint16_t luma16(std::uint16_t red, std::uint16_t green, std::uint16_t blue)
{
    return luma(red, green, blue);
}

void convertRow(SampleType sampleType, const SourceRow& row, std::size_t count, bool invert, unsigned char* out)
{
    switch (sampleType) {
    case SampleType::UInt8: return convertSamples<std::uint8_t>(row, count, invert, out);
    case SampleType::UInt16: return convertSamples<std::uint16_t>(row, count, invert, out);
    case SampleType::Int16: return convertSamples<std::int16_t>(row, count, invert, out);
    case SampleType::Real32: return convertSamples<float>(row, count, invert, out);
    }
}

}  // namespace orvik::examples::codec
