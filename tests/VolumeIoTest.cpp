#include "PictureFiles.h"

#include "OutputFiles.h"
#include "VolumeCodec.h"
#include "VolumeIo.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tiffio.h>
#include <zlib.h>

namespace orvik::examples { namespace {

const char* const g_endings[] = {".tif", ".nii", ".nii.gz"};

template<typename Sample>
Volume volumeOf(unsigned long sizeX, unsigned long sizeY, unsigned long sizeZ, SampleType type,
                const std::vector<Sample>& samples)
{
    return {sizeX, sizeY, sizeZ, type, bytesOf(samples), {}};
}

/// 5 x 4 x 3 samples from the lowest value of their type to the highest.
template<typename Sample>
Volume ramp(SampleType type)
{
    std::vector<Sample> samples(60);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = std::is_floating_point_v<Sample> ? static_cast<Sample>(i * 0.1 - 3) : static_cast<Sample>(i * 71 - 900);
    samples.front() = std::numeric_limits<Sample>::lowest();
    samples.back() = std::numeric_limits<Sample>::max();
    return volumeOf(5, 4, 3, type, samples);
}

const std::vector<Volume>& ramps()
{
    static const std::vector<Volume> all = {ramp<std::uint8_t>(SampleType::UInt8),   ramp<std::int8_t>(SampleType::Int8),
                                            ramp<std::uint16_t>(SampleType::UInt16), ramp<std::int16_t>(SampleType::Int16),
                                            ramp<std::uint32_t>(SampleType::UInt32), ramp<std::int32_t>(SampleType::Int32),
                                            ramp<float>(SampleType::Real32)};
    return all;
}

void expectSame(const Volume& expected, const Volume& found, const std::string& what)
{
    EXPECT_EQ(sizeText(expected), sizeText(found)) << what;
    EXPECT_EQ(expected.sampleType, found.sampleType) << what;
    EXPECT_EQ(expected.samples, found.samples) << what;
}

/// A NIfTI file, byte by byte from the description of the format; all numbers in the order asked for.
class Nifti
{
public:
    Nifti(int version, bool isBigEndian)
        : m_isBigEndian(isBigEndian), m_isSecond(version == 2), m_bytes(m_isSecond ? 544 : 352)
    {
        put<std::int32_t>(0, m_isSecond ? 540 : 348);
        const std::string mark = m_isSecond ? "n+2" : "n+1";
        std::copy(mark.begin(), mark.end(), m_bytes.begin() + (m_isSecond ? 4 : 344));
        sizes({3, 5, 4, 3});
        type(2, 8);
        m_isSecond ? put<std::int64_t>(168, 544) : put<float>(108, 352);
    }

    Nifti& sizes(const std::vector<std::int64_t>& values)
    {
        for (std::size_t i = 0; i < values.size(); ++i)
            m_isSecond ? put<std::int64_t>(16 + 8 * i, values[i]) : put<std::int16_t>(40 + 2 * i, values[i]);
        return *this;
    }

    Nifti& type(int number, int bits)
    {
        put<std::int16_t>(m_isSecond ? 12 : 70, number);
        return put<std::int16_t>(m_isSecond ? 14 : 72, bits);
    }

    Nifti& scaling(double slope, double intercept)
    {
        m_isSecond ? put<double>(176, slope) : put<float>(112, slope);
        return m_isSecond ? put<double>(184, intercept) : put<float>(116, intercept);
    }

    template<class Number, class Value>
    Nifti& put(std::size_t at, Value value)
    {
        const Number number = static_cast<Number>(value);
        std::memcpy(m_bytes.data() + at, &number, sizeof number);
        if (m_isBigEndian)
            std::reverse(m_bytes.data() + at, m_bytes.data() + at + sizeof number);
        return *this;
    }

    template<class Sample>
    Bytes with(const std::vector<Sample>& samples)
    {
        Bytes bytes = m_bytes;
        for (const Sample& sample : samples) {
            Bytes each = bytesOf(std::vector<Sample>{sample});
            if (m_isBigEndian)
                std::reverse(each.begin(), each.end());
            bytes.insert(bytes.end(), each.begin(), each.end());
        }
        return bytes;
    }

