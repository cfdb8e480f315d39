#include "OutputFiles.h"
#include "PictureCodec.h"

#include <cerrno>
#include <csetjmp>

#include <png.h>

namespace orvik::examples {
namespace {

using namespace codec;

bool isLittleEndian()
{
    const std::uint16_t one = 1;
    unsigned char first;
    std::memcpy(&first, &one, 1);
    return first == 1;
}

void onPngError(png_structp png, png_const_charp text)
{
    static_cast<CodecMessage*>(png_get_error_ptr(png))->keep(text);
    png_longjmp(png, 1);
}

void onPngWarning(png_structp, png_const_charp)
{
    // Warnings of this codec concern text, profiles and the like, never the samples.
}

void readPngBytes(png_structp png, png_bytep bytes, png_size_t count)
{
    auto* file = static_cast<std::FILE*>(png_get_io_ptr(png));
    if (std::fread(bytes, 1, count, file) != count)
        png_error(png, std::ferror(file) ? "the file cannot be read to its end" : "the file ends too early");
}

/// Everything with a destructor is a member, so that longjmp() out of the codec skips no destructor.
class PngReader
{
public:
    PngReader()
        : m_png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &m_message, onPngError, onPngWarning)),
          m_info(m_png != nullptr ? png_create_info_struct(m_png) : nullptr)
    {
    }

    ~PngReader() { png_destroy_read_struct(&m_png, &m_info, nullptr); }

    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    Picture read(std::FILE* file, std::uint64_t fileBytes)
    {
        if (m_info == nullptr || !decode(file, fileBytes))
            m_message.refuse();
        Picture picture;
        picture.sizeX = m_sizeX;
        picture.sizeY = m_sizeY;
        picture.sampleType = m_bitDepth == 16 ? SampleType::UInt16 : SampleType::UInt8;
        const std::size_t bytes = bytesPerSample(picture.sampleType);
        picture.samples.resize(checkedBytes(m_sizeX, m_sizeY, bytes));
        for (std::size_t y = 0; y < m_sizeY; ++y) {
            const unsigned char* red = m_pixels.get() + y * m_rowBytes;
            const bool isColour = m_channels == 3;
            const SourceRow row = {red, isColour ? red + bytes : nullptr, isColour ? red + 2 * bytes : nullptr,
                                   m_channels * bytes};
            convertRow(picture.sampleType, row, m_sizeX, false, picture.samples.data() + y * picture.rowBytes());
        }
        return picture;
    }

private:
    bool decode(std::FILE* file, std::uint64_t fileBytes)
    {
        if (setjmp(png_jmpbuf(m_png)) != 0)
            return false;
        png_set_read_fn(m_png, file, readPngBytes);
        png_read_info(m_png, m_info);
        m_sizeX = png_get_image_width(m_png, m_info);
        m_sizeY = png_get_image_height(m_png, m_info);
        checkedBytes(m_sizeX, m_sizeY, 1);
        // 1032 is the most that deflate ever gains: 258 bytes from two bits.
        requireRoomFor(png_get_rowbytes(m_png, m_info) * m_sizeY / 1032, fileBytes, m_sizeX, m_sizeY);

        if (png_get_color_type(m_png, m_info) == PNG_COLOR_TYPE_PALETTE)
            png_set_palette_to_rgb(m_png);

        else if (png_get_bit_depth(m_png, m_info) < 8)
            png_set_expand_gray_1_2_4_to_8(m_png);
        if (isLittleEndian())
            png_set_swap(m_png);
        png_set_strip_alpha(m_png);
        const int passes = png_set_interlace_handling(m_png);
        png_read_update_info(m_png, m_info);
        m_bitDepth = png_get_bit_depth(m_png, m_info);
        m_channels = png_get_channels(m_png, m_info);
        m_rowBytes = png_get_rowbytes(m_png, m_info);
        const std::size_t pixelBytes = checkedBytes(m_sizeX, m_sizeY, m_channels * m_bitDepth / 8);
        requireMemoryFor(pixelBytes + pixelBytes / m_channels, availableMemory(), m_sizeX, m_sizeY);
        m_pixels = allocateRaw(pixelBytes);
        for (int pass = 0; pass < passes; ++pass)
            for (std::size_t y = 0; y < m_sizeY; ++y)
                png_read_row(m_png, m_pixels.get() + y * m_rowBytes, nullptr);
        // The checksum of the last samples and the end mark come after them.
        png_read_end(m_png, nullptr);
        return true;
    }

