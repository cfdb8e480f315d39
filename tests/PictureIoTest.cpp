#include "OutputFiles.h"
#include "PictureCodec.h"
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
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <jpeglib.h>
#include <png.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tiffio.h>
#include <unistd.h>

namespace orvik::examples { namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<unsigned char>;
using Values = std::vector<double>;

using Tags = std::map<int, int>;

const Tags g_jpegInTiff = {
    {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_YCBCR}, {TIFFTAG_SAMPLESPERPIXEL, 3}, {TIFFTAG_COMPRESSION, COMPRESSION_JPEG}};
const Tags g_colourTiff = {{TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB}, {TIFFTAG_SAMPLESPERPIXEL, 3}};

template<typename Sample>
Bytes bytesOf(const std::vector<Sample>& samples)
{
    const auto* first = reinterpret_cast<const unsigned char*>(samples.data());
    return Bytes(first, first + samples.size() * sizeof(Sample));
}

Bytes readBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

Bytes noise(std::size_t count)
{
    Bytes bytes(count);
    std::mt19937 random;
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<unsigned char>(random()); });
    return bytes;
}

/// Files are made in a folder of their own, one after the other under the same name, and nothing may be printed.
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

    std::string in(const std::string& name) const { return (m_folder / name).string(); }

    std::string written(const Bytes& bytes) const
    {
        fs::remove(in("bytes"));  // file systems wait for the disk when a file is cut and written anew
        std::ofstream(in("bytes"), std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return in("bytes");
    }

    /// `data` is what the codec takes: packed rows, 16 bit samples big endian. Without data the file ends where
    /// they would begin.
    std::string png(int sizeX, int sizeY, int depth, int colourType, Bytes data, int interlace = PNG_INTERLACE_NONE) const
    {
        std::FILE* file = std::fopen(in("png").c_str(), "wb");
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_init_io(png, file);
        png_set_IHDR(png, info, sizeX, sizeY, depth, colourType, interlace, 0, 0);
        if (colourType == PNG_COLOR_TYPE_PALETTE) {
            const png_color palette[] = {{9, 9, 9}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
            png_set_PLTE(png, info, palette, 4);
            png_set_tRNS(png, info, Bytes(4, 100).data(), 4, nullptr);
        }
        if (data.empty()) {
            png_write_info(png, info);
            png_write_chunk(png, reinterpret_cast<png_const_bytep>("IDAT"), nullptr, 0);
        } else {
            std::vector<png_bytep> rows;
            for (int y = 0; y < sizeY; ++y)
                rows.push_back(&data[y * (data.size() / sizeY)]);
            png_set_rows(png, info, rows.data());
            png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
        }
        png_destroy_write_struct(&png, &info);
        std::fclose(file);
        return in("png");
    }

    /// Grey, or red, is 100 + x; green is 200 and blue 30.
    std::string jpeg(unsigned size, int channels, bool progressive = false) const
    {
        std::FILE* file = std::fopen(in("jpeg").c_str(), "wb");
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
        Bytes row;
        for (unsigned x = 0; x < size; ++x)
            for (int channel = 0; channel < channels; ++channel)
                row.push_back(static_cast<unsigned char>(channel == 0 ? 100 + x : channel == 1 ? 200 : 30));
        JSAMPROW rows = row.data();
        for (unsigned y = 0; y < size; ++y)
            jpeg_write_scanlines(&codec, &rows, 1);
        jpeg_finish_compress(&codec);
        jpeg_destroy_compress(&codec);
        std::fclose(file);
        return in("jpeg");
    }

    /// Grey in one strip, unless the tags say something else. `blocks` are the samples of strips or tiles in file order, of
    /// equal length except that the last may be shorter.
    template<typename Sample = unsigned char>
    std::string tiff(int sizeX, int sizeY, Tags tags, std::vector<Sample> blocks, std::size_t blockSize,
                     const char* mode = "w") const
    {
        const int ofWhole = std::is_signed<Sample>::value ? SAMPLEFORMAT_INT : SAMPLEFORMAT_UINT;
        tags.insert({{TIFFTAG_IMAGEWIDTH, sizeX},
                     {TIFFTAG_IMAGELENGTH, sizeY},
                     {TIFFTAG_BITSPERSAMPLE, 8 * sizeof(Sample)},
                     {TIFFTAG_SAMPLEFORMAT, std::is_floating_point<Sample>::value ? SAMPLEFORMAT_IEEEFP : ofWhole},
                     {TIFFTAG_SAMPLESPERPIXEL, 1},
                     {TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG},
                     {TIFFTAG_COMPRESSION, COMPRESSION_NONE},
                     {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK}});
        const bool isTiled = tags.count(TIFFTAG_TILEWIDTH) != 0;
        if (!isTiled)
            tags.insert({TIFFTAG_ROWSPERSTRIP, sizeY});
        if (tags[TIFFTAG_COMPRESSION] == COMPRESSION_JPEG)
            tags.insert({{TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB}, {TIFFTAG_JPEGQUALITY, 100}});
        TIFF* tiff = TIFFOpen(in("tiff").c_str(), mode);
        for (const auto& tag : tags)
            TIFFSetField(tiff, tag.first, tag.second);
        if (tags[TIFFTAG_PHOTOMETRIC] == PHOTOMETRIC_PALETTE) {
            std::vector<std::uint16_t> red(256), green(256), blue(256);
            red[7] = green[8] = blue[9] = 65535;
            TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
        }
        std::uint32_t index = 0;
        for (std::size_t at = 0; at < blocks.size(); at += blockSize, ++index)
            (isTiled ? TIFFWriteEncodedTile : TIFFWriteEncodedStrip)(
                tiff, index, &blocks[at], std::min(blocks.size() - at, blockSize) * sizeof(Sample));
        TIFFClose(tiff);
        return in("tiff");
    }

    static Values valuesOf(const std::string& path)
    {
        const Picture picture = readPicture(path);
        Values values;
        for (unsigned long i = 0; i < picture.sizeX * picture.sizeY; ++i)
            values.push_back(picture.valueAt(i % picture.sizeX, i / picture.sizeX));
        return values;
    }

    /// The text of the error that `f` gives, without the part that names the file.
    template<class F>
    static std::string reason(const std::string& start, F&& f)
    {
        try {
            f();
        } catch (const PictureError& error) {
            EXPECT_EQ(std::string(error.what()).substr(0, start.size()), start);
            return std::string(error.what()).substr(start.size());
        }
        return "no error";
    }

    static std::string reasonOf(const std::string& path)
    {
        return reason("cannot read '" + path + "': ", [&] { readPicture(path); });
    }

    std::size_t filesInFolder() const { return std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()); }

    fs::path m_folder;
};