    /// 60 samples of one byte.
    Bytes bytes() { return with(std::vector<std::uint8_t>(60, 7)); }

private:
    bool m_isBigEndian, m_isSecond;
    Bytes m_bytes;
};

Bytes compressed(const Bytes& bytes)
{
    z_stream stream = {};
    deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    Bytes packed(deflateBound(&stream, bytes.size()));
    stream.next_in = const_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

/// A page of a TIFF file as its own library writes it.
struct Page
{
    std::uint32_t sizeX = 5, sizeY = 4;
    int bits = 8;
    std::uint32_t kind = 0;
    unsigned char value = 1;
};

class VolumeIo : public PictureFiles
{
protected:
    static void write(const std::string& path, const Volume& volume)
    {
        OutputFiles files;
        addVolume(files, path, volume);
        files.putInPlace();
    }

    static std::string reasonOf(const std::string& path)
    {
        return reason("cannot read '" + path + "': ", [&] { readVolume(path); });
    }

    static std::string reasonOfWriting(const std::string& path, const Volume& volume)
    {
        return reason("cannot write '" + path + "': ", [&] { write(path, volume); });
    }

    std::string pages(const std::string& mode, const std::vector<Page>& pages) const
    {
        TIFF* const tiff = TIFFOpen(in("pages.tif").c_str(), mode.c_str());
        for (const Page& page : pages) {
            TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.sizeX);
            TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.sizeY);
            TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, page.bits);
            TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
            TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, page.kind);
            Bytes samples(page.sizeX * page.sizeY * page.bits / 8, 0);
            for (std::size_t i = 0; i < samples.size(); i += page.bits / 8)
                samples[i] = page.value;  // the low byte, here
            TIFFWriteEncodedStrip(tiff, 0, samples.data(), static_cast<tmsize_t>(samples.size()));
            TIFFWriteDirectory(tiff);
        }
        TIFFClose(tiff);
        return in("pages.tif");
    }
};

TEST_F(VolumeIo, WritesWhatItReadsInEveryFormatAndType)
{
    for (const std::string ending : g_endings) {
        for (Volume volume : ramps()) {
            const std::string path = in("ramp" + ending), what = ending + ", " + nameOf(volume.sampleType);
            write(path, volume);
            expectSame(volume, readVolume(path), what);
            volume.space.setSpacing(0.7, 1.25, 3);
            write(path, volume);
            const auto spacing = readVolume(path).space.spacing;
            ASSERT_TRUE(spacing) << what;
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_NEAR((*spacing)[axis], (*volume.space.spacing)[axis], 1e-6) << what;
        }
    }
    EXPECT_EQ(filesInFolder(), 3U);
    // Longer than a chunk, than a strip, and than version 1 of a header can say.
    const Volume wide = volumeOf(40000, 3, 11, SampleType::UInt16, std::vector<std::uint16_t>(40000 * 33, 4711));
    for (const std::string ending : g_endings) {
        write(in("wide" + ending), wide);
        expectSame(wide, readVolume(in("wide" + ending)), ending);
    }
}

TEST_F(VolumeIo, KeepsOrientationAsItStands)
{
    for (const int version : {1, 2}) {
        Nifti nifti(version, true);
        const std::vector<std::size_t> firstBytes = version == 1 ? std::vector<std::size_t>{76, 256, 268, 280}
                                                                 : std::vector<std::size_t>{104, 352, 376, 400};
        const std::vector<std::size_t> counts = {4, 3, 3, 12};
        for (std::size_t field = 0; field < counts.size(); ++field)
            for (std::size_t i = 0; i < counts[field]; ++i) {
                const double value = -0.375 + static_cast<double>(field) + 0.25 * static_cast<double>(i + (field == 0));
                version == 1 ? nifti.put<float>(firstBytes[field] + 4 * i, value)
                             : nifti.put<double>(firstBytes[field] + 8 * i, value);
            }
        version == 1 ? nifti.put<std::uint8_t>(123, 3 + 16) : nifti.put<std::int32_t>(500, 3 + 16);
        version == 1 ? nifti.put<std::int16_t>(252, 1) : nifti.put<std::int32_t>(344, 1);
        version == 1 ? nifti.put<std::int16_t>(254, 4) : nifti.put<std::int32_t>(348, 4);
        const Volume first = readVolume(written(nifti.bytes()));
        write(in("copy.nii.gz"), first);
        for (const Volume& volume : {first, readVolume(in("copy.nii.gz"))}) {
            ASSERT_TRUE(volume.space.nifti && volume.space.spacing);
            const NiftiSpace& space = *volume.space.nifti;
            EXPECT_EQ(space.units, 3);
            EXPECT_EQ(space.qformCode, 1);
            EXPECT_EQ(space.sformCode, 4);
            EXPECT_EQ(space.pixdim, (std::array<double, 4>{-0.125, 0.125, 0.375, 0.625}));
            EXPECT_EQ(space.quaternion, (std::array<double, 3>{0.625, 0.875, 1.125}));
            EXPECT_EQ(space.offset, (std::array<double, 3>{1.625, 1.875, 2.125}));
            EXPECT_EQ(space.srow.back(), 5.375);
            EXPECT_EQ(*volume.space.spacing, (std::array<double, 3>{0.125e-3, 0.375e-3, 0.625e-3}));  // micrometres
        }
    }
}

