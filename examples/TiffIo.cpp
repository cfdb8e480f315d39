#include "Interruption.h"
#include "VolumeCodec.h"

#include <algorithm>
#include <array>
#include <new>

#include <tiffio.h>
#include <unistd.h>

namespace orvik::examples::codec {
namespace {

/// The most bytes that a codec ever makes of one, or 0 where there is no such number: a block of one colour takes the same
/// few bytes at any size.
std::uint64_t mostGain(unsigned compression)
{
    switch (compression) {
    case COMPRESSION_NONE: return 1;
    case COMPRESSION_PACKBITS: return 64;  // 128 bytes from two
    case COMPRESSION_LZW: return 4096;     // 4096 words, each a byte longer than another; 9 bits at least
    case COMPRESSION_DEFLATE:              // 258 bytes from two bits
    case COMPRESSION_ADOBE_DEFLATE: return 1032;
    case COMPRESSION_PIXARLOG: return 2 * 1032;  // 16 bits that were deflated become 32
    case COMPRESSION_LZMA: return 8192;          // 273 bytes from 14 decisions of at least 0.022 bits
    case COMPRESSION_ZSTD: return 32768;         // a block of 128 KiB from four bytes
    case COMPRESSION_OJPEG:
    case COMPRESSION_JPEG: return 3 * 8 * 32 * 32;  // three colours of 32 x 32 samples from a bit
    default: return 0;
    }
}

class TiffReader
{
public:
    TiffReader(const std::string& path, std::uint64_t fileBytes) : m_fileBytes(fileBytes)
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

    /// The page that the codec is at.
    Picture read()
    {
        Picture picture = describePage();
        readBlocks(picture);
        if (m_isPalette)
            applyPalette(picture);
        return picture;
    }

    /// All pages but those that are other ones reduced, or masks.
    Volume readSlices()
    {
        Volume volume;
        examineSlices(volume);
        const std::string what = "volume of " + sizeText(volume);
        const std::size_t bytes = checkedBytes(volume);
        requireMemoryFor(bytes + bytes / volume.sizeZ, availableMemory(), what);
        volume.samples.reserve(bytes);
        m_warning = CodecMessage();
        if (TIFFSetDirectory(m_tiff, 0) != 1)
            m_error.refuse();
        do {
            throwIfInterrupted();
            if (isSlice()) {
                const Picture slice = read();
                volume.samples.insert(volume.samples.end(), slice.samples.begin(), slice.samples.end());
            }
        } while (goToNextPage());
        if (volume.samples.size() != bytes)
            throw Refusal("the file changed while it was read");
        return volume;
    }

private:
    bool goToNextPage()
    {
        if (TIFFLastDirectory(m_tiff) != 0) {
            requireWholeDirectory();
            return false;
        }
        if (TIFFReadDirectory(m_tiff) != 1)
            m_error.refuse();
        if (!m_damage.isEmpty())
            m_damage.refuse();
        return true;
    }

    /// Behind a directory stands where the next one is. Where the file is cut there, the codec takes it for the last one.
    void requireWholeDirectory() const
    {
        const bool isBig = TIFFIsBigTIFF(m_tiff) != 0;
        const std::size_t countBytes = isBig ? 8 : 2, entryBytes = isBig ? 20 : 12, placeBytes = isBig ? 8 : 4;
        const std::uint64_t start = TIFFCurrentDirOffset(m_tiff);
        unsigned char count[8] = {};
        if (pread(TIFFFileno(m_tiff), count, countBytes, static_cast<off_t>(start)) != static_cast<ssize_t>(countBytes))
            throw Refusal("the file ends too early");
        if (TIFFIsByteSwapped(m_tiff) != 0)
            swapSamples(count, 1, countBytes);
        const std::uint64_t nbEntries = isBig ? loadSample<std::uint64_t>(count) : loadSample<std::uint16_t>(count);
        if (nbEntries > m_fileBytes || start + countBytes + nbEntries * entryBytes + placeBytes > m_fileBytes)
            throw Refusal("the file ends too early");
    }

