#include "PictureIo.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <jpeglib.h>
#include <png.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tiffio.h>
#include <unistd.h>

namespace orvik::examples {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<unsigned char>;
using Values = std::vector<double>;

template<typename Sample>
Bytes bytesOf(const std::vector<Sample>& samples)
{
    const auto* first = reinterpret_cast<const unsigned char*>(samples.data());
    return Bytes(first, first + samples.size() * sizeof(Sample));
}

Values valuesOf(const Picture& picture)
{
    Values values;
    for (unsigned long y = 0; y < picture.sizeY; ++y)
        for (unsigned long x = 0; x < picture.sizeX; ++x)
            values.push_back(picture.valueAt(x, y));
    return values;
}

/// `data` is what the codec takes: packed rows, 16 bit samples big endian. Without data the file ends where
/// they would begin.
void makePng(const std::string& path, int sizeX, int sizeY, int depth, int colourType, const Bytes& data,
             const std::vector<png_color>& palette = {}, int interlace = PNG_INTERLACE_NONE)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, sizeX, sizeY, depth, colourType, interlace, 0, 0);
    if (!palette.empty()) {
        png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
        const Bytes alpha(palette.size(), 100);
        png_set_tRNS(png, info, alpha.data(), static_cast<int>(alpha.size()), nullptr);
    }
    png_write_info(png, info);
    const std::size_t rowBytes = data.size() / sizeY;
    const int passes = data.empty() ? 0 : png_set_interlace_handling(png);
    for (int i = 0; i < passes * sizeY; ++i)
        png_write_row(png, data.data() + i % sizeY * rowBytes);
    data.empty() ? png_write_chunk(png, reinterpret_cast<png_const_bytep>("IDAT"), nullptr, 0)
                 : png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
}

/// Grey, or red, is 100 + x; green is 200 and blue 30.
void makeJpeg(const std::string& path, unsigned size, int channels, bool progressive)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    jpeg_error_mgr errors;
    jpeg_compress_struct codec = {};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    jpeg_stdio_dest(&codec, file);
    codec.image_width = codec.image_height = size;
    codec.input_components = channels;
    codec.in_color_space = channels == 1 ? JCS_GRAYSCALE : channels == 3 ? JCS_RGB : JCS_CMYK;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, 100, TRUE);
    if (progressive)
        jpeg_simple_progression(&codec);
    jpeg_start_compress(&codec, TRUE);
    Bytes row(size * channels, 30);
    for (unsigned x = 0; x < size; ++x) {
        row[x * channels] = static_cast<unsigned char>(100 + x);
        if (channels > 1)
            row[x * channels + 1] = 200;
    }
    for (unsigned y = 0; y < size; ++y) {
        JSAMPROW rows = row.data();
        jpeg_write_scanlines(&codec, &rows, 1);
    }
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    std::fclose(file);
}

struct TiffLayout
{
    std::uint32_t sizeX = 1;
    std::uint32_t sizeY = 1;
    int depth = 8;
    int format = SAMPLEFORMAT_UINT;
    int photometric = PHOTOMETRIC_MINISBLACK;
    int channels = 1;
    bool separate = false;
    std::uint32_t blockX = 0;  // 0: strips
    std::uint32_t blockY = 1;
    const char* mode = "w";
    int compression = COMPRESSION_NONE;
};

/// `blocks` are the strips or tiles in file order, of equal length except that the last may be shorter.
void makeTiff(const std::string& path, const TiffLayout& layout, const Bytes& blocks, std::size_t blockBytes)
{
    TIFF* tiff = TIFFOpen(path.c_str(), layout.mode);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, layout.sizeX);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, layout.sizeY);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, layout.depth);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, layout.format);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, layout.channels);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, layout.separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, layout.compression);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, layout.photometric);
    if (layout.photometric == PHOTOMETRIC_YCBCR) {
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        TIFFSetField(tiff, TIFFTAG_JPEGQUALITY, 100);
    }
    if (layout.photometric == PHOTOMETRIC_PALETTE) {
        std::vector<std::uint16_t> red(256), green(256), blue(256);
        red[7] = green[8] = blue[9] = 65535;
        TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
    }
    if (layout.blockX > 0) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, layout.blockX);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, layout.blockY);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, layout.blockY);
    }
    std::uint32_t index = 0;
    for (std::size_t at = 0; at < blocks.size(); at += blockBytes, ++index) {
        Bytes block(blocks.begin() + at, blocks.begin() + std::min(blocks.size(), at + blockBytes));
        layout.blockX > 0 ? TIFFWriteEncodedTile(tiff, index, block.data(), block.size())
                          : TIFFWriteEncodedStrip(tiff, index, block.data(), block.size());
    }
    TIFFClose(tiff);
}