    CodecMessage m_message;
    png_structp m_png;
    png_infop m_info;
    RawBytes m_pixels;
    std::size_t m_sizeX = 0;
    std::size_t m_sizeY = 0;
    std::size_t m_rowBytes = 0;
    std::size_t m_channels = 0;
    int m_bitDepth = 0;
};

void writePngBytes(png_structp png, png_bytep bytes, png_size_t count)
{
    if (std::fwrite(bytes, 1, count, static_cast<std::FILE*>(png_get_io_ptr(png))) != count)
        png_error(png, std::strerror(errno));
}

void flushPngBytes(png_structp)
{
    // It is flushed when it is closed.
}

class PngWriter
{
public:
    PngWriter()
        : m_png(png_create_write_struct(PNG_LIBPNG_VER_STRING, &m_message, onPngError, onPngWarning)),
          m_info(m_png != nullptr ? png_create_info_struct(m_png) : nullptr)
    {
    }

    ~PngWriter() { png_destroy_write_struct(&m_png, &m_info); }

    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    void write(std::FILE* file, std::uint32_t sizeX, std::uint32_t sizeY, int colourType, const unsigned char* samples,
               long rowStride)
    {
        if (m_info == nullptr || !encode(file, sizeX, sizeY, colourType, samples, rowStride))
            m_message.refuse();
    }

private:
    bool encode(std::FILE* file, std::uint32_t sizeX, std::uint32_t sizeY, int colourType, const unsigned char* samples,
                long rowStride)
    {
        if (setjmp(png_jmpbuf(m_png)) != 0)
            return false;
        png_set_write_fn(m_png, file, writePngBytes, flushPngBytes);
        png_set_IHDR(m_png, m_info, sizeX, sizeY, 8, colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                     PNG_FILTER_TYPE_DEFAULT);
        png_write_info(m_png, m_info);
        for (std::uint32_t y = 0; y < sizeY; ++y)
            png_write_row(m_png, samples + static_cast<std::ptrdiff_t>(y) * rowStride);
        png_write_end(m_png, m_info);
        return true;
    }

    CodecMessage m_message;
    png_structp m_png;
    png_infop m_info;
};

void writePng(OutputFiles& files, const std::string& path, unsigned long sizeX, unsigned long sizeY, int colourType,
              const unsigned char* samples, long rowStride)
{
    constexpr unsigned long maxSize = 1000000;  // of the codec, both ways
    files.add(path, [&](std::FILE* file) {
        if (sizeX < 1 || sizeX > maxSize || sizeY < 1 || sizeY > maxSize || samples == nullptr)
            throw Refusal("no picture of " + sizeText(sizeX, sizeY) + " can be written");
        PngWriter().write(file, static_cast<std::uint32_t>(sizeX), static_cast<std::uint32_t>(sizeY), colourType, samples,
                          rowStride);
    });
}

}  // namespace

Picture codec::readPng(std::FILE* file, std::uint64_t fileBytes)
{
    return PngReader().read(file, fileBytes);
}

void addGreyPng(OutputFiles& files, const std::string& path, unsigned long sizeX, unsigned long sizeY,
                const unsigned char* samples, long rowStride)
{
    writePng(files, path, sizeX, sizeY, PNG_COLOR_TYPE_GRAY, samples, rowStride);
}

void addRgbPng(OutputFiles& files, const std::string& path, unsigned long sizeX, unsigned long sizeY,
               const unsigned char* samples, long rowStride)
{
    writePng(files, path, sizeX, sizeY, PNG_COLOR_TYPE_RGB, samples, rowStride);
}

void writeGreyPng(const std::string& path, unsigned long sizeX, unsigned long sizeY, const unsigned char* samples,
                  long rowStride)
{
    OutputFiles files;
    addGreyPng(files, path, sizeX, sizeY, samples, rowStride);
    files.putInPlace();
}

void writeRgbPng(const std::string& path, unsigned long sizeX, unsigned long sizeY, const unsigned char* samples,
                 long rowStride)
{
    OutputFiles files;
    addRgbPng(files, path, sizeX, sizeY, samples, rowStride);
    files.putInPlace();
}

}  // namespace orvik::examples
