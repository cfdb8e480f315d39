// Any bytes as a picture and as a volume: it is read, with as many samples as its size says, or refused with the reader's own
// error. No other exception, and no memory beyond what so short a file is worth.

#include "VolumeIo.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <zlib.h>

namespace {

using orvik::examples::Picture;
using orvik::examples::PictureError;
using orvik::examples::Volume;
using Bytes = std::vector<std::uint8_t>;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool underSanitizer = true;
#elif defined(__has_feature)
constexpr bool underSanitizer = __has_feature(address_sanitizer);
#else
constexpr bool underSanitizer = false;
#endif

[[noreturn]] void fail(const std::string& text)
{
    std::fprintf(stderr, "%s\n", text.c_str());
    std::abort();
}

/// A file in memory, which readers know by its name.
class MemoryFile
{
public:
    MemoryFile() : m_descriptor(memfd_create("picture", 0)), m_path("/proc/self/fd/" + std::to_string(m_descriptor))
    {
        if (m_descriptor < 0)
            throw std::runtime_error("no file in memory can be made");
    }

    ~MemoryFile() { close(m_descriptor); }

    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    const std::string& write(const Bytes& bytes)
    {
        const auto size = static_cast<ssize_t>(bytes.size());
        if (ftruncate(m_descriptor, 0) != 0 || pwrite(m_descriptor, bytes.data(), bytes.size(), 0) != size)
            throw std::runtime_error("the file in memory cannot be written");
        return m_path;
    }

private:
    int m_descriptor;
    std::string m_path;
};

/// Readers have what a small machine has. The address sanitizer itself needs more than any limit.
void limitMemory()
{
    const rlimit limit = {rlim_t(8) << 30, rlim_t(8) << 30};
    if (!underSanitizer && setrlimit(RLIMIT_AS, &limit) != 0)
        throw std::runtime_error("the memory cannot be limited");
}

long peakKibibytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void check(const Picture& picture)
{
    const std::size_t bytes = orvik::examples::bytesPerSample(picture.sampleType);
    if (picture.sizeX == 0 || picture.sizeY == 0 || picture.samples.size() / bytes / picture.sizeX != picture.sizeY
        || picture.samples.size() != picture.sizeX * picture.sizeY * bytes) {
        fail("a picture of " + std::to_string(picture.sizeX) + " x " + std::to_string(picture.sizeY) + " with "
             + std::to_string(picture.samples.size()) + " bytes");
    }
    picture.valueAt(picture.sizeX - 1, picture.sizeY - 1);
    if (orvik::examples::toDisplay8(picture).size() != picture.sizeX * picture.sizeY)
        fail("what is shown of the picture has another size");
}

void check(const Volume& volume)
{
    const std::size_t bytes = orvik::examples::bytesPerSample(volume.sampleType), count = volume.samples.size() / bytes;
    if (count == 0 || count / volume.sizeX / volume.sizeY != volume.sizeZ
        || volume.samples.size() != volume.sizeX * volume.sizeY * volume.sizeZ * bytes) {
        fail("a volume of " + orvik::examples::sizeText(volume) + " with " + std::to_string(volume.samples.size())
             + " bytes");
    }
}

template<class Read>
void read(const Bytes& bytes, Read&& readFile)
{
    static MemoryFile file;
    const long before = peakKibibytes();
    const std::string& path = file.write(bytes);
    try {
        check(readFile(path));
    } catch (const PictureError& error) {
        const std::string text = error.what(), start = "cannot read '" + path + "': ";
        if (text.size() <= start.size() || text.compare(0, start.size(), start) != 0)
            fail("an error without file or reason: " + text);
    }
    // No codec of the seeds makes more than 24 KiB of a byte.
    const long after = peakKibibytes(), most = 64 * 1024 + 24 * static_cast<long>(bytes.size());
    if (after > before && after - before > most)
        fail(std::to_string(bytes.size()) + " bytes made the memory grow by " + std::to_string(after - before) + " KiB");
}

void read(const Bytes& bytes)
{
    read(bytes, orvik::examples::readPicture);
    read(bytes, orvik::examples::readVolume);
}

/// Puts the checksums of a PNG file right: without them no change of its bytes gets any further.
bool mendChecksums(Bytes& bytes)
{
    const std::uint8_t mark[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    if (bytes.size() < sizeof mark || std::memcmp(bytes.data(), mark, sizeof mark) != 0)
        return false;
    bool isChanged = false;
    for (std::size_t at = sizeof mark; bytes.size() - at >= 12;) {
        const std::uint8_t* const chunk = bytes.data() + at;
        const std::size_t length = std::size_t(chunk[0]) << 24 | chunk[1] << 16 | chunk[2] << 8 | chunk[3];
        if (length > bytes.size() - at - 12)
            break;
        const uLong sum = crc32(0, chunk + 4, static_cast<uInt>(length + 4));
        for (std::size_t i = 0; i < 4; ++i) {
            std::uint8_t& byte = bytes[at + 8 + length + i];
            const auto right = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
            isChanged |= byte != right;
            byte = right;
        }
        at += 12 + length;
    }
    return isChanged;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool isLimited = (limitMemory(), true);
    static_cast<void>(isLimited);
    Bytes bytes(data, data + size);
    read(bytes);
    if (mendChecksums(bytes))
        read(bytes);
    return 0;
}