TEST_F(PictureIo, WritesWhatItReads)
{
    // Rows of three with a byte of padding, once from the top and once from the bottom.
    const Bytes grey = {0, 1, 2, 99, 253, 254, 255, 99};
    writeGreyPng(in("down.png"), 3, 2, grey.data(), 4);
    EXPECT_EQ(valuesOf(in("down.png")), (Values{0, 1, 2, 253, 254, 255}));
    writeGreyPng(in("down.png"), 3, 2, grey.data() + 4, -4);
    EXPECT_EQ(valuesOf(in("down.png")), (Values{253, 254, 255, 0, 1, 2}));

    // The weights alone, and a sum of 0.5 that must go up: 0.299 * 2 + 0.587 * 238 + 0.114 * 53 = 146.346 is no half,
    // 0.299 * 0 + 0.587 * 0 + 0.114 * 250 = 28.5 is.
    const Bytes colour = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255, 2, 238, 53, 0, 0, 250};
    writeRgbPng(in("colour.png"), 6, 1, colour.data(), 18);
    EXPECT_EQ(valuesOf(in("colour.png")), (Values{76, 150, 29, 255, 146, 29}));
    EXPECT_EQ(filesInFolder(), 2U);
}

TEST_F(PictureIo, ReadsEveryKindOfPng)
{
    EXPECT_EQ(valuesOf(png(10, 2, 1, PNG_COLOR_TYPE_GRAY, {0xA0, 0x40, 0x00, 0x80})),
              (Values{255, 0, 255, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 255, 0}));
    EXPECT_EQ(valuesOf(png(4, 1, 2, PNG_COLOR_TYPE_PALETTE, {0x1B})), (Values{9, 76, 150, 29}));
    EXPECT_EQ(valuesOf(png(2, 1, 8, PNG_COLOR_TYPE_GRAY_ALPHA, {10, 0, 20, 128})), (Values{10, 20}));
    EXPECT_EQ(valuesOf(png(2, 1, 16, PNG_COLOR_TYPE_GRAY, {0x12, 0x34, 0xFF, 0xFE})), (Values{0x1234, 0xFFFE}));
    // Green 50000 is 29350 after weighting; the alpha channel must not shift the next pixel.
    EXPECT_EQ(valuesOf(png(2, 1, 16, PNG_COLOR_TYPE_RGB_ALPHA,
                           {0, 0, 0xC3, 0x50, 0, 0, 0x12, 0x34, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0})),
              (Values{29350, 65535}));
    const Bytes samples = noise(9 * 7);
    EXPECT_EQ(readPicture(png(9, 7, 8, PNG_COLOR_TYPE_GRAY, samples, PNG_INTERLACE_ADAM7)).samples, samples);
}