Bytes readBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

void writeBytes(const std::string& path, const Bytes& bytes, std::size_t count)
{
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), count);
}

class PictureIo : public testing::Test
{
protected:
    PictureIo() : m_folder(fs::temp_directory_path() / ("PictureIoTest-" + std::to_string(getpid())))
    {
        fs::create_directory(m_folder);
        testing::internal::CaptureStderr();
    }

    ~PictureIo() override
    {
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "a codec printed";
        fs::remove_all(m_folder);
    }

    std::string in(const std::string& name) const
    {
        return (m_folder / name).string();
    }

    /// The text of the error that reading gives, without the part that names the file.
    static std::string reasonOf(const std::string& path)
    {
        try {
            readPicture(path);
        } catch (const PictureError& error) {
            const std::string start = "cannot read '" + path + "': ";
            EXPECT_EQ(std::string(error.what()).substr(0, start.size()), start);
            return std::string(error.what()).substr(start.size());
        }
        return "no error";
    }

    std::size_t filesInFolder() const
    {
        return std::distance(fs::directory_iterator(m_folder), fs::directory_iterator());
    }

    fs::path m_folder;
};

TEST_F(PictureIo, WritesWhatItReads)
{
    // Rows of three with a byte of padding, once from the top and once from the bottom.
    const Bytes grey = {0, 1, 2, 99, 253, 254, 255, 99};
    writeGreyPng(in("down.png"), 3, 2, grey.data(), 4);
    EXPECT_EQ(readPicture(in("down.png")).samples, (Bytes{0, 1, 2, 253, 254, 255}));
    writeGreyPng(in("down.png"), 3, 2, grey.data() + 4, -4);
    EXPECT_EQ(readPicture(in("down.png")).samples, (Bytes{253, 254, 255, 0, 1, 2}));

    // The weights alone, and a sum of 0.5 that must go up: 0.299 * 2 + 0.587 * 238 + 0.114 * 53 = 146.346 is no half,
    // 0.299 * 0 + 0.587 * 0 + 0.114 * 250 = 28.5 is.
    const Bytes colour = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255, 2, 238, 53, 0, 0, 250};
    writeRgbPng(in("colour.png"), 6, 1, colour.data(), 18);
    EXPECT_EQ(readPicture(in("colour.png")).samples, (Bytes{76, 150, 29, 255, 146, 29}));
    EXPECT_EQ(filesInFolder(), 2U);
}

TEST_F(PictureIo, ReadsEveryKindOfPng)
{
    makePng(in("1"), 10, 2, 1, PNG_COLOR_TYPE_GRAY, {0xA0, 0x40, 0x00, 0x80});
    EXPECT_EQ(readPicture(in("1")).samples,
              (Bytes{255, 0, 255, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 255, 0}));
    makePng(in("4"), 3, 1, 4, PNG_COLOR_TYPE_GRAY, {0x1F, 0x80});
    EXPECT_EQ(readPicture(in("4")).samples, (Bytes{17, 255, 136}));
    makePng(in("palette"), 4, 1, 2, PNG_COLOR_TYPE_PALETTE, {0x1B}, {{9, 9, 9}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}});
    EXPECT_EQ(readPicture(in("palette")).samples, (Bytes{9, 76, 150, 29}));
    makePng(in("alpha"), 2, 1, 8, PNG_COLOR_TYPE_GRAY_ALPHA, {10, 0, 20, 128});
    EXPECT_EQ(readPicture(in("alpha")).samples, (Bytes{10, 20}));

    makePng(in("16"), 2, 1, 16, PNG_COLOR_TYPE_GRAY, {0x12, 0x34, 0xFF, 0xFE});
    const Picture deep = readPicture(in("16"));
    EXPECT_EQ(deep.sampleType, SampleType::UInt16);
    EXPECT_EQ(valuesOf(deep), (Values{0x1234, 0xFFFE}));
    // Green 50000 is 29350 after weighting; the alpha channel must not shift the next pixel.
    makePng(in("16rgba"), 2, 1, 16, PNG_COLOR_TYPE_RGB_ALPHA,
            {0, 0, 0xC3, 0x50, 0, 0, 0x12, 0x34, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0});
    EXPECT_EQ(valuesOf(readPicture(in("16rgba"))), (Values{29350, 65535}));

    Bytes ramp(9 * 7);
    for (std::size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<unsigned char>(i * 4);
    makePng(in("interlaced"), 9, 7, 8, PNG_COLOR_TYPE_GRAY, ramp, {}, PNG_INTERLACE_ADAM7);
    EXPECT_EQ(readPicture(in("interlaced")).samples, ramp);
}