TEST_F(VolumeIo, ReadsNiftiOfEitherVersionAndByteOrder)
{
    const std::vector<double> reals(60, -0.5);
    const std::vector<std::int64_t> wholes(60, std::numeric_limits<std::int32_t>::min());
    const std::vector<std::uint64_t> positive(60, std::numeric_limits<std::uint32_t>::max());
    const std::vector<std::int16_t> words(60, -259);
    for (const int version : {1, 2}) {
        for (const bool isBigEndian : {false, true}) {
            const auto nifti = [&] { return Nifti(version, isBigEndian); };
            const std::pair<Bytes, Volume> files[] = {
                {nifti().type(4, 16).with(words), volumeOf(5, 4, 3, SampleType::Int16, words)},
                {nifti().type(4, 16).scaling(1, 0).with(words), volumeOf(5, 4, 3, SampleType::Int16, words)},
                {nifti().type(4, 16).scaling(0, 7).with(words), volumeOf(5, 4, 3, SampleType::Int16, words)},
                {nifti().type(4, 16).scaling(0.5, 2).with(words),
                 volumeOf(5, 4, 3, SampleType::Real32, std::vector<float>(60, -127.5F))},
                {nifti().type(64, 64).with(reals), volumeOf(5, 4, 3, SampleType::Real32, std::vector<float>(60, -0.5F))},
                {nifti().type(1024, 64).with(wholes),
                 volumeOf(5, 4, 3, SampleType::Int32, std::vector<std::int32_t>(60, wholes[0]))},
                {nifti().type(1280, 64).with(positive),
                 volumeOf(5, 4, 3, SampleType::UInt32, std::vector<std::uint32_t>(60, positive[0]))},
                // A fourth axis of one, and one that is not used.
                {nifti().sizes({4, 5, 4, 3, 1, -9}).type(4, 16).with(words), volumeOf(5, 4, 3, SampleType::Int16, words)},
                {nifti().sizes({2, 12, 5, 0}).type(4, 16).with(words), volumeOf(12, 5, 1, SampleType::Int16, words)},
            };
            for (std::size_t i = 0; i < std::size(files); ++i) {
                const std::string what = "file " + std::to_string(i) + " of version " + std::to_string(version);
                expectSame(files[i].second, readVolume(written(files[i].first)), what);
                expectSame(files[i].second, readVolume(written(compressed(files[i].first))), what + ", compressed");
            }
        }
    }
}

TEST_F(VolumeIo, ReadsPagesOfTiffAsSlices)
{
    const Page page, second{5, 4, 8, 0, 2}, reduced{2, 2, 8, FILETYPE_REDUCEDIMAGE}, mask{5, 4, 8, FILETYPE_MASK};
    std::vector<std::uint8_t> samples(40, 1);
    std::fill(samples.begin() + 20, samples.end(), std::uint8_t(2));
    for (const char* mode : {"wl", "wb", "wl8", "wb8"})
        expectSame(volumeOf(5, 4, 2, SampleType::UInt8, samples), readVolume(pages(mode, {page, reduced, second, mask})),
                   mode);
    expectSame(volumeOf(5, 4, 2, SampleType::UInt16, std::vector<std::uint16_t>(40, 1)),
               readVolume(pages("wb", {{5, 4, 16}, {5, 4, 16}})), "words");

    EXPECT_EQ(reasonOf(pages("w", {page, second, {4, 5}})),
              "slice 3 is 4 x 5, 8 bit unsigned, but slice 1 is 5 x 4, 8 bit unsigned: they are no slices of a volume");
    EXPECT_EQ(reasonOf(pages("w", {page, {5, 4, 16}})),
              "slice 2 is 5 x 4, 16 bit unsigned, but slice 1 is 5 x 4, 8 bit unsigned: they are no slices of a volume");
    EXPECT_EQ(reasonOf(pages("w", {reduced, mask})), "all pages are reduced ones or masks");
}