TEST_F(PictureIo, ReadsJpegAsGrey)
{
    for (const bool progressive : {false, true}) {
        const Values grey = valuesOf(jpeg(40, 1, progressive)), colour = valuesOf(jpeg(40, 3, progressive));
        ASSERT_TRUE(grey.size() == 1600 && colour.size() == 1600);
        EXPECT_NEAR(grey[839], 139, 2);
        EXPECT_NEAR(colour[1599], 0.299 * 139 + 0.587 * 200 + 0.114 * 30, 2);
    }
}

TEST_F(PictureIo, ReadsEverySampleTypeOfTiffInBothByteOrders)
{
    const auto expectRead = [&](const auto& samples, int compression) {
        const Tags tags = {{TIFFTAG_ROWSPERSTRIP, 2}, {TIFFTAG_COMPRESSION, compression}};
        for (const char* mode : {"wl", "wb", "wb8"})  // the last strip is shorter
            EXPECT_EQ(valuesOf(tiff(2, 3, tags, samples, 4, mode)), Values(samples.begin(), samples.end())) << mode;
    };
    expectRead(Bytes{1, 2, 3, 4, 5, 255}, COMPRESSION_NONE);
    expectRead(std::vector<std::uint16_t>{1, 256, 65535, 4, 5, 6}, COMPRESSION_NONE);
    expectRead(std::vector<std::int16_t>{-32768, -2, 32767, 4, 5, 6}, COMPRESSION_NONE);
    expectRead(std::vector<float>{-0.5F, 1e30F, 3, 4, 5, 6}, COMPRESSION_LZW);
}

TEST_F(PictureIo, ReadsTilesAndPlanesOfTiff)
{
    // 18 x 17 samples in 2 x 2 tiles of 16 x 16, three of which hang over the edge: red or grey is 10 x, green 10 y, blue 250.
    for (const int channels : {1, 3})
        for (const bool separate : {false, true}) {
            Bytes blocks;
            for (int i = 0; i < 1024 * channels; ++i) {
                const int channel = separate ? i / 1024 : i % channels, pixel = separate ? i % 1024 : i / channels;
                const int x = pixel / 256 % 2 * 16 + pixel % 16, y = pixel / 512 * 16 + pixel / 16 % 16;
                blocks.push_back(static_cast<unsigned char>(channel == 0 ? 10 * x : channel == 1 ? 10 * y : 250));
            }
            Tags tags = channels == 3 ? g_colourTiff : Tags();
            tags[TIFFTAG_TILEWIDTH] = tags[TIFFTAG_TILELENGTH] = 16;
            tags[TIFFTAG_PLANARCONFIG] = separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG;
            tags[TIFFTAG_COMPRESSION] = COMPRESSION_ADOBE_DEFLATE;
            const Picture picture = readPicture(tiff(18, 17, tags, blocks, separate ? 256 : 256 * channels));
            ASSERT_EQ(picture.samples.size(), 18U * 17U);
            for (const unsigned long at : {0, 15, 16}) {
                const double expected = channels == 1 ? 10.0 * (at + 1) : 2.99 * (at + 1) + 5.87 * at + 28.5;
                EXPECT_EQ(picture.valueAt(at + 1, at), std::floor(expected + 0.5 + 1e-9)) << channels << separate;
            }
        }
}