TEST_F(PictureIo, ReadsJpegAsGrey)
{
    for (const bool progressive : {false, true}) {
        makeJpeg(in("grey"), 40, 1, progressive);
        makeJpeg(in("colour"), 40, 3, progressive);
        const Picture grey = readPicture(in("grey"));
        const Picture colour = readPicture(in("colour"));
        ASSERT_EQ(grey.samples.size(), 1600U);
        ASSERT_EQ(colour.samples.size(), 1600U);
        EXPECT_NEAR(grey.valueAt(39, 20), 139, 2);
        EXPECT_NEAR(colour.valueAt(0, 0), 0.299 * 100 + 0.587 * 200 + 0.114 * 30, 2);
        EXPECT_NEAR(colour.valueAt(39, 39), 0.299 * 139 + 0.587 * 200 + 0.114 * 30, 2);
    }
}

TEST_F(PictureIo, ReadsEverySampleTypeOfTiffInBothByteOrders)
{
    for (const char* mode : {"wl", "wb", "wb8"}) {
        TiffLayout layout;
        layout.sizeX = 2;
        layout.sizeY = 3;
        layout.blockY = 2;  // the last strip is shorter
        layout.mode = mode;
        makeTiff(in("t"), layout, {1, 2, 3, 4, 5, 255}, 4);
        EXPECT_EQ(readPicture(in("t")).samples, (Bytes{1, 2, 3, 4, 5, 255}));

        layout.depth = 16;
        makeTiff(in("t"), layout, bytesOf<std::uint16_t>({1, 256, 65535, 4, 5, 6}), 8);
        EXPECT_EQ(valuesOf(readPicture(in("t"))), (Values{1, 256, 65535, 4, 5, 6}));
        layout.format = SAMPLEFORMAT_INT;
        makeTiff(in("t"), layout, bytesOf<std::int16_t>({-32768, -2, 32767, 4, 5, 6}), 8);
        EXPECT_EQ(valuesOf(readPicture(in("t"))), (Values{-32768, -2, 32767, 4, 5, 6}));
        layout.depth = 32;
        layout.format = SAMPLEFORMAT_IEEEFP;
        layout.compression = COMPRESSION_LZW;
        makeTiff(in("t"), layout, bytesOf<float>({-0.5F, 1e30F, 3, 4, 5, 6}), 16);
        EXPECT_EQ(valuesOf(readPicture(in("t"))), (Values{-0.5, 1e30F, 3, 4, 5, 6}));
    }
}