TEST_F(VolumeIo, RefusesTruncatedFilesAtEveryLength)
{
    for (const std::string ending : g_endings) {
        write(in("whole" + ending), ramps().back());
        const Bytes bytes = readBytes(in("whole" + ending));
        ASSERT_EQ(reasonOf(written(bytes)), "no error");
        for (std::size_t length = 0; length < bytes.size(); ++length)
            ASSERT_NE(reasonOf(written(Bytes(bytes.begin(), bytes.begin() + length))), "no error")
                << ending << ' ' << length;
    }
    Bytes damaged = compressed(Nifti(1, false).bytes());
    damaged[damaged.size() - 6] ^= 1;  // the checksum
    EXPECT_EQ(reasonOf(written(damaged)), "the compressed data are damaged: incorrect data check");
}

TEST_F(VolumeIo, RefusesHeadersThatLie)
{
    const auto nifti = [] { return Nifti(1, false); };
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    const std::pair<Bytes, std::string> files[] = {
        {nifti().sizes({0}).bytes(), "the header says that there are 0 axes, not 1 to 7"},
        {nifti().sizes({8}).bytes(), "the header says that there are 8 axes, not 1 to 7"},
        {nifti().sizes({3, 5, -4, 3}).bytes(), "the header says that axis 2 has -4 samples"},
        {nifti().sizes({4, 5, 4, 3, 10}).bytes(), "the file has 10 volumes along axis 4: extract one of them first"},
        {nifti().sizes({3, 5, 4, 4}).bytes(), "the file is too short for a volume of 5 x 4 x 4"},
        {nifti().sizes({3, 32767, 32767, 32767}).bytes(), "the volume is too large (32767 x 32767 x 32767)"},
        {Nifti(2, true).sizes({3, 1LL << 40, 1LL << 40, 1LL << 62}).bytes(),
         "the volume is too large (1099511627776 x 1099511627776 x 4611686018427387904)"},
        {compressed(nifti().sizes({3, 20000, 20000, 20000}).bytes()),
         "the file is too short for a volume of 20000 x 20000 x 20000"},
        {compressed(nifti().sizes({3, 5, 4, 4}).bytes()), "the file ends too early"},
        {nifti().type(128, 24).bytes(),
         "samples of NIfTI's type 128 are not supported: convert the file to integers or 32 bit "
         "reals first"},
        {nifti().type(4, 8).bytes(), "the header says that samples have 8 bits, but those of its type 4 have 16"},
        {nifti().put<float>(108, 300).bytes(), "the header of 348 bytes says that samples begin at byte 300"},
        {nifti().put<float>(108, 1e30).bytes(), "the header of 348 bytes says that samples begin at byte 1e+30"},
        {nifti().put<float>(108, notANumber).bytes(), "the header of 348 bytes says that samples begin at byte nan"},
        {nifti().put<float>(108, 413).bytes(), "the file is too short for a volume of 5 x 4 x 3"},
        {nifti().scaling(notANumber, 0).bytes(), "the header scales samples by nan and adds 0"},
        {nifti().put<std::uint8_t>(345, 'i').bytes(),
         "its samples are in another file: convert the two to one .nii file first"},
        {nifti().put<std::int32_t>(344, 0).bytes(), "no NIfTI file: it lacks the mark n+1"},
        {compressed({'t', 'e', 'x', 't'}), "what is compressed is no NIfTI file"},
        {nifti().type(64, 64).with(std::vector<double>(60, 0.1)),
         "a sample is 0.10000000000000001, which no 32 bit real is: convert the file to 32 bit reals first, which rounds"},
        {nifti().type(64, 64).with(std::vector<double>(60, 1e300)),
         "a sample is 1.0000000000000001e+300, which no 32 bit real is: convert the file to 32 bit reals first, which rounds"},
        {nifti().type(1024, 64).with(std::vector<std::int64_t>(60, 1LL << 31)),
         "a sample is 2147483648, which no 32 bit integer is: convert the file to 32 bit reals first, which rounds"},
        {{'t', 'e', 'x', 't'}, "neither a NIfTI, a TIFF, a PNG nor a JPEG file"},
    };
    for (const auto& [bytes, text] : files)
        EXPECT_EQ(reasonOf(written(bytes)), text);
    // The words of readPicture() where nothing is, and of TIFF pages that claim more than they hold.
    EXPECT_EQ(reasonOf(in("missing")), "No such file or directory");
    EXPECT_EQ(reasonOf(ORVIK_TEST_PICTURES "/claims-thousand-in-one-place.tif"),
              "the file is too short for a picture of 200 x 1000");
}

