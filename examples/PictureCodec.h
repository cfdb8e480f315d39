#pragma once

// What the codecs share among themselves; programs include PictureIo.h.

#include "PictureIo.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

namespace orvik::examples::codec {

/// What a file is, by its first bytes.
enum class FileFormat
{
    Unknown,
    Png,
    Jpeg,
    Tiff,
    Nifti,
    Gzip
};

struct FileCloser
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

/// A regular file, open for reading from its beginning.
struct OpenFile
{
    FileHandle handle;
    std::uint64_t bytes;
    FileFormat format;
};

/// Refuses what is missing, empty or no regular file.
OpenFile openFile(const std::string& path);

/// PNG from an open file of that many bytes. Like the others, throws Refusal.
Picture readPng(std::FILE* file, std::uint64_t fileBytes);
Picture readJpeg(std::FILE* file, std::uint64_t fileBytes);
Picture readTiff(const std::string& path, std::uint64_t fileBytes);

constexpr std::uint64_t maxPictureBytes = std::uint64_t(1) << 34;

/// Why a file is refused. readPicture() and OutputFiles add the file's name to it.
class Refusal : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

std::string systemReason(int errorNumber);

/// The first message of a codec. Later ones only tell of the consequences. The text has a fixed size because it is
/// filled inside the codec, where neither an exception nor a leak through longjmp() is allowed.
class CodecMessage
{
public:
    void keep(const char* format, va_list arguments)
    {
        if (isEmpty())
            std::vsnprintf(m_text, sizeof m_text, format, arguments);
    }

    void keep(const char* text)
    {
        if (isEmpty())
            std::snprintf(m_text, sizeof m_text, "%s", text);
    }

    bool isEmpty() const { return m_text[0] == '\0'; }

    const char* text() const { return m_text; }

    [[noreturn]] void refuse() const { throw Refusal(isEmpty() ? "the codec gives no reason" : m_text); }

private:
    char m_text[512] = {};
};

std::string sizeText(std::uint64_t sizeX, std::uint64_t sizeY);

/// Bytes of a picture; refuses what is empty or above maxPictureBytes.
std::size_t checkedBytes(std::uint64_t sizeX, std::uint64_t sizeY, std::uint64_t bytesPerPixel);

/// Refuses what no file this short can hold before memory is filled for it: "picture of 3 x 2".
void requireRoomFor(std::uint64_t leastBytes, std::uint64_t fileBytes, const std::string& what);
void requireRoomFor(std::uint64_t leastBytes, std::uint64_t fileBytes, std::uint64_t sizeX, std::uint64_t sizeY);

/// Bytes that the machine, or the container that the process is in, has to give; the greatest number where it does not tell.
std::uint64_t availableMemory();

/// Refuses what takes more memory than there is: systems grant it and end the program when it is filled.
void requireMemoryFor(std::uint64_t bytes, std::uint64_t availableBytes, const std::string& what);
void requireMemoryFor(std::uint64_t bytes, std::uint64_t availableBytes, std::uint64_t sizeX, std::uint64_t sizeY);

/// Memory for a codec to fill. Not zeroed: pages that a truncated file never reaches stay untouched.
using RawBytes = std::unique_ptr<unsigned char[]>;

RawBytes allocateRaw(std::size_t bytes);

template<typename Sample>
Sample loadSample(const unsigned char* from)
{
    Sample sample;
    std::memcpy(&sample, from, sizeof sample);
    return sample;
}

/// What `work` makes of a sample of that type, whose value means nothing.
template<class Work>
auto withSampleType(SampleType sampleType, Work&& work)
{
    switch (sampleType) {
    case SampleType::UInt8: return work(std::uint8_t());
    case SampleType::Int8: return work(std::int8_t());
    case SampleType::UInt16: return work(std::uint16_t());
    case SampleType::Int16: return work(std::int16_t());
    case SampleType::UInt32: return work(std::uint32_t());
    case SampleType::Int32: return work(std::int32_t());
    case SampleType::Real32: break;
    }
    return work(float());
}

/// How samples are shown in 8 bit: as toDisplay8() says, by all samples given.
class GreyScale
{
public:
    GreyScale(SampleType sampleType, const unsigned char* samples, std::size_t count);

    unsigned char levelOf(double value) const;

private:
    bool m_isStretched;
    double m_smallest, m_largest;
};

/// Grey of a colour, rounded to nearest.
std::uint16_t luma16(std::uint16_t red, std::uint16_t green, std::uint16_t blue);

/// One row as the codec gives it: three channels, or grey in `red` alone. `step` is in bytes.
struct SourceRow
{
    const unsigned char* red;
    const unsigned char* green;
    const unsigned char* blue;
    std::size_t step;
};

void convertRow(SampleType sampleType, const SourceRow& row, std::size_t count, bool invert, unsigned char* out);

}  // namespace orvik::examples::codec