TEST_F(PictureIo, ReadsTiffTilesPlanesAndColours)
{
    // 18 x 17 samples in 2 x 2 tiles of 16 x 16: three of them hang over the edge.
    TiffLayout tiled;
    tiled.sizeX = 18;
    tiled.sizeY = 17;
    tiled.blockX = tiled.blockY = 16;
    tiled.compression = COMPRESSION_ADOBE_DEFLATE;
    for (const int channels : {1, 3}) {
        for (const bool separate : {false, true}) {
            tiled.channels = channels;
            tiled.separate = separate;
            tiled.photometric = channels == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
            // red = 10 x, green = 10 y, blue = 250
            Bytes blocks;
            const int planes = separate ? channels : 1;
            for (int i = 0; i < planes * 4 * 256 * channels / planes; ++i) {
                const int channel = separate ? i / 1024 : i % channels;
                const int pixel = separate ? i % 1024 : i / channels;
                const int x = pixel / 256 % 2 * 16 + pixel % 16;
                const int y = pixel / 512 * 16 + pixel / 16 % 16;
                blocks.push_back(static_cast<unsigned char>(channel == 0 ? 10 * x : channel == 1 ? 10 * y : 250));
            }
            makeTiff(in("tiled"), tiled, blocks, separate ? 256 : 256 * channels);
            const Picture picture = readPicture(in("tiled"));
            ASSERT_EQ(picture.samples.size(), 18U * 17U);
            for (const unsigned long at : {0, 15, 16}) {
                const double expected = channels == 1 ? 10.0 * (at + 1) : 2.99 * (at + 1) + 5.87 * at + 28.5;
                EXPECT_EQ(picture.valueAt(at + 1, at), std::floor(expected + 0.5 + 1e-9)) << channels << separate;
            }
        }
    }

    TiffLayout layout;
    layout.sizeX = 3;
    layout.photometric = PHOTOMETRIC_MINISWHITE;
    makeTiff(in("t"), layout, {0, 1, 255}, 3);
    EXPECT_EQ(readPicture(in("t")).samples, (Bytes{255, 254, 0}));
    layout.photometric = PHOTOMETRIC_PALETTE;
    makeTiff(in("t"), layout, {7, 8, 9}, 3);
    EXPECT_EQ(readPicture(in("t")).samples, (Bytes{76, 150, 29}));

    layout = TiffLayout();
    layout.channels = 3;
    layout.photometric = PHOTOMETRIC_RGB;
    layout.depth = 16;
    layout.format = SAMPLEFORMAT_INT;
    makeTiff(in("t"), layout, bytesOf<std::int16_t>({-3, -3, -9}), 6);  // -3.684
    EXPECT_EQ(valuesOf(readPicture(in("t"))), Values{-4});
    layout.separate = true;
    layout.depth = 32;
    layout.format = SAMPLEFORMAT_IEEEFP;
    makeTiff(in("t"), layout, bytesOf<float>({-2, 4, 8}), 4);
    EXPECT_FLOAT_EQ(static_cast<float>(readPicture(in("t")).valueAt(0, 0)), 2.662F);

    layout = TiffLayout();
    layout.sizeX = layout.sizeY = layout.blockY = 16;
    layout.channels = 3;
    layout.photometric = PHOTOMETRIC_YCBCR;
    layout.compression = COMPRESSION_JPEG;
    Bytes red(16 * 16 * 3, 0);
    for (std::size_t i = 0; i < red.size(); i += 3)
        red[i] = 255;
    makeTiff(in("t"), layout, red, red.size());
    EXPECT_NEAR(readPicture(in("t")).valueAt(15, 15), 76, 2);
}

TEST_F(PictureIo, RefusesWhatIsNoPicture)
{
    EXPECT_EQ(reasonOf(in("missing")), "No such file or directory");
    EXPECT_EQ(reasonOf(m_folder.string()), "Is a directory");
    EXPECT_EQ(reasonOf("/dev/null"), "not a regular file");
    writeBytes(in("empty.png"), {}, 0);
    EXPECT_EQ(reasonOf(in("empty.png")), "the file is empty");
    writeBytes(in("text.tif"), {'t', 'e', 'x', 't'}, 4);
    EXPECT_EQ(reasonOf(in("text.tif")), "neither a PNG, a JPEG nor a TIFF file");
}

TEST_F(PictureIo, RefusesKindsItCannotConvert)
{
    makeJpeg(in("cmyk"), 16, 4, false);
    EXPECT_EQ(reasonOf(in("cmyk")), "Unsupported color conversion request");
    TiffLayout layout;
    layout.depth = 1;
    makeTiff(in("t"), layout, {128}, 1);
    EXPECT_EQ(reasonOf(in("t")), "samples of 1 bit and sample format 1 are not supported");
    layout.depth = 8;
    layout.channels = 4;
    layout.photometric = PHOTOMETRIC_SEPARATED;
    makeTiff(in("t"), layout, {1, 2, 3, 4}, 4);
    EXPECT_EQ(reasonOf(in("t")), "colours of photometric interpretation 5 at 8 bit are not supported");
}

