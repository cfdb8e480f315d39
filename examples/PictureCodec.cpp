#include "PictureCodec.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string_view>
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
        using Sum = std::conditional_t<sizeof(Sample) < 4, std::int32_t, std::int64_t>;
        // The bias keeps the sum positive, so that the division rounds negative samples to nearest as well.
        constexpr Sum bias = -Sum(std::numeric_limits<Sample>::min());
        const Sum sum = 299 * Sum(red) + 587 * Sum(green) + 114 * Sum(blue) + 1000 * bias + 500;
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

FileFormat recognise(std::FILE* file)
{
    std::array<char, 8> bytes = {};
    const std::string_view head(bytes.data(), std::fread(bytes.data(), 1, bytes.size(), file));
    if (head.empty())
        throw Refusal(std::ferror(file) ? systemReason(errno) : "the file is empty");
    std::rewind(file);
    using namespace std::string_view_literals;
    const auto startsWith = [&](std::string_view magic) { return head.substr(0, magic.size()) == magic; };
    if (startsWith("\x89PNG\r\n\x1a\n"sv))
        return FileFormat::Png;
    if (startsWith("\xff\xd8\xff"sv))
        return FileFormat::Jpeg;
    // Little and big endian; the second of each pair has 64 bit offsets.
    if (startsWith("II*\0"sv) || startsWith("II+\0"sv) || startsWith("MM\0*"sv) || startsWith("MM\0+"sv))
        return FileFormat::Tiff;
    // The length of the header, 348 bytes or 540, in either byte order.
    if (startsWith("\x5c\x01\0\0"sv) || startsWith("\x1c\x02\0\0"sv) || startsWith("\0\0\x01\x5c"sv)
        || startsWith("\0\0\x02\x1c"sv))
        return FileFormat::Nifti;
    if (startsWith("\x1f\x8b"sv))
        return FileFormat::Gzip;
    return FileFormat::Unknown;
}

}  // namespace

OpenFile openFile(const std::string& path)
{
    namespace fs = std::filesystem;
    // Asked before opening, because opening a pipe would wait for its writer.
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::none || status.type() == fs::file_type::not_found)
        throw Refusal(error.message());
    if (!fs::is_regular_file(status))
        throw Refusal(fs::is_directory(status) ? systemReason(EISDIR) : "not a regular file");
    OpenFile file = {FileHandle(std::fopen(path.c_str(), "rb")), 0, FileFormat::Unknown};
    if (!file.handle)
        throw Refusal(systemReason(errno));
    file.bytes = fs::file_size(path, error);
    if (error)
        throw Refusal(error.message());
    file.format = recognise(file.handle.get());
    return file;
}

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

void requireRoomFor(std::uint64_t leastBytes, std::uint64_t fileBytes, const std::string& what)
{
    if (fileBytes < leastBytes)
        throw Refusal("the file is too short for a " + what);
}

void requireRoomFor(std::uint64_t leastBytes, std::uint64_t fileBytes, std::uint64_t sizeX, std::uint64_t sizeY)
{
    requireRoomFor(leastBytes, fileBytes, "picture of " + sizeText(sizeX, sizeY));
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

void requireMemoryFor(std::uint64_t bytes, std::uint64_t availableBytes, const std::string& what)
{
    if (bytes > availableBytes) {
        throw Refusal("a " + what + " takes " + std::to_string(bytes) + " bytes of memory, and "
                      + std::to_string(availableBytes) + " are there");
    }
}

void requireMemoryFor(std::uint64_t bytes, std::uint64_t availableBytes, std::uint64_t sizeX, std::uint64_t sizeY)
{
    requireMemoryFor(bytes, availableBytes, "picture of " + sizeText(sizeX, sizeY));
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
    withSampleType(sampleType, [&](auto sample) { convertSamples<decltype(sample)>(row, count, invert, out); });
}

}  // namespace orvik::examples::codec