TEST_F(PictureIo, ReadsColoursOfTiff)
{
    EXPECT_EQ(valuesOf(tiff(3, 1, {{TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE}}, {0, 1, 255}, 3)), (Values{255, 254, 0}));
    EXPECT_EQ(valuesOf(tiff(3, 1, {{TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_PALETTE}}, {7, 8, 9}, 3)), (Values{76, 150, 29}));
    EXPECT_EQ(valuesOf(tiff<std::int16_t>(1, 1, g_colourTiff, {-3, -3, -9}, 3)), Values{-4});  // -3.684
    Tags planes = g_colourTiff;
    planes[TIFFTAG_PLANARCONFIG] = PLANARCONFIG_SEPARATE;
    EXPECT_NEAR(valuesOf(tiff<float>(1, 1, planes, {-2, 4, 8}, 1))[0], 2.662, 1e-6);
    Bytes red;
    for (int i = 0; i < 256; ++i)
        red.insert(red.end(), {255, 0, 0});
    EXPECT_NEAR(valuesOf(tiff(16, 16, g_jpegInTiff, red, red.size()))[255], 76, 2);
}

TEST_F(PictureIo, RefusesWhatItCanNotRead)
{
    EXPECT_EQ(reasonOf(in("missing")), "No such file or directory");
    EXPECT_EQ(reasonOf(m_folder.string()), "Is a directory");
    EXPECT_EQ(reasonOf("/dev/null"), "not a regular file");
    EXPECT_EQ(reasonOf(written({})), "the file is empty");
    EXPECT_EQ(reasonOf(written({'t', 'e', 'x', 't'})), "neither a PNG, a JPEG nor a TIFF file");
    EXPECT_EQ(reasonOf(jpeg(16, 4)), "Unsupported color conversion request");
    EXPECT_EQ(reasonOf(tiff(1, 1, {{TIFFTAG_BITSPERSAMPLE, 1}}, {128}, 1)),
              "samples of 1 bit and sample format 1 are not supported");
    EXPECT_EQ(
        reasonOf(tiff(1, 1, {{TIFFTAG_SAMPLESPERPIXEL, 4}, {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_SEPARATED}}, {1, 2, 3, 4}, 4)),
        "colours of photometric interpretation 5 at 8 bit are not supported");
}

TEST_F(PictureIo, RefusesTruncatedFilesAtEveryLength)
{
    const Bytes samples = noise(32 * 32);
    const Tags strips = {{TIFFTAG_ROWSPERSTRIP, 16}};
    // The palette is written after the samples, and the codec does without.
    const Tags palette = {{TIFFTAG_ROWSPERSTRIP, 16}, {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_PALETTE}};
    std::vector<Bytes> files;
    for (const int interlace : {PNG_INTERLACE_NONE, PNG_INTERLACE_ADAM7})
        files.push_back(readBytes(png(32, 32, 8, PNG_COLOR_TYPE_GRAY, samples, interlace)));
    for (const bool progressive : {false, true})
        files.push_back(readBytes(jpeg(24, 3, progressive)));
    for (const Tags& tags : {strips, palette})
        files.push_back(readBytes(tiff(32, 32, tags, samples, 512)));
    for (std::size_t i = 0; i < files.size(); ++i) {
        ASSERT_EQ(reasonOf(written(files[i])), "no error");
        for (auto end = files[i].begin(); end != files[i].end(); ++end)
            ASSERT_NE(reasonOf(written(Bytes(files[i].begin(), end))), "no error")
                << "file " << i << " cut to " << end - files[i].begin() << " of " << files[i].size();
    }
    EXPECT_EQ(reasonOf(written(Bytes(files[0].begin(), files[0].begin() + 300))), "the file ends too early");
    EXPECT_EQ(reasonOf(written(Bytes(files[2].begin(), files[2].end() - 20))), "Premature end of JPEG file");
}