    bool isSlice() const
    {
        std::uint32_t kind = 0;
        TIFFGetFieldDefaulted(m_tiff, TIFFTAG_SUBFILETYPE, &kind);
        return (kind & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) == 0;
    }

    /// Sizes of all pages together, before memory is taken for any. Refuses pages that differ.
    void examineSlices(Volume& volume)
    {
        std::uint64_t held = 0;
        do {
            if (!isSlice())
                continue;
            std::uint32_t depth = 1;
            TIFFGetField(m_tiff, TIFFTAG_IMAGEDEPTH, &depth);
            if (depth != 1)
                throw Refusal("a page has " + std::to_string(depth) + " slices; only pages of one are supported");
            const Picture page = describePage();
            if (volume.sizeZ == 0) {
                volume.sizeX = page.sizeX;
                volume.sizeY = page.sizeY;
                volume.sampleType = page.sampleType;
                readSpacing(volume);
            } else if (page.sizeX != volume.sizeX || page.sizeY != volume.sizeY || page.sampleType != volume.sampleType) {
                throw Refusal("slice " + std::to_string(volume.sizeZ + 1) + " is " + sizeText(page.sizeX, page.sizeY) + ", "
                              + nameOf(page.sampleType) + ", but slice 1 is " + sizeText(volume.sizeX, volume.sizeY) + ", "
                              + nameOf(volume.sampleType) + ": they are no slices of a volume");
            }
            ++volume.sizeZ;
            held += checkBlocks(page, findBlocks(page));
            // Pages in one place would be more than the file has, whatever their codec makes of them.
            if (held > m_fileBytes && m_compression != COMPRESSION_OJPEG)
                requireRoomFor(held, m_fileBytes, "volume of " + sizeText(volume));
        } while (goToNextPage());
        if (volume.sizeZ == 0)
            throw Refusal("all pages are reduced ones or masks");
    }

    /// As TiffVolumeWriter.cpp writes it; in other files nothing tells how far pages are apart.
    void readSpacing(Volume& volume) const
    {
        const char* description = nullptr;
        float perCentimetreX = 0, perCentimetreY = 0;
        double spacingZ = 0;
        if (TIFFGetField(m_tiff, TIFFTAG_IMAGEDESCRIPTION, &description) != 1
            || TIFFGetField(m_tiff, TIFFTAG_XRESOLUTION, &perCentimetreX) != 1
            || TIFFGetField(m_tiff, TIFFTAG_YRESOLUTION, &perCentimetreY) != 1
            || fieldOrDefault(TIFFTAG_RESOLUTIONUNIT) != RESUNIT_CENTIMETER
            || std::sscanf(description, tiffSpacingScan, &spacingZ) != 1)
            return;
        volume.space.setSpacing(10 / double(perCentimetreX), 10 / double(perCentimetreY), spacingZ);
    }

    /// Sizes and kind of samples of the page that the codec is at, without the samples.
    Picture describePage()
    {
        std::uint32_t sizeX = 0;
        std::uint32_t sizeY = 0;
        TIFFGetField(m_tiff, TIFFTAG_IMAGEWIDTH, &sizeX);
        TIFFGetField(m_tiff, TIFFTAG_IMAGELENGTH, &sizeY);
        readSampleLayout();
        Picture picture;
        picture.sizeX = sizeX;
        picture.sizeY = sizeY;
        picture.sampleType = m_sampleType;
        return picture;
    }

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
        const bool isSigned = format == SAMPLEFORMAT_INT;
        if ((isUnsigned || isSigned) && bits == 8) {
            m_sampleType = isSigned ? SampleType::Int8 : SampleType::UInt8;
        } else if ((isUnsigned || isSigned) && bits == 16) {
            m_sampleType = isSigned ? SampleType::Int16 : SampleType::UInt16;
        } else if ((isUnsigned || isSigned) && bits == 32) {
            m_sampleType = isSigned ? SampleType::Int32 : SampleType::UInt32;
        } else if (format == SAMPLEFORMAT_IEEEFP && bits == 32) {
            m_sampleType = SampleType::Real32;
        } else {
            throw Refusal("samples of " + std::to_string(bits) + " bit and sample format " + std::to_string(format)
                          + " are not supported");
        }

