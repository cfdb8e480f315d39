#include "Interruption.h"
#include "VolumeCodec.h"

#include <algorithm>
#include <limits>
#include <new>

#include <tiffio.h>
#include <unistd.h>

namespace orvik::examples::codec {
namespace {

class TiffVolumeWriter
{
public:
    TiffVolumeWriter(std::FILE* file, const Volume& volume) : m_volume(volume)
    {
        TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
        if (options == nullptr)
            throw std::bad_alloc();
        TIFFOpenOptionsSetErrorHandlerExtR(options, keepError, &m_error);
        TIFFOpenOptionsSetWarningHandlerExtR(options, passOver, nullptr);
        // Offsets of 32 bits reach as far as 4 GiB; deflating makes samples longer by a share of a thousand at most.
        const bool isLarge = volume.samples.size() / 1000 * 1002 > 0xF0000000;
        m_tiff = TIFFFdOpenExt(dup(fileno(file)), "volume", isLarge ? "w8" : "w", options);
        TIFFOpenOptionsFree(options);
        if (m_tiff == nullptr)
            m_error.refuse();
    }

    ~TiffVolumeWriter() { TIFFClose(m_tiff); }

    TiffVolumeWriter(const TiffVolumeWriter&) = delete;
    TiffVolumeWriter& operator=(const TiffVolumeWriter&) = delete;

    void write()
    {
        for (unsigned long z = 0; z < m_volume.sizeZ; ++z) {
            throwIfInterrupted();
            describePage(z);
            writeRows(z);
            if (TIFFWriteDirectory(m_tiff) != 1)
                m_error.refuse();
        }
        if (!m_error.isEmpty())
            m_error.refuse();
    }

private:
    static int keepError(TIFF*, void* message, const char*, const char* format, va_list arguments)
    {
        static_cast<CodecMessage*>(message)->keep(format, arguments);
        return 1;  // handled: the process-wide handler, which prints, is not asked
    }

    static int passOver(TIFF*, void*, const char*, const char*, va_list) { return 1; }

    std::size_t rowBytes() const { return m_volume.sizeX * bytesPerSample(m_volume.sampleType); }

    /// Some 256 KiB each.
    unsigned long rowsPerStrip() const { return std::clamp<unsigned long>((1 << 18) / rowBytes(), 1, m_volume.sizeY); }

    template<class... Values>
    void set(std::uint32_t tag, Values... values)
    {
        if (TIFFSetField(m_tiff, tag, values...) != 1)
            m_error.refuse();
    }

    void describePage(unsigned long z)
    {
        const bool isSigned =
            withSampleType(m_volume.sampleType, [](auto sample) { return std::is_signed_v<decltype(sample)>; });
        set(TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(m_volume.sizeX));
        set(TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(m_volume.sizeY));
        set(TIFFTAG_BITSPERSAMPLE, static_cast<int>(8 * bytesPerSample(m_volume.sampleType)));
        set(TIFFTAG_SAMPLEFORMAT, m_volume.sampleType == SampleType::Real32 ? SAMPLEFORMAT_IEEEFP
                                  : isSigned                                ? SAMPLEFORMAT_INT
                                                                            : SAMPLEFORMAT_UINT);
        set(TIFFTAG_SAMPLESPERPIXEL, 1);
        set(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        set(TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
        set(TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rowsPerStrip()));
        set(TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
        if (m_volume.sizeZ <= 65535)
            set(TIFFTAG_PAGENUMBER, static_cast<int>(z), static_cast<int>(m_volume.sizeZ));
        if (m_volume.space.spacing) {
            const auto& spacing = *m_volume.space.spacing;
            set(TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
            set(TIFFTAG_XRESOLUTION, 10 / spacing[0]);
            set(TIFFTAG_YRESOLUTION, 10 / spacing[1]);
            char text[64];
            std::snprintf(text, sizeof text, tiffSpacingPrint, spacing[2]);
            set(TIFFTAG_IMAGEDESCRIPTION, static_cast<const char*>(text));
        }
    }

    void writeRows(unsigned long z)
    {
        const unsigned long rows = rowsPerStrip();
        std::vector<unsigned char> strip;  // the codec may change what it is given
        std::uint32_t number = 0;
        for (unsigned long y = 0; y < m_volume.sizeY; y += rows, ++number) {
            const auto first = m_volume.samples.begin() + static_cast<std::ptrdiff_t>((z * m_volume.sizeY + y) * rowBytes());
            strip.assign(first, first + static_cast<std::ptrdiff_t>(std::min(rows, m_volume.sizeY - y) * rowBytes()));
            const auto bytes = static_cast<tmsize_t>(strip.size());
            if (TIFFWriteEncodedStrip(m_tiff, number, strip.data(), bytes) != bytes)
                m_error.refuse();
        }
    }

    const Volume& m_volume;
    CodecMessage m_error;
    TIFF* m_tiff = nullptr;
};

}  // namespace

void writeTiffVolume(std::FILE* file, const Volume& volume)
{
    constexpr unsigned long most = std::numeric_limits<std::int32_t>::max();
    if (volume.sizeX > most || volume.sizeY > most)
        throw Refusal("no TIFF file has pages of " + sizeText(volume.sizeX, volume.sizeY));
    TiffVolumeWriter(file, volume).write();
}

}  // namespace orvik::examples::codec
