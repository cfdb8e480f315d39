#include "PictureIo.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <csetjmp>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <type_traits>

#include <jpeglib.h>
#include <jerror.h>
#include <png.h>
#include <tiffio.h>
#include <unistd.h>

namespace orvik::examples
{
namespace
{

namespace fs = std::filesystem;

constexpr std::uint64_t maxPictureBytes = std::uint64_t(1) << 34;

/// Why a file is refused. readPicture() and the writers add the file's name to it.
class Refusal : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

std::string systemReason(int errorNumber)
{
    return std::generic_category().message(errorNumber);
}

struct FileCloser
{
    void operator()(std::FILE* file) const
    {
        std::fclose(file);
    }
};

using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

/// The first message of a codec. Later ones only tell of the consequences. The text has a fixed size because it is
/// filled inside the codec, where neither an exception nor a leak through longjmp() is allowed.
class CodecMessage
{
public:
    void keep(const char* format, va_list arguments)
    {
        if (isEmpty())
        {
            std::vsnprintf(m_text, sizeof m_text, format, arguments);
        }
    }

    void keep(const char* text)
    {
        if (isEmpty())
        {
            std::snprintf(m_text, sizeof m_text, "%s", text);
        }
    }

    bool isEmpty() const
    {
        return m_text[0] == '\0';
    }

    const char* text() const
    {
        return m_text;
    }

    [[noreturn]] void refuse() const
    {
        throw Refusal(isEmpty() ? "the codec gives no reason" : m_text);
    }

private:
    char m_text[512] = {};
};

std::string sizeText(std::uint64_t sizeX, std::uint64_t sizeY)
{
    return std::to_string(sizeX) + " x " + std::to_string(sizeY);
}

std::size_t checkedBytes(std::uint64_t sizeX, std::uint64_t sizeY, std::uint64_t bytesPerPixel)
{
    if (sizeX == 0 || sizeY == 0)
    {
        throw Refusal("the picture is empty (" + sizeText(sizeX, sizeY) + ")");
    }
    // Divided rather than multiplied: the product of sizes from a damaged header may not fit 64 bits.
    if (sizeX > maxPictureBytes / bytesPerPixel / sizeY)
    {
        throw Refusal("the picture is too large (" + sizeText(sizeX, sizeY) + ")");
    }
    return sizeX * sizeY * bytesPerPixel;
}

/// Refuses sizes that no file this short can hold before memory is filled for them.
void requireRoomFor(std::uint64_t leastBytes, std::uint64_t fileBytes, std::uint64_t sizeX, std::uint64_t sizeY)
{
    if (fileBytes < leastBytes)
    {
        throw Refusal("the file is too short for a picture of " + sizeText(sizeX, sizeY));
    }
}

/// Memory for a codec to fill. Not zeroed: pages that a truncated file never reaches stay untouched.
using RawBytes = std::unique_ptr<unsigned char[]>;

RawBytes allocateRaw(std::size_t bytes)
{
    return RawBytes(new unsigned char[bytes]);
}

template <typename Sample>
Sample loadSample(const unsigned char* from)
{
    Sample sample;
    std::memcpy(&sample, from, sizeof sample);
    return sample;
}

template <typename Sample>
Sample luma(Sample red, Sample green, Sample blue)
{
    if constexpr (std::is_floating_point_v<Sample>)
    {
        return static_cast<Sample>(0.299 * red + 0.587 * green + 0.114 * blue);
    }
    else
    {
        // The bias keeps the sum positive, so that the division rounds negative samples to nearest as well.
        constexpr std::int32_t bias = std::is_signed_v<Sample> ? 32768 : 0;
        const std::int32_t sum = 299 * red + 587 * green + 114 * blue + 1000 * bias + 500;
        return static_cast<Sample>(sum / 1000 - bias);
    }
}

template <typename Sample>
Sample inverted(Sample sample)
{
    if constexpr (std::is_floating_point_v<Sample>)
    {
        return -sample;
    }
    else
    {
        return static_cast<Sample>(~sample);
    }
}

/// One row as the codec gives it: three channels, or grey in `red` alone. `step` is in bytes.
struct SourceRow
{
    const unsigned char* red;
    const unsigned char* green;
    const unsigned char* blue;
    std::size_t step;
};

template <typename Sample>
void convertSamples(const SourceRow& row, std::size_t count, bool invert, unsigned char* out)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::size_t at = i * row.step;
        Sample sample = loadSample<Sample>(row.red + at);
        if (row.green != nullptr)
        {
            sample = luma(sample, loadSample<Sample>(row.green + at), loadSample<Sample>(row.blue + at));
        }
        if (invert)
        {
            sample = inverted(sample);
        }
        std::memcpy(out + i * sizeof sample, &sample, sizeof sample);
    }
}