        m_channels = fieldOrDefault(TIFFTAG_SAMPLESPERPIXEL);
        m_isSeparate = fieldOrDefault(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
        m_compression = fieldOrDefault(TIFFTAG_COMPRESSION);
        std::uint16_t photometric = m_channels < 3 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
        TIFFGetField(m_tiff, TIFFTAG_PHOTOMETRIC, &photometric);
        if (photometric == PHOTOMETRIC_YCBCR && m_compression == COMPRESSION_JPEG) {
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

    /// The strips or tiles that the picture consists of.
    struct Blocks
    {
        bool isTiled;
        std::uint32_t sizeX, sizeY;
        unsigned planes;
        std::size_t step;  ///< bytes from one pixel to the next
        std::size_t bytes;
    };

    Blocks findBlocks(const Picture& picture) const
    {
        Blocks blocks = {TIFFIsTiled(m_tiff) != 0, static_cast<std::uint32_t>(picture.sizeX), 0, 1, 0, 0};
        if (blocks.isTiled) {
            blocks.sizeX = 0;
            TIFFGetField(m_tiff, TIFFTAG_TILEWIDTH, &blocks.sizeX);
            TIFFGetField(m_tiff, TIFFTAG_TILELENGTH, &blocks.sizeY);
        } else {
            TIFFGetFieldDefaulted(m_tiff, TIFFTAG_ROWSPERSTRIP, &blocks.sizeY);
            blocks.sizeY = static_cast<std::uint32_t>(std::min<unsigned long>(blocks.sizeY, picture.sizeY));
        }
        if (m_isSeparate && m_isColour)
            blocks.planes = 3;
        blocks.step = (m_isSeparate ? 1 : m_channels) * bytesPerSample(m_sampleType);
        blocks.bytes = checkedBytes(blocks.sizeX, blocks.sizeY, blocks.step);
        return blocks;
    }

    std::uint32_t numberOfBlock(const Blocks& blocks, unsigned long x, unsigned long y, unsigned plane) const
    {
        const auto column = static_cast<std::uint32_t>(x), row = static_cast<std::uint32_t>(y);
        const auto sample = static_cast<std::uint16_t>(plane);
        return blocks.isTiled ? TIFFComputeTile(m_tiff, column, row, 0, sample) : TIFFComputeStrip(m_tiff, row, sample);
    }

    /// Bytes of the blocks that begin in this row: the last strip may be lower than others, tiles have one size.
    static std::size_t bytesFromRow(const Picture& picture, const Blocks& blocks, unsigned long y)
    {
        if (blocks.isTiled)
            return blocks.bytes;
        return std::min<unsigned long>(blocks.sizeY, picture.sizeY - y) * blocks.sizeX * blocks.step;
    }

    /// Refuses blocks that cannot come out of what the file has of them, before memory is filled for any. The codec itself
    /// believes every number, and takes blocks that the file does not name from its beginning. Returns the bytes that the
    /// file has of them.
    std::uint64_t checkBlocks(const Picture& picture, const Blocks& blocks) const
    {
        const std::uint64_t gain = mostGain(m_compression);
        std::uint64_t total = 0, held = 0;
        for (unsigned long y = 0; y < picture.sizeY; y += blocks.sizeY) {
            const std::uint64_t bytes = bytesFromRow(picture, blocks, y);
            for (unsigned long x = 0; x < picture.sizeX; x += blocks.sizeX) {
                for (unsigned plane = 0; plane < blocks.planes; ++plane)
                    held += checkBlock(blocks.isTiled, numberOfBlock(blocks, x, y, plane), bytes, gain);
                total += blocks.planes * bytes;
            }
        }
        // Blocks that lie over one another have no more bytes than the file.
        if (gain != 0)
            requireRoomFor(total / gain, m_fileBytes, picture.sizeX, picture.sizeY);
        return held;
    }

    std::uint64_t checkBlock(bool isTiled, std::uint32_t number, std::uint64_t bytes, std::uint64_t gain) const
    {
        if (m_compression == COMPRESSION_OJPEG)
            return 0;  // its data may lie elsewhere
        const std::uint64_t start = TIFFGetStrileOffset(m_tiff, number);
        const std::uint64_t held = TIFFGetStrileByteCount(m_tiff, number);
        const std::string name = (isTiled ? "tile " : "strip ") + std::to_string(number);
        constexpr std::uint64_t headerBytes = 8;
        if (start < headerBytes || held == 0)
            throw Refusal(name + " is missing");
        if (start > m_fileBytes || held > m_fileBytes - start) {
            throw Refusal(name + " of " + std::to_string(held) + " bytes from byte " + std::to_string(start)
                          + " on ends behind the file of " + std::to_string(m_fileBytes));
        }
        if (gain != 0 && bytes / gain > held) {
            throw Refusal(name + " of " + std::to_string(held) + " bytes cannot hold the " + std::to_string(bytes)
                          + " that it should");
        }
        return held;
    }

    void readBlocks(Picture& picture)
    {
        const Blocks blocks = findBlocks(picture);
        const std::size_t pictureBytes = checkedBytes(picture.sizeX, picture.sizeY, bytesPerSample(m_sampleType));
        checkBlocks(picture, blocks);
        requireMemoryFor(pictureBytes + blocks.planes * blocks.bytes, availableMemory(), picture.sizeX, picture.sizeY);
        picture.samples.reserve(pictureBytes);
        std::array<RawBytes, 3> raw;
        std::generate_n(raw.begin(), blocks.planes, [&] { return allocateRaw(blocks.bytes); });

        for (unsigned long y = 0; y < picture.sizeY; y += blocks.sizeY) {
            const unsigned long rows = std::min<unsigned long>(blocks.sizeY, picture.sizeY - y);
            for (unsigned long x = 0; x < picture.sizeX; x += blocks.sizeX) {
                for (unsigned plane = 0; plane < blocks.planes; ++plane) {
                    readBlock(blocks.isTiled, numberOfBlock(blocks, x, y, plane), raw[plane].get(),
                              static_cast<tmsize_t>(bytesFromRow(picture, blocks, y)));
                }
                // Grown behind each block, so that a damaged file fails before memory for all of it is filled.
                picture.samples.resize((y + rows) * picture.rowBytes());
                const unsigned long columns = std::min<unsigned long>(blocks.sizeX, picture.sizeX - x);
                for (unsigned long row = 0; row < rows; ++row) {
                    unsigned char* out = picture.samples.data() + (y + row) * picture.rowBytes()
                                         + x * bytesPerSample(m_sampleType);
                    convertRow(m_sampleType, sourceRow(raw, row * blocks.sizeX * blocks.step, blocks.step), columns,
                               m_isInverted, out);
                }
            }
        }
    }

    void readBlock(bool isTiled, std::uint32_t number, void* block, tmsize_t bytes)
    {
        m_warning = CodecMessage();
        const tmsize_t got = isTiled ? TIFFReadEncodedTile(m_tiff, number, block, bytes)
                                     : TIFFReadEncodedStrip(m_tiff, number, block, bytes);
        if (got != bytes) {
            m_error.keep("a strip or tile is shorter than the picture");
            m_error.refuse();
        }
        // JPEG inside TIFF goes on with grey where data is missing, and only warns.
        if (m_compression == COMPRESSION_JPEG && !m_warning.isEmpty())
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

    const std::uint64_t m_fileBytes;
    CodecMessage m_error;
    CodecMessage m_warning;
    CodecMessage m_damage;
    TIFF* m_tiff = nullptr;
    SampleType m_sampleType = SampleType::UInt8;
    unsigned m_channels = 1;
    unsigned m_compression = COMPRESSION_NONE;
    bool m_isSeparate = false;
    bool m_isColour = false;
    bool m_isInverted = false;
    bool m_isPalette = false;
};

}  // namespace

Picture readTiff(const std::string& path, std::uint64_t fileBytes)
{
    return TiffReader(path, fileBytes).read();
}

Volume readTiffVolume(const std::string& path, std::uint64_t fileBytes)
{
    return TiffReader(path, fileBytes).readSlices();
}

}  // namespace orvik::examples::codec