TEST_F(PictureIo, RefusesDamagedFilesWithTheWordsOfTheCodec)
{
    Bytes bytes = readBytes(png(64, 64, 8, PNG_COLOR_TYPE_GRAY, Bytes(64 * 64, 77)));
    bytes[bytes.size() - 14] ^= 0xFF;  // the checksum after the last samples
    EXPECT_EQ(reasonOf(written(bytes)), "IDAT: CRC error");

    bytes = readBytes(jpeg(64, 1));
    std::fill(bytes.end() - 60, bytes.end() - 10, static_cast<unsigned char>(0x55));
    EXPECT_NE(reasonOf(written(bytes)).find("Corrupt JPEG data"), std::string::npos) << reasonOf(in("bytes"));

    // A strip of JPEG data cut short inside a sound TIFF file: the codec only warns and paints grey.
    bytes = readBytes(tiff(64, 64, g_jpegInTiff, noise(64 * 64 * 3), 64 * 64 * 3));
    bytes[2000] = 0xFF;
    bytes[2001] = 0xD9;
    EXPECT_NE(reasonOf(written(bytes)).find("Corrupt JPEG data"), std::string::npos) << reasonOf(in("bytes"));
}

TEST_F(PictureIo, RefusesAbsurdSizesWithoutFillingMemory)
{
    TIFF* file = TIFFOpen(tiff(1, 1, {}, {1}, 1).c_str(), "r+");
    for (const auto tag : {TIFFTAG_IMAGEWIDTH, TIFFTAG_IMAGELENGTH, TIFFTAG_ROWSPERSTRIP})
        TIFFSetField(file, tag, 0x7FFFFFF0U);
    TIFFRewriteDirectory(file);
    TIFFClose(file);
    EXPECT_EQ(reasonOf(in("tiff")), "the picture is too large (2147483632 x 2147483632)");

    Bytes bytes = readBytes(jpeg(16, 1));
    const Bytes frame = {0xFF, 0xC0, 0, 11, 8, 0, 16, 0, 16};
    const auto at = std::search(bytes.begin(), bytes.end(), frame.begin(), frame.end());
    ASSERT_NE(at, bytes.end());
    std::fill(at + 5, at + 9, static_cast<unsigned char>(0xFA));
    EXPECT_EQ(reasonOf(written(bytes)), "the file is too short for a picture of 64250 x 64250");

    EXPECT_EQ(reasonOf(png(1000000, 1000000, 8, PNG_COLOR_TYPE_GRAY, {})), "the picture is too large (1000000 x 1000000)");
    EXPECT_EQ(reasonOf(png(100000, 100000, 8, PNG_COLOR_TYPE_GRAY, {})),
              "the file is too short for a picture of 100000 x 100000");
}

