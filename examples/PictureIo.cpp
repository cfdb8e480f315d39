#include "PictureCodec.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <filesystem>
#include <limits>
#include <new>
#include <string_view>
#include <system_error>

namespace orvik::examples {
namespace {

namespace fs = std::filesystem;
using namespace codec;

double sampleAsNumber(SampleType sampleType, const unsigned char* at)
{
    switch (sampleType) {
    case SampleType::UInt8: return *at;
    case SampleType::UInt16: return loadSample<std::uint16_t>(at);
    case SampleType::Int16: return loadSample<std::int16_t>(at);
    case SampleType::Real32: break;
    }
    return loadSample<float>(at);
}

enum class FileFormat
{
    Unknown,
    Png,
    Jpeg,
    Tiff
};

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
    return FileFormat::Unknown;
}

Picture readAnyFormat(const std::string& path)
{
    // Asked before opening, because opening a pipe would wait for its writer.
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::none || status.type() == fs::file_type::not_found)
        throw Refusal(error.message());
    if (!fs::is_regular_file(status))
        throw Refusal(fs::is_directory(status) ? systemReason(EISDIR) : "not a regular file");
    const FileHandle file(std::fopen(path.c_str(), "rb"));
    if (!file)
        throw Refusal(systemReason(errno));
    const std::uintmax_t fileBytes = fs::file_size(path, error);
    if (error)
        throw Refusal(error.message());
    switch (recognise(file.get())) {
    case FileFormat::Png: return readPng(file.get(), fileBytes);
    case FileFormat::Jpeg: return readJpeg(file.get(), fileBytes);
    case FileFormat::Tiff: return readTiff(path, fileBytes);
    case FileFormat::Unknown: break;
    }
    throw Refusal("neither a PNG, a JPEG nor a TIFF file");
}

}  // namespace

std::size_t bytesPerSample(SampleType sampleType)
{
    switch (sampleType) {
    case SampleType::UInt8: return 1;
    case SampleType::UInt16:
    case SampleType::Int16: return 2;
    case SampleType::Real32: break;
    }
    return 4;
}

double Picture::valueAt(unsigned long x, unsigned long y) const
{
    if (x >= sizeX || y >= sizeY)
        throw std::out_of_range("no sample at " + std::to_string(x) + ", " + std::to_string(y));
    return sampleAsNumber(sampleType, samples.data() + y * rowBytes() + x * bytesPerSample(sampleType));
}

Picture readPicture(const std::string& path)
{
    try {
        return readAnyFormat(path);
    } catch (const Refusal& refusal) {
        throw PictureError("cannot read '" + path + "': " + refusal.what());
    } catch (const std::bad_alloc&) {
        throw PictureError("cannot read '" + path + "': not enough memory for the picture");
    }
}

std::vector<unsigned char> toDisplay8(const Picture& picture)
{
    const std::size_t bytes = bytesPerSample(picture.sampleType);
    const std::size_t count = picture.samples.size() / bytes;
    if (picture.samples.size() != picture.sizeX * picture.sizeY * bytes) {
        throw std::invalid_argument("a picture of " + sizeText(picture.sizeX, picture.sizeY) + " with "
                                    + std::to_string(picture.samples.size()) + " bytes");
    }
    if (picture.sampleType == SampleType::UInt8)
        return picture.samples;

    const auto valueOf = [&](std::size_t i) {
        return sampleAsNumber(picture.sampleType, picture.samples.data() + i * bytes);
    };
    double smallest = std::numeric_limits<double>::infinity();
    double largest = -smallest;
    for (std::size_t i = 0; i < count; ++i) {
        const double value = valueOf(i);
        if (std::isfinite(value)) {
            smallest = std::min(smallest, value);
            largest = std::max(largest, value);
        }
    }

    std::vector<unsigned char> display(count, 0);
    if (smallest < largest) {
        for (std::size_t i = 0; i < count; ++i) {
            const double value = valueOf(i);
            if (!std::isnan(value)) {
                const double share = (std::clamp(value, smallest, largest) - smallest) / (largest - smallest);
                display[i] = static_cast<unsigned char>(std::lround(255.0 * share));
            }
        }
    }
    return display;
}

}  // namespace orvik::examples