void convertRow(SampleType sampleType, const SourceRow& row, std::size_t count, bool invert, unsigned char* out)
{
    switch (sampleType)
    {
    case SampleType::UInt8:
        return convertSamples<std::uint8_t>(row, count, invert, out);
    case SampleType::UInt16:
        return convertSamples<std::uint16_t>(row, count, invert, out);
    case SampleType::Int16:
        return convertSamples<std::int16_t>(row, count, invert, out);
    case SampleType::Real32:
        return convertSamples<float>(row, count, invert, out);
    }
}

double sampleAsNumber(SampleType sampleType, const unsigned char* at)
{
    switch (sampleType)
    {
    case SampleType::UInt8:
        return *at;
    case SampleType::UInt16:
        return loadSample<std::uint16_t>(at);
    case SampleType::Int16:
        return loadSample<std::int16_t>(at);
    case SampleType::Real32:
        break;
    }
    return loadSample<float>(at);
}

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
    {
        png_error(png, std::ferror(file) ? "the file cannot be read to its end" : "the file ends too early");
    }
}

/// Everything with a destructor is a member, so that longjmp() out of the codec skips no destructor.
class PngReader
{
public:
    PngReader() : m_png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &m_message, onPngError, onPngWarning))
    {
        m_info = m_png != nullptr ? png_create_info_struct(m_png) : nullptr;
    }

    ~PngReader()
    {
        png_destroy_read_struct(&m_png, &m_info, nullptr);
    }

    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    Picture read(std::FILE* file, std::uint64_t fileBytes)
    {
        if (m_info == nullptr || !decode(file, fileBytes))
        {
            m_message.refuse();
        }
        Picture picture;
        picture.sizeX = m_sizeX;
        picture.sizeY = m_sizeY;
        picture.sampleType = m_bitDepth == 16 ? SampleType::UInt16 : SampleType::UInt8;
        const std::size_t bytes = bytesPerSample(picture.sampleType);
        picture.samples.resize(checkedBytes(m_sizeX, m_sizeY, bytes));
        for (std::size_t y = 0; y < m_sizeY; ++y)
        {
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
        {
            return false;
        }
        png_set_read_fn(m_png, file, readPngBytes);
        png_read_info(m_png, m_info);
        m_sizeX = png_get_image_width(m_png, m_info);
        m_sizeY = png_get_image_height(m_png, m_info);
        checkedBytes(m_sizeX, m_sizeY, 1);
        // 1032 is the most that deflate ever gains: 258 bytes from two bits.
        requireRoomFor(png_get_rowbytes(m_png, m_info) * m_sizeY / 1032, fileBytes, m_sizeX, m_sizeY);

        if (png_get_color_type(m_png, m_info) == PNG_COLOR_TYPE_PALETTE)
        {
            png_set_palette_to_rgb(m_png);
        }
        else if (png_get_bit_depth(m_png, m_info) < 8)
        {
            png_set_expand_gray_1_2_4_to_8(m_png);
        }
        if (isLittleEndian())
        {
            png_set_swap(m_png);
        }
        png_set_strip_alpha(m_png);
        const int passes = png_set_interlace_handling(m_png);
        png_read_update_info(m_png, m_info);
        m_bitDepth = png_get_bit_depth(m_png, m_info);
        m_channels = png_get_channels(m_png, m_info);
        m_rowBytes = png_get_rowbytes(m_png, m_info);
        m_pixels = allocateRaw(checkedBytes(m_sizeX, m_sizeY, m_channels * m_bitDepth / 8));
        for (int pass = 0; pass < passes; ++pass)
        {
            for (std::size_t y = 0; y < m_sizeY; ++y)
            {
                png_read_row(m_png, m_pixels.get() + y * m_rowBytes, nullptr);
            }
        }
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

/// As with PngReader, everything with a destructor is a member or belongs to the caller.
class JpegReader
{
public:
    JpegReader()
    {
        m_codec.err = jpeg_std_error(&m_errors);
        m_codec.client_data = this;
        m_errors.error_exit = onError;
        m_errors.emit_message = onMessage;
    }

    ~JpegReader()
    {
        jpeg_destroy_decompress(&m_codec);
    }

    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    Picture read(std::FILE* file, std::uint64_t fileBytes)
    {
        Picture picture;
        if (!decode(file, fileBytes, picture))
        {
            m_message.refuse();
        }
        return picture;
    }

private:
    static void onError(j_common_ptr codec)
    {
        auto* self = static_cast<JpegReader*>(codec->client_data);
        char text[JMSG_LENGTH_MAX] = {};
        codec->err->format_message(codec, text);
        self->m_message.keep(text);
        std::longjmp(self->m_jump, 1);
    }

    /// The codec fills missing or damaged data with grey and warns. Only the two warnings about how the header is
    /// written leave the samples sound.
    static void onMessage(j_common_ptr codec, int level)
    {
        const int code = codec->err->msg_code;
        if (level < 0 && code != JWRN_JFIF_MAJOR && code != JWRN_ADOBE_XFORM)
        {
            onError(codec);
        }
    }

    bool decode(std::FILE* file, std::uint64_t fileBytes, Picture& picture)
    {
        if (setjmp(m_jump) != 0)
        {
            return false;
        }
        jpeg_create_decompress(&m_codec);
        jpeg_stdio_src(&m_codec, file);
        jpeg_read_header(&m_codec, TRUE);
        picture.sizeX = m_codec.image_width;
        picture.sizeY = m_codec.image_height;
        const std::size_t bytes = checkedBytes(picture.sizeX, picture.sizeY, 1);
        if (!m_codec.arith_code)
        {
            // A Huffman code takes at least a bit for each block, and the coarsest blocks cover 32 x 32 samples.
            requireRoomFor(bytes / (8 * 32 * 32), fileBytes, picture.sizeX, picture.sizeY);
        }
        m_codec.out_color_space = JCS_GRAYSCALE;
        jpeg_start_decompress(&m_codec);
        picture.samples.reserve(bytes);
        while (m_codec.output_scanline < m_codec.output_height)
        {
            picture.samples.resize(picture.samples.size() + picture.sizeX);
            JSAMPROW row = picture.samples.data() + picture.samples.size() - picture.sizeX;
            jpeg_read_scanlines(&m_codec, &row, 1);
        }
        jpeg_finish_decompress(&m_codec);
        return true;
    }

    CodecMessage m_message;
    jpeg_error_mgr m_errors = {};
    jpeg_decompress_struct m_codec = {};
    std::jmp_buf m_jump;
};

class TiffReader
{
public:
    explicit TiffReader(const std::string& path)
    {
        // Handlers of this file alone; those of the whole process belong to the application.
        TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
        if (options == nullptr)
        {
            throw std::bad_alloc();
        }
        TIFFOpenOptionsSetErrorHandlerExtR(options, keepError, &m_error);
        TIFFOpenOptionsSetWarningHandlerExtR(options, keepWarning, this);
        TIFFOpenOptionsSetMaxSingleMemAlloc(options, maxPictureBytes);
        // m: no memory mapping, which would end the process if the file is cut while it is read.
        m_tiff = TIFFOpenExt(path.c_str(), "rm", options);
        TIFFOpenOptionsFree(options);
        if (m_tiff == nullptr)
        {
            m_error.refuse();
        }
        if (!m_damage.isEmpty())
        {
            TIFFClose(m_tiff);
            m_damage.refuse();
        }
    }

    ~TiffReader()
    {
        TIFFClose(m_tiff);
    }

    TiffReader(const TiffReader&) = delete;
    TiffReader& operator=(const TiffReader&) = delete;

    Picture read()
    {
        std::uint32_t sizeX = 0;
        std::uint32_t sizeY = 0;
        TIFFGetField(m_tiff, TIFFTAG_IMAGEWIDTH, &sizeX);
        TIFFGetField(m_tiff, TIFFTAG_IMAGELENGTH, &sizeY);
        Picture picture;
        picture.sizeX = sizeX;
        picture.sizeY = sizeY;
        readSampleLayout();
        picture.sampleType = m_sampleType;
        picture.samples.reserve(checkedBytes(sizeX, sizeY, bytesPerSample(m_sampleType)));
        readBlocks(picture);
        if (m_isPalette)
        {
            applyPalette(picture);
        }
        return picture;
    }

private:
    static int keepError(TIFF*, void* message, const char*, const char* format, va_list arguments)
    {
        static_cast<CodecMessage*>(message)->keep(format, arguments);
        return 1; // handled: the process-wide handler, which prints, is not asked
    }

    /// The codec ignores tags that it cannot read, with a warning. Without these it would take the samples for
    /// something else; others only describe the picture, and programs write some of them wrongly.
    static int keepWarning(TIFF*, void* reader, const char*, const char* format, va_list arguments)
    {
        auto* self = static_cast<TiffReader*>(reader);
        CodecMessage warning;
        warning.keep(format, arguments);
        for (const char* sign : {"IO error", "\"ColorMap\"", "\"PhotometricInterpretation\"", "\"Predictor\"",
                                 "\"FillOrder\""})
        {
            if (std::strstr(warning.text(), sign) != nullptr)
            {
                self->m_damage.keep(warning.text());
            }
        }
        self->m_warning.keep(warning.text());
        return 1;
    }

    std::uint16_t fieldOrDefault(std::uint32_t tag) const
    {
        std::uint16_t value = 0;
        TIFFGetFieldDefaulted(m_tiff, tag, &value);
        return value;
    }

    void readSampleLayout()
    {
        const int bits = fieldOrDefault(TIFFTAG_BITSPERSAMPLE);
        const int format = fieldOrDefault(TIFFTAG_SAMPLEFORMAT);
        const bool isUnsigned = format == SAMPLEFORMAT_UINT || format == SAMPLEFORMAT_VOID;
        if (isUnsigned && bits == 8)
        {
            m_sampleType = SampleType::UInt8;
        }
        else if (isUnsigned && bits == 16)
        {
            m_sampleType = SampleType::UInt16;
        }
        else if (format == SAMPLEFORMAT_INT && bits == 16)
        {
            m_sampleType = SampleType::Int16;
        }
        else if (format == SAMPLEFORMAT_IEEEFP && bits == 32)
        {
            m_sampleType = SampleType::Real32;
        }
        else
        {
            throw Refusal("samples of " + std::to_string(bits) + " bit and sample format " + std::to_string(format) +
                          " are not supported");
        }

        m_channels = fieldOrDefault(TIFFTAG_SAMPLESPERPIXEL);
        m_isSeparate = fieldOrDefault(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
        m_isJpeg = fieldOrDefault(TIFFTAG_COMPRESSION) == COMPRESSION_JPEG;
        std::uint16_t photometric = m_channels < 3 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
        TIFFGetField(m_tiff, TIFFTAG_PHOTOMETRIC, &photometric);
        if (photometric == PHOTOMETRIC_YCBCR && m_isJpeg)
        {
            TIFFSetField(m_tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            photometric = PHOTOMETRIC_RGB;
        }
        m_isColour = photometric == PHOTOMETRIC_RGB;
        m_isInverted = photometric == PHOTOMETRIC_MINISWHITE;
        m_isPalette = photometric == PHOTOMETRIC_PALETTE && m_sampleType == SampleType::UInt8;
        if (!m_isColour && !m_isInverted && !m_isPalette && photometric != PHOTOMETRIC_MINISBLACK)
        {
            throw Refusal("colours of photometric interpretation " + std::to_string(photometric) + " at " +
                          std::to_string(bits) + " bit are not supported");
        }
        if (m_channels < (m_isColour ? 3U : 1U))
        {
            throw Refusal("a picture with " + std::to_string(m_channels) + " samples per pixel has no such colours");
        }
    }

    void readBlocks(Picture& picture)
    {
        const bool isTiled = TIFFIsTiled(m_tiff) != 0;
        std::uint32_t blockX = static_cast<std::uint32_t>(picture.sizeX);
        std::uint32_t blockY = 0;
        if (isTiled)
        {
            blockX = 0;
            TIFFGetField(m_tiff, TIFFTAG_TILEWIDTH, &blockX);
            TIFFGetField(m_tiff, TIFFTAG_TILELENGTH, &blockY);
        }
        else
        {
            TIFFGetFieldDefaulted(m_tiff, TIFFTAG_ROWSPERSTRIP, &blockY);
            blockY = static_cast<std::uint32_t>(std::min<unsigned long>(blockY, picture.sizeY));
        }

        const unsigned planes = m_isSeparate && m_isColour ? 3 : 1;
        const std::size_t step = (m_isSeparate ? 1 : m_channels) * bytesPerSample(m_sampleType);
        const std::size_t blockBytes = checkedBytes(blockX, blockY, step);
        std::array<RawBytes, 3> blocks;
        std::generate_n(blocks.begin(), planes, [&] { return allocateRaw(blockBytes); });

        for (unsigned long y = 0; y < picture.sizeY; y += blockY)
        {
            const unsigned long rows = std::min<unsigned long>(blockY, picture.sizeY - y);
            // Grown row by row of blocks, so that a truncated file fails before memory for all of it is filled.
            picture.samples.resize((y + rows) * picture.rowBytes());
            for (unsigned long x = 0; x < picture.sizeX; x += blockX)
            {
                for (unsigned plane = 0; plane < planes; ++plane)
                {
                    const auto bytes = static_cast<tmsize_t>(isTiled ? blockBytes : rows * blockX * step);
                    readBlock(isTiled, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
                              static_cast<std::uint16_t>(plane), blocks[plane].get(), bytes);
                }
                const unsigned long columns = std::min<unsigned long>(blockX, picture.sizeX - x);
                for (unsigned long row = 0; row < rows; ++row)
                {
                    unsigned char* out = picture.samples.data() + (y + row) * picture.rowBytes() +
                                         x * bytesPerSample(m_sampleType);
                    convertRow(m_sampleType, sourceRow(blocks, row * blockX * step, step), columns, m_isInverted, out);
                }
            }
        }
    }

    void readBlock(bool isTiled, std::uint32_t x, std::uint32_t y, std::uint16_t plane, void* block, tmsize_t bytes)
    {
        m_warning = CodecMessage();
        const tmsize_t got =
            isTiled ? TIFFReadEncodedTile(m_tiff, TIFFComputeTile(m_tiff, x, y, 0, plane), block, bytes)
                    : TIFFReadEncodedStrip(m_tiff, TIFFComputeStrip(m_tiff, y, plane), block, bytes);
        if (got != bytes)
        {
            m_error.keep("a strip or tile is shorter than the picture");
            m_error.refuse();
        }
        // JPEG inside TIFF goes on with grey where data is missing, and only warns.
        if (m_isJpeg && !m_warning.isEmpty())
        {
            m_warning.refuse();
        }
    }

    SourceRow sourceRow(const std::array<RawBytes, 3>& blocks, std::size_t offset, std::size_t step) const
    {
        const unsigned char* red = blocks[0].get() + offset;
        if (!m_isColour)
        {
            return {red, nullptr, nullptr, step};
        }
        if (m_isSeparate)
        {
            return {red, blocks[1].get() + offset, blocks[2].get() + offset, step};
        }
        return {red, red + bytesPerSample(m_sampleType), red + 2 * bytesPerSample(m_sampleType), step};
    }

    void applyPalette(Picture& picture) const
    {
        std::uint16_t* red = nullptr;
        std::uint16_t* green = nullptr;
        std::uint16_t* blue = nullptr;
        if (TIFFGetField(m_tiff, TIFFTAG_COLORMAP, &red, &green, &blue) != 1)
        {
            throw Refusal("the palette is missing");
        }
        // The palette has 16 bit, the picture 8.
        for (unsigned char& sample : picture.samples)
        {
            sample = static_cast<unsigned char>((luma(red[sample], green[sample], blue[sample]) + 128) / 257);
        }
    }

    CodecMessage m_error;
    CodecMessage m_warning;
    CodecMessage m_damage;
    TIFF* m_tiff = nullptr;
    SampleType m_sampleType = SampleType::UInt8;
    unsigned m_channels = 1;
    bool m_isSeparate = false;
    bool m_isJpeg = false;
    bool m_isColour = false;
    bool m_isInverted = false;
    bool m_isPalette = false;
};

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
    {
        throw Refusal(std::ferror(file) ? systemReason(errno) : "the file is empty");
    }
    std::rewind(file);
    using namespace std::string_view_literals;
    const auto startsWith = [&](std::string_view magic) { return head.substr(0, magic.size()) == magic; };
    if (startsWith("\x89PNG\r\n\x1a\n"sv))
    {
        return FileFormat::Png;
    }
    if (startsWith("\xff\xd8\xff"sv))
    {
        return FileFormat::Jpeg;
    }
    // Little and big endian; the second of each pair has 64 bit offsets.
    if (startsWith("II*\0"sv) || startsWith("II+\0"sv) || startsWith("MM\0*"sv) || startsWith("MM\0+"sv))
    {
        return FileFormat::Tiff;
    }
    return FileFormat::Unknown;
}

Picture readAnyFormat(const std::string& path)
{
    // Asked before opening, because opening a pipe would wait for its writer.
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::none || status.type() == fs::file_type::not_found)
    {
        throw Refusal(error.message());
    }
    if (!fs::is_regular_file(status))
    {
        throw Refusal(fs::is_directory(status) ? systemReason(EISDIR) : "not a regular file");
    }
    const FileHandle file(std::fopen(path.c_str(), "rb"));
    if (!file)
    {
        throw Refusal(systemReason(errno));
    }
    const std::uintmax_t fileBytes = fs::file_size(path, error);
    if (error)
    {
        throw Refusal(error.message());
    }
    switch (recognise(file.get()))
    {
    case FileFormat::Png:
        return PngReader().read(file.get(), fileBytes);
    case FileFormat::Jpeg:
        return JpegReader().read(file.get(), fileBytes);
    case FileFormat::Tiff:
        return TiffReader(path).read();
    case FileFormat::Unknown:
        break;
    }
    throw Refusal("neither a PNG, a JPEG nor a TIFF file");
}

/// A new file beside the target, removed again unless it takes the target's place.
class TemporaryFile
{
public:
    explicit TemporaryFile(const fs::path& target) : m_target(target)
    {
        static std::atomic<unsigned> counter(0);
        do
        {
            // Not made from the target's name, which may already be as long as the system allows.
            const std::string name = ".picture-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp";
            m_path = target.parent_path() / name;
            m_file.reset(std::fopen(m_path.c_str(), "wbx"));
        } while (!m_file && errno == EEXIST);
        if (!m_file)
        {
            throw Refusal(systemReason(errno));
        }
    }

    ~TemporaryFile()
    {
        if (!m_isMoved)
        {
            m_file.reset();
            std::remove(m_path.c_str());
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    std::FILE* file() const
    {
        return m_file.get();
    }

    void moveToTarget()
    {
        // Buffered bytes may be refused as late as here.
        if (std::fclose(m_file.release()) != 0 || std::rename(m_path.c_str(), m_target.c_str()) != 0)
        {
            throw Refusal(systemReason(errno));
        }
        m_isMoved = true;
    }

private:
    fs::path m_target;
    fs::path m_path;
    FileHandle m_file;
    bool m_isMoved = false;
};

void writePngBytes(png_structp png, png_bytep bytes, png_size_t count)
{
    if (std::fwrite(bytes, 1, count, static_cast<std::FILE*>(png_get_io_ptr(png))) != count)
    {
        png_error(png, std::strerror(errno));
    }
}

void flushPngBytes(png_structp)
{
    // TemporaryFile flushes when it closes the file.
}

class PngWriter
{
public:
    PngWriter() : m_png(png_create_write_struct(PNG_LIBPNG_VER_STRING, &m_message, onPngError, onPngWarning))
    {
        m_info = m_png != nullptr ? png_create_info_struct(m_png) : nullptr;
    }

    ~PngWriter()
    {
        png_destroy_write_struct(&m_png, &m_info);
    }

    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    void write(std::FILE* file, std::uint32_t sizeX, std::uint32_t sizeY, int colourType, const unsigned char* samples,
               long rowStride)
    {
        if (m_info == nullptr || !encode(file, sizeX, sizeY, colourType, samples, rowStride))
        {
            m_message.refuse();
        }
    }

private:
    bool encode(std::FILE* file, std::uint32_t sizeX, std::uint32_t sizeY, int colourType, const unsigned char* samples,
                long rowStride)
    {
        if (setjmp(png_jmpbuf(m_png)) != 0)
        {
            return false;
        }
        png_set_write_fn(m_png, file, writePngBytes, flushPngBytes);
        png_set_IHDR(m_png, m_info, sizeX, sizeY, 8, colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                     PNG_FILTER_TYPE_DEFAULT);
        png_write_info(m_png, m_info);
        for (std::uint32_t y = 0; y < sizeY; ++y)
        {
            png_write_row(m_png, samples + static_cast<std::ptrdiff_t>(y) * rowStride);
        }
        png_write_end(m_png, m_info);
        return true;
    }

    CodecMessage m_message;
    png_structp m_png;
    png_infop m_info;
};

void writePng(const std::string& path, unsigned long sizeX, unsigned long sizeY, int colourType,
              const unsigned char* samples, long rowStride)
{
    constexpr unsigned long maxSize = 1000000; // of the codec, both ways
    try
    {
        if (sizeX < 1 || sizeX > maxSize || sizeY < 1 || sizeY > maxSize || samples == nullptr)
        {
            throw Refusal("no picture of " + sizeText(sizeX, sizeY) + " can be written");
        }
        // Renaming would put a plain file in the place of a device.
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (fs::exists(status) && !fs::is_regular_file(status))
        {
            throw Refusal(fs::is_directory(status) ? systemReason(EISDIR) : "not a regular file");
        }
        TemporaryFile temporary(path);
        PngWriter().write(temporary.file(), static_cast<std::uint32_t>(sizeX), static_cast<std::uint32_t>(sizeY),
                          colourType, samples, rowStride);
        temporary.moveToTarget();
    }
    catch (const Refusal& refusal)
    {
        throw PictureError("cannot write '" + path + "': " + refusal.what());
    }
    catch (const std::bad_alloc&)
    {
        throw PictureError("cannot write '" + path + "': not enough memory");
    }
}

} // namespace

std::size_t bytesPerSample(SampleType sampleType)
{
    switch (sampleType)
    {
    case SampleType::UInt8:
        return 1;
    case SampleType::UInt16:
    case SampleType::Int16:
        return 2;
    case SampleType::Real32:
        break;
    }
    return 4;
}

double Picture::valueAt(unsigned long x, unsigned long y) const
{
    if (x >= sizeX || y >= sizeY)
    {
        throw std::out_of_range("no sample at " + std::to_string(x) + ", " + std::to_string(y));
    }
    return sampleAsNumber(sampleType, samples.data() + y * rowBytes() + x * bytesPerSample(sampleType));
}

Picture readPicture(const std::string& path)
{
    try
    {
        return readAnyFormat(path);
    }
    catch (const Refusal& refusal)
    {
        throw PictureError("cannot read '" + path + "': " + refusal.what());
    }
    catch (const std::bad_alloc&)
    {
        throw PictureError("cannot read '" + path + "': not enough memory for the picture");
    }
}

void writeGreyPng(const std::string& path, unsigned long sizeX, unsigned long sizeY, const unsigned char* samples,
                  long rowStride)
{
    writePng(path, sizeX, sizeY, PNG_COLOR_TYPE_GRAY, samples, rowStride);
}

void writeRgbPng(const std::string& path, unsigned long sizeX, unsigned long sizeY, const unsigned char* samples,
                 long rowStride)
{
    writePng(path, sizeX, sizeY, PNG_COLOR_TYPE_RGB, samples, rowStride);
}

std::vector<unsigned char> toDisplay8(const Picture& picture)
{
    const std::size_t bytes = bytesPerSample(picture.sampleType);
    const std::size_t count = picture.samples.size() / bytes;
    if (picture.samples.size() != picture.sizeX * picture.sizeY * bytes)
    {
        throw std::invalid_argument("a picture of " + sizeText(picture.sizeX, picture.sizeY) + " with " +
                                    std::to_string(picture.samples.size()) + " bytes");
    }
    if (picture.sampleType == SampleType::UInt8)
    {
        return picture.samples;
    }

    const auto valueOf = [&](std::size_t i)
    { return sampleAsNumber(picture.sampleType, picture.samples.data() + i * bytes); };
    double smallest = std::numeric_limits<double>::infinity();
    double largest = -smallest;
    for (std::size_t i = 0; i < count; ++i)
    {
        const double value = valueOf(i);
        if (std::isfinite(value))
        {
            smallest = std::min(smallest, value);
            largest = std::max(largest, value);
        }
    }

    std::vector<unsigned char> display(count, 0);
    if (smallest < largest)
    {
        for (std::size_t i = 0; i < count; ++i)
        {
            const double value = valueOf(i);
            if (!std::isnan(value))
            {
                const double share = (std::clamp(value, smallest, largest) - smallest) / (largest - smallest);
                display[i] = static_cast<unsigned char>(std::lround(255.0 * share));
            }
        }
    }
    return display;
}

} // namespace orvik::examples