TEST_F(PictureIo, LeavesNothingBehindWhenWritingFails)
{
    const Bytes grey(2000, 1);
    const auto reasonOfWriting = [&](const std::string& path, unsigned long sizeX = 2) {
        return reason("cannot write '" + path + "': ", [&] { writeGreyPng(path, sizeX, 2, grey.data(), 1); });
    };
    EXPECT_EQ(reasonOfWriting(in("no/such.png")), "No such file or directory");
    EXPECT_EQ(reasonOfWriting(m_folder.string()), "Is a directory");
    // A pipe stands for devices, which a faulty writer would replace for the whole machine.
    ASSERT_EQ(mkfifo(in("pipe").c_str(), 0600), 0);
    EXPECT_EQ(reasonOfWriting(in("pipe")), "not a regular file");
    fs::remove(in("pipe"));
    EXPECT_EQ(reasonOfWriting(in("empty"), 0), "no picture of 0 x 2 can be written");
    // Nameable while it is written, not when it is renamed.
    EXPECT_EQ(reasonOfWriting(in(std::string(300, 'n'))), "File name too long");
    EXPECT_EQ(filesInFolder(), 0U);

    // A full disk, as a limit on the size of a file: the picture that was there stays.
    ASSERT_EQ(reasonOfWriting(in("kept.png")), "no error");
    const Bytes before = readBytes(in("kept.png"));
    rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {20, old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string reason = reasonOfWriting(in("kept.png"), 1000);
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(reason, "File too large");
    EXPECT_EQ(readBytes(in("kept.png")), before);
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST(PictureDisplay, StretchesTheFiniteRange)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const auto real = [](const std::vector<float>& values) {
        return toDisplay8(Picture{values.size(), 1, SampleType::Real32, bytesOf(values)});
    };
    EXPECT_EQ(real({-1, 0, 1, NAN, infinity, -infinity}), (Bytes{0, 128, 255, 0, 255, 0}));
    EXPECT_EQ(real({5, 5, NAN}), (Bytes{0, 0, 0}));
    EXPECT_EQ(real({-3e38F, 3e38F}), (Bytes{0, 255}));
    EXPECT_EQ(real({}), Bytes());

    EXPECT_EQ(toDisplay8({3, 1, SampleType::UInt8, {7, 8, 9}}), (Bytes{7, 8, 9}));
    EXPECT_EQ(toDisplay8({2, 1, SampleType::Int16, bytesOf<std::int16_t>({32767, -32768})}), (Bytes{255, 0}));
    EXPECT_EQ(toDisplay8({1, 2, SampleType::UInt16, bytesOf<std::uint16_t>({65535, 65534})}), (Bytes{255, 0}));
    EXPECT_THROW(toDisplay8({2, 2, SampleType::UInt8, {7}}), std::invalid_argument);
}

/// A TIFF file of grey bytes with tags as they are given, true or not: numbers of 32 bits, several of them behind the others.
Bytes tiffOfTags(std::map<std::uint16_t, std::vector<std::uint32_t>> tags)
{
    const std::size_t dataBytes = 200;
    tags.insert(
        {{TIFFTAG_BITSPERSAMPLE, {8}}, {TIFFTAG_PHOTOMETRIC, {PHOTOMETRIC_MINISBLACK}}, {TIFFTAG_STRIPOFFSETS, {8}}});
    Bytes bytes = {'I', 'I', '*', 0}, behind;
    const auto put = [](Bytes& to, std::size_t count, std::uint64_t number) {
        for (std::size_t i = 0; i < count; ++i)
            to.push_back(static_cast<unsigned char>(number >> (8 * i)));
    };
    put(bytes, 4, 8 + dataBytes);
    bytes.resize(8 + dataBytes, 'x');
    const std::size_t end = bytes.size() + 2 + 12 * tags.size() + 4;
    put(bytes, 2, tags.size());
    for (const auto& [tag, numbers] : tags) {
        put(bytes, 2, tag);
        put(bytes, 2, TIFF_LONG);
        put(bytes, 4, numbers.size());
        put(bytes, 4, numbers.size() == 1 ? numbers[0] : end + behind.size());
        if (numbers.size() > 1)
            for (const std::uint32_t number : numbers)
                put(behind, 4, number);
    }
    put(bytes, 4, 0);
    bytes.insert(bytes.end(), behind.begin(), behind.end());
    return bytes;
}

TEST_F(PictureIo, TakesBackWhatIsInPlaceWhenAnotherFileFails)
{
    const auto contents = [&] {
        std::map<std::string, std::string> found;
        for (const auto& entry : fs::directory_iterator(m_folder)) {
            const Bytes bytes = entry.is_directory() ? Bytes{'/'} : readBytes(entry.path().string());
            found[entry.path().filename().string()].assign(bytes.begin(), bytes.end());
        }
        return found;
    };
    std::ofstream(in("older")) << "as it was";
    {
        OutputFiles files;
        for (const char* name : {"older", "new", "taken", "last"})
            files.addText(in(name), "written");
        fs::create_directory(in("taken"));  // once all could be written
        EXPECT_EQ(reason("cannot write '" + in("taken") + "': ", [&] { files.putInPlace(); }), "Is a directory");
    }
    EXPECT_EQ(contents(), (std::map<std::string, std::string>{{"older", "as it was"}, {"taken", "/"}}));

    OutputFiles files;
    files.addText(in("older"), "written");
    files.addText(in("new"), "written, too");
    files.putInPlace();
    EXPECT_EQ(contents(),
              (std::map<std::string, std::string>{{"new", "written, too"}, {"older", "written"}, {"taken", "/"}}));
}

TEST_F(PictureIo, RefusesTiffFilesThatClaimMoreThanTheyHold)
{
    const auto reasonOfClaim = [&](std::uint32_t sizeX, std::uint32_t sizeY, std::uint32_t rows, int compression,
                                   const std::vector<std::uint32_t>& held, const std::vector<std::uint32_t>& from = {8}) {
        return reasonOf(written(tiffOfTags({{TIFFTAG_IMAGEWIDTH, {sizeX}},
                                            {TIFFTAG_IMAGELENGTH, {sizeY}},
                                            {TIFFTAG_ROWSPERSTRIP, {rows}},
                                            {TIFFTAG_COMPRESSION, {static_cast<std::uint32_t>(compression)}},
                                            {TIFFTAG_STRIPOFFSETS, from},
                                            {TIFFTAG_STRIPBYTECOUNTS, held}})));
    };
    EXPECT_EQ(reasonOfClaim(20, 10, 10, COMPRESSION_NONE, {200}), "no error");
    // One strip of 800000: the codec would read the others from the file's beginning.
    EXPECT_EQ(reasonOfClaim(20, 8000000, 10, COMPRESSION_NONE, {200}), "strip 1 is missing");
    EXPECT_EQ(reasonOfClaim(65000, 65000, 65000, COMPRESSION_ADOBE_DEFLATE, {200}),
              "strip 0 of 200 bytes cannot hold the 4225000000 that it should");
    EXPECT_EQ(reasonOfClaim(4, 4, 4, COMPRESSION_LZW, {4294967295}),
              "strip 0 of 4294967295 bytes from byte 8 on ends behind the file of 310");
    // A thousand strips in the same place.
    EXPECT_EQ(reasonOfClaim(200, 1000, 1, COMPRESSION_NONE, std::vector<std::uint32_t>(1000, 200),
                            std::vector<std::uint32_t>(1000, 8)),
              "the file is too short for a picture of 200 x 1000");

    EXPECT_NO_THROW(codec::requireMemoryFor(600, 600, 30, 20));
    try {
        codec::requireMemoryFor(600, 599, 30, 20);
        ADD_FAILURE() << "more memory than there is was not refused";
    } catch (const codec::Refusal& refusal) {
        EXPECT_STREQ(refusal.what(), "a picture of 30 x 20 takes 600 bytes of memory, and 599 are there");
    }
}

TEST_F(PictureIo, ReadsBlankTiffsHoweverWellTheyArePacked)
{
    const int size = 1024, tile = 512;
    const Bytes blank(3 * size * size, 255);
    for (const int compression :
         {COMPRESSION_NONE, COMPRESSION_PACKBITS, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_JPEG,
          COMPRESSION_LZMA, COMPRESSION_ZSTD, COMPRESSION_LERC, COMPRESSION_WEBP}) {
        if (TIFFIsCODECConfigured(static_cast<std::uint16_t>(compression)) == 0)
            continue;  // Debian's has them all; others may have less
        for (const bool isTiled : {false, true}) {
            for (const bool isSeparate : {false, true}) {
                if (isSeparate && (compression == COMPRESSION_WEBP || compression == COMPRESSION_JPEG))
                    continue;  // WebP packs colours together; grey planes of JPEG are what the other case has
                Tags tags = {{TIFFTAG_COMPRESSION, compression},
                             {TIFFTAG_SAMPLESPERPIXEL, 3},
                             {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB},
                             {TIFFTAG_PLANARCONFIG, isSeparate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG}};
                if (isTiled)
                    tags.insert({{TIFFTAG_TILEWIDTH, tile}, {TIFFTAG_TILELENGTH, tile}});
                const std::string path =
                    tiff(size, size, tags, blank, (isTiled ? tile * tile : size * size) * (isSeparate ? 1 : 3));
                EXPECT_EQ(reasonOf(path), "no error") << compression << isTiled << isSeparate;
            }
        }
    }
}

}  // namespace
}  // namespace orvik::examples