TEST_F(VolumeIo, RefusesPagesInOnePlace)
{
    // Each of three pages has 20000 bytes, and says that it is 40000 from the first one's place on; the codec believes 24000.
    Bytes bytes = readBytes(pages("wl", {{200, 100}, {200, 100}, {200, 100}}));
    std::size_t nbChanged = 0;
    for (std::size_t at = 0; at + 12 < bytes.size(); ++at) {
        const bool isOne = bytes[at + 1] == 1 && (bytes[at + 2] == 3 || bytes[at + 2] == 4) && bytes[at + 4] == 1;
        const std::uint32_t value = bytes[at] == 0x11 ? 8 : 40000;  // tags 273 and 279
        if (isOne && (bytes[at] == 0x11 || bytes[at] == 0x17)) {
            std::memcpy(bytes.data() + at + 8, &value, sizeof value);
            ++nbChanged;
        }
    }
    ASSERT_EQ(nbChanged, 6U);
    EXPECT_EQ(reasonOf(written(bytes)), "the file is too short for a volume of 200 x 100 x 3");
}

TEST_F(VolumeIo, ReadsRawSamplesOfTheSizeThatIsGiven)
{
    for (const Volume& volume : ramps()) {
        RawLayout layout{5, 4, 3, volume.sampleType, false};
        expectSame(volume, readRawVolume(written(volume.samples), layout), nameOf(volume.sampleType));
        Volume swapped = volume;
        codec::swapSamples(swapped.samples.data(), 60, bytesPerSample(volume.sampleType));
        layout.isBigEndian = true;
        expectSame(volume, readRawVolume(written(swapped.samples), layout), nameOf(volume.sampleType));
    }
    const auto reasonOfRaw = [&](const RawLayout& layout) {
        const std::string path = written(Bytes(61, 0));
        return reason("cannot read '" + path + "': ", [&] { readRawVolume(path, layout); });
    };
    EXPECT_EQ(reasonOfRaw({5, 4, 3}), "a raw volume of 5 x 4 x 3, 8 bit unsigned, has 60 bytes, but the file has 61");
    EXPECT_EQ(reasonOfRaw({5, 4, 3, SampleType::Int16}),
              "a raw volume of 5 x 4 x 3, 16 bit signed, has 120 bytes, but the file has 61");
    EXPECT_EQ(reasonOfRaw({0, 4, 3}), "the volume is empty (0 x 4 x 3)");
    EXPECT_EQ(reasonOfRaw({1UL << 63, 1UL << 63, 1UL << 63}),
              "the volume is too large (9223372036854775808 x 9223372036854775808 x 9223372036854775808)");
}

TEST_F(VolumeIo, LeavesNothingBehindWhenWritingFails)
{
    EXPECT_EQ(reasonOfWriting(in("volume.png"), ramps()[0]),
              "volumes are written to files whose names end in .tif, .tiff, .nii or .nii.gz");
    EXPECT_EQ(reasonOfWriting(in("no/such.nii"), ramps()[0]), "No such file or directory");
    Volume tooFew = ramps()[0];
    tooFew.samples.pop_back();
    EXPECT_EQ(reasonOfWriting(in("volume.nii"), tooFew), "a volume of 5 x 4 x 3 with 59 bytes of samples");
    EXPECT_EQ(filesInFolder(), 0U);

    // A full disk, as a limit on the size of a file; the noise is as long when it is deflated.
    std::vector<std::uint8_t> noise(300000);
    std::uint32_t state = 1;
    for (std::uint8_t& sample : noise)
        sample = static_cast<std::uint8_t>((state = 1664525 * state + 1013904223) >> 24);
    const Volume volume = volumeOf(100, 100, 30, SampleType::UInt8, noise);
    rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    for (const std::string ending : g_endings) {
        write(in("kept" + ending), ramps()[0]);
        const Bytes before = readBytes(in("kept" + ending));
        // Within the header, the samples, and what is left when the file is closed.
        for (const rlim_t limit : {20, 5000, 150000, 299990}) {
            const rlimit small = {limit, old.rlim_max};
            setrlimit(RLIMIT_FSIZE, &small);
            const std::string reason = reasonOfWriting(in("kept" + ending), volume);
            setrlimit(RLIMIT_FSIZE, &old);
            EXPECT_TRUE(reason != "no error" && !reason.empty()) << ending << ' ' << limit;
            EXPECT_EQ(readBytes(in("kept" + ending)), before);
        }
    }
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(filesInFolder(), 3U);
}

}  // namespace
}  // namespace orvik::examples
