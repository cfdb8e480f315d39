#include "PictureFiles.h"

#include "OutputFiles.h"
#include "PictureCodec.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvik::examples { namespace {

namespace fs = std::filesystem;
using Values = std::vector<double>;

/// Small pictures that the tests read, or damage first: what is in them is told where they are read.
const std::string g_pictures = ORVIK_TEST_PICTURES "/";

Bytes bytesOfPicture(const std::string& name)
{
    return readBytes(g_pictures + name);
}

class PictureIo : public PictureFiles
{
protected:
    static Values valuesOf(const std::string& path)
    {
        const Picture picture = readPicture(path);
        Values values;
        for (unsigned long i = 0; i < picture.sizeX * picture.sizeY; ++i)
            values.push_back(picture.valueAt(i % picture.sizeX, i / picture.sizeX));
        return values;
    }

    static std::string reasonOf(const std::string& path)
    {
        return reason("cannot read '" + path + "': ", [&] { readPicture(path); });
    }
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

TEST_F(PictureIo, ReadsEveryKindOfSamplesAndColours)
{
    const Values bits = {255, 0, 255, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 255, 0};
    const std::pair<const char*, Values> pictures[] = {
        {"bits.png", bits},
        {"palette.png", {9, 76, 150, 29}},
        {"alpha.png", {10, 20}},
        {"words.png", {0x1234, 0xFFFE}},
        // Green 50000 is 29350 after weighting; the alpha channel must not shift the next pixel.
        {"colour-words-alpha.png", {29350, 65535}},
        // Of two rows and the rest; the big TIFF is big endian, too.
        {"bytes-little.tif", {1, 2, 3, 4, 5, 255}},
        {"words-little.tif", {1, 256, 65535, 4, 5, 6}},
        {"words-big.tif", {1, 256, 65535, 4, 5, 6}},
        {"signed-big-bigtiff.tif", {-32768, -2, 32767, 4, 5, 6}},
        {"real-lzw-little.tif", {-0.5, 1e30F, 3, 4, 5, 6}},
        {"real-lzw-big.tif", {-0.5, 1e30F, 3, 4, 5, 6}},
        {"white-is-zero.tif", {255, 254, 0}},
        {"palette.tif", {76, 150, 29}},
        {"colour-signed.tif", {-4}},  // -3, -3, -9: -3.684
    };
    for (const auto& [name, values] : pictures)
        EXPECT_EQ(valuesOf(g_pictures + name), values) << name;
    EXPECT_NEAR(valuesOf(g_pictures + "colour-real-planes.tif")[0], 2.662, 1e-6);  // -2, 4, 8
    EXPECT_NEAR(valuesOf(g_pictures + "red-jpeg.tif").at(255), 76, 2);
    EXPECT_EQ(valuesOf(g_pictures + "noise-interlaced.png"), valuesOf(g_pictures + "noise.png"));
    EXPECT_EQ(valuesOf(g_pictures + "noise-strips.tif"), valuesOf(g_pictures + "noise.png"));
}

TEST_F(PictureIo, ReadsJpegAsGrey)
{
    // 40 x 40: grey, or red, is 100 + x, green 200 and blue 30.
    for (const std::string kind : {".jpg", "-progressive.jpg"}) {
        const Values grey = valuesOf(g_pictures + "grey" + kind), colour = valuesOf(g_pictures + "colour" + kind);
        ASSERT_TRUE(grey.size() == 1600 && colour.size() == 1600);
        EXPECT_NEAR(grey[839], 139, 2);
        EXPECT_NEAR(colour[1599], 0.299 * 139 + 0.587 * 200 + 0.114 * 30, 2);
    }
}

TEST_F(PictureIo, ReadsTilesAndPlanesOfTiff)
{
    // 18 x 17 samples in 2 x 2 tiles of 16 x 16, three of which hang over the edge: red or grey is 10 x, green 10 y, blue 250.
    for (const std::string name :
         {"tiles-grey.tif", "tiles-grey-planes.tif", "tiles-colour.tif", "tiles-colour-planes.tif"}) {
        const Picture picture = readPicture(g_pictures + name);
        const bool isColour = name.find("colour") != std::string::npos;
        ASSERT_EQ(picture.samples.size(), 18U * 17U);
        for (const unsigned long at : {0, 15, 16}) {
            const double expected = isColour ? 2.99 * (at + 1) + 5.87 * at + 28.5 : 10.0 * (at + 1);
            EXPECT_EQ(picture.valueAt(at + 1, at), std::floor(expected + 0.5 + 1e-9)) << name;
        }
    }
}

TEST_F(PictureIo, RefusesWhatItCanNotRead)
{
    EXPECT_EQ(reasonOf(in("missing")), "No such file or directory");
    EXPECT_EQ(reasonOf(m_folder.string()), "Is a directory");
    EXPECT_EQ(reasonOf("/dev/null"), "not a regular file");
    EXPECT_EQ(reasonOf(written({})), "the file is empty");
    EXPECT_EQ(reasonOf(written({'t', 'e', 'x', 't'})), "neither a PNG, a JPEG nor a TIFF file");
    EXPECT_EQ(reasonOf(g_pictures + "four-channels.jpg"), "Unsupported color conversion request");
    EXPECT_EQ(reasonOf(g_pictures + "bit.tif"), "samples of 1 bit and sample format 1 are not supported");
    EXPECT_EQ(reasonOf(g_pictures + "inks.tif"), "colours of photometric interpretation 5 at 8 bit are not supported");
}

TEST_F(PictureIo, RefusesTruncatedFilesAtEveryLength)
{
    // The palette is written after the samples, and the codec does without.
    for (const char* name : {"noise.png", "noise-interlaced.png", "colour.jpg", "colour-progressive.jpg", "noise-strips.tif",
                             "noise-palette.tif"}) {
        const Bytes bytes = bytesOfPicture(name);
        ASSERT_EQ(reasonOf(written(bytes)), "no error");
        for (auto end = bytes.begin(); end != bytes.end(); ++end)
            ASSERT_NE(reasonOf(written(Bytes(bytes.begin(), end))), "no error")
                << name << " cut to " << end - bytes.begin() << " of " << bytes.size();
    }
    const Bytes png = bytesOfPicture("noise.png"), jpeg = bytesOfPicture("colour.jpg");
    EXPECT_EQ(reasonOf(written(Bytes(png.begin(), png.begin() + 300))), "the file ends too early");
    EXPECT_EQ(reasonOf(written(Bytes(jpeg.begin(), jpeg.end() - 20))), "Premature end of JPEG file");
}

TEST_F(PictureIo, RefusesDamagedFilesWithTheWordsOfTheCodec)
{
    Bytes bytes = bytesOfPicture("noise.png");
    bytes[bytes.size() - 14] ^= 0xFF;  // the checksum after the last samples
    EXPECT_EQ(reasonOf(written(bytes)), "IDAT: CRC error");

    bytes = bytesOfPicture("grey.jpg");
    std::fill(bytes.end() - 60, bytes.end() - 10, static_cast<unsigned char>(0x55));
    EXPECT_NE(reasonOf(written(bytes)).find("Corrupt JPEG data"), std::string::npos) << reasonOf(in("bytes"));

    // A strip of JPEG data cut short inside a sound TIFF file: the codec only warns and paints grey.
    bytes = bytesOfPicture("noise-jpeg.tif");
    bytes[2000] = 0xFF;
    bytes[2001] = 0xD9;
    EXPECT_NE(reasonOf(written(bytes)).find("Corrupt JPEG data"), std::string::npos) << reasonOf(in("bytes"));
}

TEST_F(PictureIo, RefusesAbsurdSizesWithoutFillingMemory)
{
    Bytes bytes = bytesOfPicture("grey.jpg");
    const Bytes frame = {0xFF, 0xC0, 0, 11, 8, 0, 40, 0, 40};
    const auto at = std::search(bytes.begin(), bytes.end(), frame.begin(), frame.end());
    ASSERT_NE(at, bytes.end());
    std::fill(at + 5, at + 9, static_cast<unsigned char>(0xFA));
    EXPECT_EQ(reasonOf(written(bytes)), "the file is too short for a picture of 64250 x 64250");
    EXPECT_EQ(reasonOf(g_pictures + "claims-1000000.png"), "the picture is too large (1000000 x 1000000)");
    EXPECT_EQ(reasonOf(g_pictures + "claims-100000.png"), "the file is too short for a picture of 100000 x 100000");
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
    // Each has 200 bytes of samples.
    const std::pair<const char*, const char*> claims[] = {
        {"nothing-wrong", "no error"},
        // One strip of 800000: the codec would read the others from the file's beginning.
        {"more-strips", "strip 1 is missing"},
        {"too-large", "the picture is too large (2147483632 x 2147483632)"},
        {"deflated-65000", "strip 0 of 200 bytes cannot hold the 4225000000 that it should"},
        {"lzw-beyond-the-end", "strip 0 of 4294967295 bytes from byte 8 on ends behind the file of 310"},
        {"thousand-in-one-place", "the file is too short for a picture of 200 x 1000"},
    };
    for (const auto& [name, text] : claims)
        EXPECT_EQ(reasonOf(g_pictures + "claims-" + name + ".tif"), text) << name;

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
    // Of 1024 x 1024 pixels in three colours: in one strip, by each codec, and in tiles and planes.
    for (const std::string name :
         {"packbits", "lzw", "lzw-tiles", "deflate", "jpeg", "lzma", "zstd", "zstd-tiles", "lerc", "webp"}) {
        const std::string reason = reasonOf(g_pictures + "blank/" + name + ".tif");
        // Debian's library has all codecs; others may have less.
        EXPECT_TRUE(reason == "no error" || reason.find("is not configured") != std::string::npos) << name << ": " << reason;
    }
}

}  // namespace
}  // namespace orvik::examples