TEST_F(PictureIo, RefusesTruncatedFilesAtEveryLength)
{
    Bytes noise(32 * 32);
    unsigned state = 1;
    for (unsigned char& sample : noise) {
        state = state * 1103515245 + 12345;
        sample = static_cast<unsigned char>(state >> 16);
    }
    writeGreyPng(in("png"), 32, 32, noise.data(), 32);
    makePng(in("interlaced"), 32, 32, 8, PNG_COLOR_TYPE_GRAY, noise, {}, PNG_INTERLACE_ADAM7);
    makeJpeg(in("jpeg"), 24, 3, false);
    makeJpeg(in("progressive"), 24, 3, true);
    TiffLayout layout;
    layout.sizeX = layout.sizeY = 32;
    layout.blockY = 16;
    makeTiff(in("tiff"), layout, noise, 512);
    layout.photometric = PHOTOMETRIC_PALETTE;  // written after the samples, and the codec does without
    makeTiff(in("palette"), layout, noise, 512);

    for (const char* name : {"png", "interlaced", "jpeg", "progressive", "tiff", "palette"}) {
        const Bytes whole = readBytes(in(name));
        ASSERT_EQ(reasonOf(in(name)), "no error");
        for (std::size_t length = 0; length < whole.size(); ++length) {
            writeBytes(in("cut"), whole, length);
            ASSERT_NE(reasonOf(in("cut")), "no error") << name << " cut to " << length << " of " << whole.size();
        }
    }
    writeBytes(in("cut"), readBytes(in("png")), 300);
    EXPECT_EQ(reasonOf(in("cut")), "the file ends too early");
    writeBytes(in("cut"), readBytes(in("jpeg")), readBytes(in("jpeg")).size() - 20);
    EXPECT_EQ(reasonOf(in("cut")), "Premature end of JPEG file");
}

TEST_F(PictureIo, RefusesDamagedFilesWithTheWordsOfTheCodec)
{
    const Bytes grey(64 * 64, 77);
    writeGreyPng(in("png"), 64, 64, grey.data(), 64);
    Bytes bytes = readBytes(in("png"));
    bytes[bytes.size() - 14] ^= 0xFF;  // the checksum after the last samples
    writeBytes(in("png"), bytes, bytes.size());
    EXPECT_EQ(reasonOf(in("png")), "IDAT: CRC error");

    makeJpeg(in("jpeg"), 64, 1, false);
    bytes = readBytes(in("jpeg"));
    std::fill(bytes.end() - 60, bytes.end() - 10, static_cast<unsigned char>(0x55));
    writeBytes(in("jpeg"), bytes, bytes.size());
    EXPECT_NE(reasonOf(in("jpeg")).find("Corrupt JPEG data"), std::string::npos) << reasonOf(in("jpeg"));

    // A strip of JPEG data cut short inside a sound TIFF file: the codec only warns and paints grey.
    TiffLayout layout;
    layout.sizeX = layout.sizeY = layout.blockY = 64;
    layout.channels = 3;
    layout.photometric = PHOTOMETRIC_YCBCR;
    layout.compression = COMPRESSION_JPEG;
    Bytes rising(64 * 64 * 3);
    for (std::size_t i = 0; i < rising.size(); ++i)
        rising[i] = static_cast<unsigned char>(i * i / 7);
    makeTiff(in("tiff"), layout, rising, rising.size());
    TIFF* tiff = TIFFOpen(in("tiff").c_str(), "r+");
    Bytes strip(TIFFRawStripSize(tiff, 0));
    TIFFReadRawStrip(tiff, 0, strip.data(), strip.size());
    strip[strip.size() / 2] = 0xFF;
    strip[strip.size() / 2 + 1] = 0xD9;
    TIFFWriteRawStrip(tiff, 0, strip.data(), strip.size());
    TIFFClose(tiff);
    EXPECT_NE(reasonOf(in("tiff")).find("Corrupt JPEG data"), std::string::npos) << reasonOf(in("tiff"));
}

