#include "PictureCodec.h"

#include <algorithm>
#include <array>
#include <new>

#include <tiffio.h>

namespace orvik::examples::codec {
namespace {

class TiffReader
{
public:
    explicit TiffReader(const std::string& path)
    {
        // Handlers of this file alone; those of the whole process belong to the application.
        TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
        if (options == nullptr)
            throw std::bad_alloc();
        TIFFOpenOptionsSetErrorHandlerExtR(options, keepError, &m_error);
        TIFFOpenOptionsSetWarningHandlerExtR(options, keepWarning, this);
        TIFFOpenOptionsSetMaxSingleMemAlloc(options, maxPictureBytes);
        // m: no memory mapping, which would end the process if the file is cut while it is read.
        m_tiff = TIFFOpenExt(path.c_str(), "rm", options);
        TIFFOpenOptionsFree(options);
        if (m_tiff == nullptr)
            m_error.refuse();
        if (!m_damage.isEmpty()) {
            TIFFClose(m_tiff);
            m_damage.refuse();
        }
    }

    ~TiffReader() { TIFFClose(m_tiff); }

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
            applyPalette(picture);
        return picture;
    }

private:
    static int keepError(TIFF*, void* message, const char*, const char* format, va_list arguments)
    {
        static_cast<CodecMessage*>(message)->keep(format, arguments);
        return 1;  // handled: the process-wide handler, which prints, is not asked
    }