TEST_F(PictureIo, RefusesAbsurdSizesWithoutFillingMemory)
{
    makeTiff(in("tiff"), TiffLayout(), {1}, 1);
    TIFF* tiff = TIFFOpen(in("tiff").c_str(), "r+");
    for (const auto tag : {TIFFTAG_IMAGEWIDTH, TIFFTAG_IMAGELENGTH, TIFFTAG_ROWSPERSTRIP})
        TIFFSetField(tiff, tag, 0x7FFFFFF0U);
    TIFFRewriteDirectory(tiff);
    TIFFClose(tiff);
    EXPECT_EQ(reasonOf(in("tiff")), "the picture is too large (2147483632 x 2147483632)");

    makeJpeg(in("jpeg"), 16, 1, false);
    Bytes bytes = readBytes(in("jpeg"));
    const Bytes frame = {0xFF, 0xC0, 0, 11, 8, 0, 16, 0, 16};
    const auto at = std::search(bytes.begin(), bytes.end(), frame.begin(), frame.end());
    ASSERT_NE(at, bytes.end());
    std::fill(at + 5, at + 9, static_cast<unsigned char>(0xFA));
    writeBytes(in("jpeg"), bytes, bytes.size());
    EXPECT_EQ(reasonOf(in("jpeg")), "the file is too short for a picture of 64250 x 64250");

    makePng(in("png"), 1000000, 1000000, 8, PNG_COLOR_TYPE_GRAY, {});
    EXPECT_EQ(reasonOf(in("png")), "the picture is too large (1000000 x 1000000)");
    makePng(in("png"), 100000, 100000, 8, PNG_COLOR_TYPE_GRAY, {});
    EXPECT_EQ(reasonOf(in("png")), "the file is too short for a picture of 100000 x 100000");
}

TEST_F(PictureIo, LeavesNothingBehindWhenWritingFails)
{
    const Bytes grey(2000, 1);
    const auto reasonOfWriting = [&](const std::string& path, unsigned long sizeX = 2) {
        try {
            writeGreyPng(path, sizeX, 2, grey.data(), 1);
        } catch (const PictureError& error) {
            return std::string(error.what());
        }
        return std::string("no error");
    };
    EXPECT_EQ(reasonOfWriting(in("no/such.png")),
              "cannot write '" + in("no/such.png") + "': No such file or directory");
    EXPECT_EQ(reasonOfWriting(m_folder.string()), "cannot write '" + m_folder.string() + "': Is a directory");
    // A pipe stands for devices, which a faulty writer would replace for the whole machine.
    ASSERT_EQ(mkfifo(in("pipe").c_str(), 0600), 0);
    EXPECT_EQ(reasonOfWriting(in("pipe")), "cannot write '" + in("pipe") + "': not a regular file");
    fs::remove(in("pipe"));
    EXPECT_NE(reasonOfWriting(in("empty"), 0), "no error");
    // Nameable while it is written, not when it is renamed.
    EXPECT_NE(reasonOfWriting(in(std::string(300, 'n'))).find("File name too long"), std::string::npos);
    EXPECT_EQ(filesInFolder(), 0U);

    // A full disk, as a limit on the size of a file: the picture that was there stays.
    ASSERT_EQ(reasonOfWriting(in("kept.png")), "no error");
    const Bytes before = readBytes(in("kept.png"));
    rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = old;
    small.rlim_cur = 20;
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string reason = reasonOfWriting(in("kept.png"), 1000);
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(reason, "cannot write '" + in("kept.png") + "': File too large");
    EXPECT_EQ(readBytes(in("kept.png")), before);
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST(PictureDisplay, StretchesTheFiniteRange)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const auto real = [](const std::vector<float>& values)
    { return toDisplay8(Picture{values.size(), 1, SampleType::Real32, bytesOf(values)}); };
    EXPECT_EQ(real({-1, 0, 1, NAN, infinity, -infinity}), (Bytes{0, 128, 255, 0, 255, 0}));
    EXPECT_EQ(real({5, 5, NAN}), (Bytes{0, 0, 0}));
    EXPECT_EQ(real({-3e38F, 3e38F}), (Bytes{0, 255}));
    EXPECT_EQ(real({}), Bytes());

    EXPECT_EQ(toDisplay8({3, 1, SampleType::UInt8, {7, 8, 9}}), (Bytes{7, 8, 9}));
    EXPECT_EQ(toDisplay8({2, 1, SampleType::Int16, bytesOf<std::int16_t>({32767, -32768})}), (Bytes{255, 0}));
    EXPECT_EQ(toDisplay8({1, 2, SampleType::UInt16, bytesOf<std::uint16_t>({65535, 65534})}), (Bytes{255, 0}));
    EXPECT_THROW(toDisplay8({2, 2, SampleType::UInt8, {7}}), std::invalid_argument);
}

}  // namespace
}  // namespace orvik::examples