    /// The codec ignores tags that it cannot read, with a warning. Without these it would take the samples for
    /// something else; others only describe the picture, and programs write some of them wrongly.
    static int keepWarning(TIFF*, void* reader, const char*, const char* format, va_list arguments)
    {
        auto* self = static_cast<TiffReader*>(reader);
        CodecMessage warning;
        warning.keep(format, arguments);
        for (const char* sign :
             {"IO error", "\"ColorMap\"", "\"PhotometricInterpretation\"", "\"Predictor\"", "\"FillOrder\""})
            if (std::strstr(warning.text(), sign) != nullptr)
                self->m_damage.keep(warning.text());
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
        if (isUnsigned && bits == 8) {
            m_sampleType = SampleType::UInt8;
        } else if (isUnsigned && bits == 16) {
            m_sampleType = SampleType::UInt16;
        } else if (format == SAMPLEFORMAT_INT && bits == 16) {
            m_sampleType = SampleType::Int16;
        } else if (format == SAMPLEFORMAT_IEEEFP && bits == 32) {
            m_sampleType = SampleType::Real32;
        } else {
            throw Refusal("samples of " + std::to_string(bits) + " bit and sample format " + std::to_string(format)
                          + " are not supported");
        }

        m_channels = fieldOrDefault(TIFFTAG_SAMPLESPERPIXEL);
        m_isSeparate = fieldOrDefault(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
        m_isJpeg = fieldOrDefault(TIFFTAG_COMPRESSION) == COMPRESSION_JPEG;
        std::uint16_t photometric = m_channels < 3 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
        TIFFGetField(m_tiff, TIFFTAG_PHOTOMETRIC, &photometric);
        if (photometric == PHOTOMETRIC_YCBCR && m_isJpeg) {
            TIFFSetField(m_tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            photometric = PHOTOMETRIC_RGB;
        }
        m_isColour = photometric == PHOTOMETRIC_RGB;
        m_isInverted = photometric == PHOTOMETRIC_MINISWHITE;
        m_isPalette = photometric == PHOTOMETRIC_PALETTE && m_sampleType == SampleType::UInt8;
        if (!m_isColour && !m_isInverted && !m_isPalette && photometric != PHOTOMETRIC_MINISBLACK) {
            throw Refusal("colours of photometric interpretation " + std::to_string(photometric) + " at "
                          + std::to_string(bits) + " bit are not supported");
        }
        if (m_channels < (m_isColour ? 3U : 1U))
            throw Refusal("a picture with " + std::to_string(m_channels) + " samples per pixel has no such colours");
    }

    void readBlocks(Picture& picture)
    {
        const bool isTiled = TIFFIsTiled(m_tiff) != 0;
        std::uint32_t blockX = static_cast<std::uint32_t>(picture.sizeX);
        std::uint32_t blockY = 0;
        if (isTiled) {
            blockX = 0;
            TIFFGetField(m_tiff, TIFFTAG_TILEWIDTH, &blockX);
            TIFFGetField(m_tiff, TIFFTAG_TILELENGTH, &blockY);
        } else {
            TIFFGetFieldDefaulted(m_tiff, TIFFTAG_ROWSPERSTRIP, &blockY);
            blockY = static_cast<std::uint32_t>(std::min<unsigned long>(blockY, picture.sizeY));
        }

        const unsigned planes = m_isSeparate && m_isColour ? 3 : 1;
        const std::size_t step = (m_isSeparate ? 1 : m_channels) * bytesPerSample(m_sampleType);
        const std::size_t blockBytes = checkedBytes(blockX, blockY, step);
        std::array<RawBytes, 3> blocks;
        std::generate_n(blocks.begin(), planes, [&] { return allocateRaw(blockBytes); });

        for (unsigned long y = 0; y < picture.sizeY; y += blockY) {
            const unsigned long rows = std::min<unsigned long>(blockY, picture.sizeY - y);
            // Grown row by row of blocks, so that a truncated file fails before memory for all of it is filled.
            picture.samples.resize((y + rows) * picture.rowBytes());
            for (unsigned long x = 0; x < picture.sizeX; x += blockX) {
                for (unsigned plane = 0; plane < planes; ++plane) {
                    const auto bytes = static_cast<tmsize_t>(isTiled ? blockBytes : rows * blockX * step);
                    readBlock(isTiled, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
                              static_cast<std::uint16_t>(plane), blocks[plane].get(), bytes);
                }
                const unsigned long columns = std::min<unsigned long>(blockX, picture.sizeX - x);
                for (unsigned long row = 0; row < rows; ++row) {
                    unsigned char* out = picture.samples.data() + (y + row) * picture.rowBytes()
                                         + x * bytesPerSample(m_sampleType);
                    convertRow(m_sampleType, sourceRow(blocks, row * blockX * step, step), columns, m_isInverted, out);
                }
            }
        }
    }

    void readBlock(bool isTiled, std::uint32_t x, std::uint32_t y, std::uint16_t plane, void* block, tmsize_t bytes)
    {
        m_warning = CodecMessage();
        const tmsize_t got = isTiled ? TIFFReadEncodedTile(m_tiff, TIFFComputeTile(m_tiff, x, y, 0, plane), block, bytes)
                                     : TIFFReadEncodedStrip(m_tiff, TIFFComputeStrip(m_tiff, y, plane), block, bytes);
        if (got != bytes) {
            m_error.keep("a strip or tile is shorter than the picture");
            m_error.refuse();
        }
        // JPEG inside TIFF goes on with grey where data is missing, and only warns.
        if (m_isJpeg && !m_warning.isEmpty())
            m_warning.refuse();
    }

    SourceRow sourceRow(const std::array<RawBytes, 3>& blocks, std::size_t offset, std::size_t step) const
    {
        const unsigned char* red = blocks[0].get() + offset;
        if (!m_isColour)
            return {red, nullptr, nullptr, step};
        if (m_isSeparate)
            return {red, blocks[1].get() + offset, blocks[2].get() + offset, step};
        return {red, red + bytesPerSample(m_sampleType), red + 2 * bytesPerSample(m_sampleType), step};
    }

    void applyPalette(Picture& picture) const
    {
        std::uint16_t* red = nullptr;
        std::uint16_t* green = nullptr;
        std::uint16_t* blue = nullptr;
        if (TIFFGetField(m_tiff, TIFFTAG_COLORMAP, &red, &green, &blue) != 1)
            throw Refusal("the palette is missing");
        // The palette has 16 bit, the picture 8.
        for (unsigned char& sample : picture.samples)
            sample = static_cast<unsigned char>((luma16(red[sample], green[sample], blue[sample]) + 128) / 257);
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

}  // namespace

Picture readTiff(const std::string& path)
{
    return TiffReader(path).read();
}

}  // namespace orvik::examples::codec
