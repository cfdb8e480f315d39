#include "Interruption.h"
#include "VolumeCodec.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <sstream>
#include <type_traits>
#include <utility>

#include <unistd.h>
#include <zlib.h>

// The format's own library believes sizes of broken files, so all of its header would have to be checked before it is asked
// to read. What is checked here is all that there is to read.

namespace orvik::examples::codec {
namespace {

constexpr std::size_t g_chunkBytes = 1 << 20;  ///< read, converted and written at once; whole samples of any type

/// Where a field is in headers of version 1 and 2, and what it is made of.
template<class First, class Second>
struct Field
{
    std::size_t first, second;
};

constexpr Field<std::int16_t, std::int64_t> g_sizes = {40, 16};  ///< the number of axes, then seven sizes
constexpr Field<std::int16_t, std::int16_t> g_type = {70, 12}, g_bits = {72, 14};
constexpr Field<float, double> g_pixdim = {76, 104};
constexpr Field<float, std::int64_t> g_start = {108, 168};
constexpr Field<float, double> g_slope = {112, 176}, g_intercept = {116, 184};
constexpr Field<std::uint8_t, std::int32_t> g_units = {123, 500};
constexpr Field<std::int16_t, std::int32_t> g_qformCode = {252, 344}, g_sformCode = {254, 348};
constexpr Field<float, double> g_quaternion = {256, 352}, g_offset = {268, 376}, g_srow = {280, 400};

class Header
{
public:
    static constexpr std::size_t sizes[] = {0, 348, 540};

    explicit Header(int version) : m_version(version), m_bytes(sizes[version])
    {
        // The sign between the last two marks of version 2 tells text conversions that have happened to the file.
        const std::string mark = version == 1 ? std::string("n+1\0", 4) : std::string("n+2\0\r\n\x1a\n", 8);
        std::copy(mark.begin(), mark.end(), m_bytes.begin() + (version == 1 ? 344 : 4));
        const auto length = static_cast<std::int32_t>(m_bytes.size());
        std::memcpy(m_bytes.data(), &length, sizeof length);
    }

    Header(int version, std::vector<unsigned char> bytes, bool isSwapped)
        : m_version(version), m_isSwapped(isSwapped), m_bytes(std::move(bytes))
    {
    }

    int version() const { return m_version; }

    bool isSwapped() const { return m_isSwapped; }

    const std::vector<unsigned char>& bytes() const { return m_bytes; }

    std::string mark() const
    {
        const auto* const at = reinterpret_cast<const char*>(m_bytes.data()) + (m_version == 1 ? 344 : 4);
        return std::string(at, 3);
    }

    template<class As, class First, class Second>
    As get(Field<First, Second> field, std::size_t i = 0) const
    {
        return m_version == 1 ? static_cast<As>(load<First>(field.first, i))
                              : static_cast<As>(load<Second>(field.second, i));
    }

    template<std::size_t n, class First, class Second>
    void get(Field<First, Second> field, std::array<double, n>& values) const
    {
        for (std::size_t i = 0; i < n; ++i)
            values[i] = get<double>(field, i);
    }

    template<class First, class Second, class Value>
    void set(Field<First, Second> field, Value value, std::size_t i = 0)
    {
        if (m_version == 1)
            store(field.first, i, static_cast<First>(value));
        else
            store(field.second, i, static_cast<Second>(value));
    }

    template<class First, class Second, std::size_t n>
    void set(Field<First, Second> field, const std::array<double, n>& values)
    {
        for (std::size_t i = 0; i < n; ++i)
            set(field, values[i], i);
    }

private:
    template<class Number>
    Number load(std::size_t at, std::size_t i) const
    {
        unsigned char bytes[sizeof(Number)];
        std::copy_n(m_bytes.data() + at + i * sizeof bytes, sizeof bytes, bytes);
        if (m_isSwapped)
            swapSamples(bytes, 1, sizeof bytes);
        return loadSample<Number>(bytes);
    }

    template<class Number>
    void store(std::size_t at, std::size_t i, Number number)
    {
        std::memcpy(m_bytes.data() + at + i * sizeof number, &number, sizeof number);
    }

    int m_version;
    bool m_isSwapped = false;
    std::vector<unsigned char> m_bytes;
};

/// The bytes of a file, decompressed where it is.
class Source
{
public:
    explicit Source(std::FILE* file) : m_file(gzdopen(dup(fileno(file)), "rb"))
    {
        if (m_file == nullptr)
            throw std::bad_alloc();
        // The descriptor was read from to recognise the file.
        gzbuffer(m_file, 1 << 17);
        if (gzseek(m_file, 0, SEEK_SET) != 0)
            refuse();
    }

    ~Source() { gzclose(m_file); }

    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    bool isCompressed() const { return gzdirect(m_file) == 0; }

    void read(unsigned char* bytes, std::size_t count)
    {
        if (readSome(bytes, count) != count)
            throw Refusal("the file ends too early");
    }

    void skip(std::uint64_t count)
    {
        std::vector<unsigned char> passed(g_chunkBytes);
        for (; count > 0; count -= std::min<std::uint64_t>(count, passed.size()))
            read(passed.data(), std::min<std::uint64_t>(count, passed.size()));
    }

    /// Behind the compressed data is their checksum. What else may follow is passed over.
    void readToEnd()
    {
        std::vector<unsigned char> passed(g_chunkBytes);
        while (isCompressed() && readSome(passed.data(), passed.size()) > 0) {
        }
    }

private:
    std::size_t readSome(unsigned char* bytes, std::size_t count)
    {
        const int got = gzread(m_file, bytes, static_cast<unsigned>(count));
        if (got < static_cast<int>(count)) {
            int error = Z_OK;
            gzerror(m_file, &error);
            if (error != Z_OK)
                refuse();
        }
        return static_cast<std::size_t>(got);
    }

    [[noreturn]] void refuse()
    {
        int error = Z_OK;
        const std::string text = gzerror(m_file, &error);
        switch (error) {
        case Z_ERRNO: throw Refusal(systemReason(errno));
        case Z_BUF_ERROR: throw Refusal("the file ends too early");
        case Z_MEM_ERROR: throw std::bad_alloc();
        default: throw Refusal("the compressed data are damaged" + text.substr(std::min(text.find(": "), text.size())));
        }
    }

    gzFile m_file;
};

/// Types of samples by the format's numbers.
enum : int
{
    e_uint8 = 2,
    e_int16 = 4,
    e_int32 = 8,
    e_real32 = 16,
    e_real64 = 64,
    e_int8 = 256,
    e_uint16 = 512,
    e_uint32 = 768,
    e_int64 = 1024,
    e_uint64 = 1280
};

template<class Work>
auto withStoredType(int type, Work&& work)
{
    switch (type) {
    case e_uint8: return work(std::uint8_t());
    case e_int16: return work(std::int16_t());
    case e_int32: return work(std::int32_t());
    case e_real32: return work(float());
    case e_real64: return work(double());
    case e_int8: return work(std::int8_t());
    case e_uint16: return work(std::uint16_t());
    case e_uint32: return work(std::uint32_t());
    case e_int64: return work(std::int64_t());
    case e_uint64: return work(std::uint64_t());
    default:
        throw Refusal("samples of NIfTI's type " + std::to_string(type)
                      + " are not supported: convert the file to integers or 32 bit reals first");
    }
}

int storedType(SampleType type)
{
    switch (type) {
    case SampleType::UInt8: return e_uint8;
    case SampleType::Int8: return e_int8;
    case SampleType::UInt16: return e_uint16;
    case SampleType::Int16: return e_int16;
    case SampleType::UInt32: return e_uint32;
    case SampleType::Int32: return e_int32;
    case SampleType::Real32: break;
    }
    return e_real32;
}

/// What samples of a stored type are kept as.
template<class Stored>
using Kept =
    std::conditional_t<sizeof(Stored) != 8, Stored,
                       std::conditional_t<std::is_floating_point_v<Stored>, float,
                                          std::conditional_t<std::is_signed_v<Stored>, std::int32_t, std::uint32_t>>>;

template<class Sample>
SampleType sampleTypeOf(Sample)
{
    if constexpr (std::is_floating_point_v<Sample>)
        return SampleType::Real32;
    else if constexpr (std::is_signed_v<Sample>)
        return sizeof(Sample) == 1 ? SampleType::Int8 : sizeof(Sample) == 2 ? SampleType::Int16 : SampleType::Int32;
    else
        return sizeof(Sample) == 1 ? SampleType::UInt8 : sizeof(Sample) == 2 ? SampleType::UInt16 : SampleType::UInt32;
}

template<class Stored>
Kept<Stored> narrowed(Stored value)
{
    if constexpr (std::is_floating_point_v<Stored>) {
        const bool isInRange = !std::isfinite(value) || std::abs(value) <= double(std::numeric_limits<float>::max());
        if (isInRange && (std::isnan(value) || static_cast<Stored>(static_cast<float>(value)) == value))
            return static_cast<float>(value);
    } else if (static_cast<Stored>(static_cast<Kept<Stored>>(value)) == value) {
        return static_cast<Kept<Stored>>(value);
    }
    std::ostringstream text;
    text.precision(17);
    text << "a sample is " << value << ", which no 32 bit " << (std::is_floating_point_v<Stored> ? "real" : "integer")
         << " is: convert the file to 32 bit reals first, which rounds";
    throw Refusal(text.str());
}

/// What the header says of the samples.
struct Layout
{
    int type;
    std::size_t bytesPerStored;
    std::uint64_t start;
    double slope, intercept;

    bool isScaled() const { return slope != 0 && (slope != 1 || intercept != 0); }
};

void convert(const Layout& layout, const unsigned char* stored, std::size_t count, unsigned char* out)
{
    withStoredType(layout.type, [&](auto type) {
        using Stored = decltype(type);
        for (std::size_t i = 0; i < count; ++i) {
            const Stored value = loadSample<Stored>(stored + i * sizeof value);
            if (layout.isScaled()) {
                const double exact = layout.slope * static_cast<double>(value) + layout.intercept;
                if (std::isfinite(exact) && std::abs(exact) > std::numeric_limits<float>::max())
                    throw Refusal("the header scales samples beyond what 32 bit reals hold");
                const auto scaled = static_cast<float>(exact);
                std::memcpy(out + i * sizeof scaled, &scaled, sizeof scaled);
            } else {
                const Kept<Stored> kept = narrowed(value);
                std::memcpy(out + i * sizeof kept, &kept, sizeof kept);
            }
        }
    });
}

Header readHeader(Source& source)
{
    std::vector<unsigned char> bytes(sizeof(std::int32_t));
    source.read(bytes.data(), bytes.size());
    for (const int version : {1, 2}) {
        const auto length = static_cast<std::int32_t>(Header::sizes[version]);
        const auto found = loadSample<std::int32_t>(bytes.data());
        const bool isSwapped = found == static_cast<std::int32_t>(__builtin_bswap32(length));
        if (found != length && !isSwapped)
            continue;
        bytes.resize(Header::sizes[version]);
        source.read(bytes.data() + sizeof length, bytes.size() - sizeof length);
        return Header(version, std::move(bytes), isSwapped);
    }
    throw Refusal(source.isCompressed() ? "what is compressed is no NIfTI file" : "no NIfTI file");
}

/// Refuses what is no volume in one file.
void readSizes(const Header& header, Volume& volume)
{
    const std::string number = std::to_string(header.version());
    if (header.mark() == "ni" + number)
        throw Refusal("its samples are in another file: convert the two to one .nii file first");
    if (header.mark() != "n+" + number)
        throw Refusal("no NIfTI file: it lacks the mark n+" + number);
    const auto nbAxes = header.get<std::int64_t>(g_sizes);
    if (nbAxes < 1 || nbAxes > 7)
        throw Refusal("the header says that there are " + std::to_string(nbAxes) + " axes, not 1 to 7");
    unsigned long* const sizes[] = {&volume.sizeX, &volume.sizeY, &volume.sizeZ};
    for (std::size_t axis = 1; axis <= 7; ++axis) {
        const bool isUsed = static_cast<std::int64_t>(axis) <= nbAxes;
        const std::int64_t size = isUsed ? header.get<std::int64_t>(g_sizes, axis) : 1;
        if (size < 1)
            throw Refusal("the header says that axis " + std::to_string(axis) + " has " + std::to_string(size) + " samples");
        if (axis <= 3)
            *sizes[axis - 1] = static_cast<unsigned long>(size);
        else if (size != 1)
            throw Refusal("the file has " + std::to_string(size) + " volumes along axis " + std::to_string(axis)
                          + ": extract one of them first");
    }
}

Layout readLayout(const Header& header, SampleType& sampleType)
{
    Layout layout = {header.get<int>(g_type), 0, 0, header.get<double>(g_slope), header.get<double>(g_intercept)};
    withStoredType(layout.type, [&](auto type) {
        layout.bytesPerStored = sizeof type;
        sampleType = layout.isScaled() ? SampleType::Real32 : sampleTypeOf(Kept<decltype(type)>());
    });
    const int bits = header.get<int>(g_bits), expected = static_cast<int>(8 * layout.bytesPerStored);
    if (bits != expected)
        throw Refusal("the header says that samples have " + std::to_string(bits) + " bits, but those of its type "
                      + std::to_string(layout.type) + " have " + std::to_string(expected));
    if (layout.isScaled() && !(std::isfinite(layout.slope) && std::isfinite(layout.intercept))) {
        std::ostringstream text;
        text << "the header scales samples by " << layout.slope << " and adds " << layout.intercept;
        throw Refusal(text.str());
    }
    const double start = header.get<double>(g_start), least = static_cast<double>(header.bytes().size());
    if (!(start >= least && start < 1e15 && start == std::floor(start))) {
        std::ostringstream text;
        text << "the header of " << least << " bytes says that samples begin at byte " << start;
        throw Refusal(text.str());
    }
    layout.start = static_cast<std::uint64_t>(start);
    return layout;
}

VolumeSpace readSpace(const Header& header)
{
    NiftiSpace nifti;
    nifti.units = header.get<int>(g_units) & 7;  // above: units of time
    header.get(g_pixdim, nifti.pixdim);
    nifti.qformCode = header.get<int>(g_qformCode);
    nifti.sformCode = header.get<int>(g_sformCode);
    header.get(g_quaternion, nifti.quaternion);
    header.get(g_offset, nifti.offset);
    header.get(g_srow, nifti.srow);
    VolumeSpace space;
    space.nifti = nifti;
    // Without a unit they are taken as millimetres, as everywhere.
    const double unit = nifti.units == 1 ? 1e3 : nifti.units == 3 ? 1e-3 : 1;
    space.setSpacing(unit * nifti.pixdim[1], unit * nifti.pixdim[2], unit * nifti.pixdim[3]);
    return space;
}

/// Files open for writing, compressed or not. Throws Refusal.
class Target
{
public:
    Target(std::FILE* file, bool isCompressed) : m_file(gzdopen(dup(fileno(file)), isCompressed ? "wb6" : "wbT"))
    {
        if (m_file == nullptr)
            throw std::bad_alloc();
        gzbuffer(m_file, 1 << 17);
    }

    ~Target()
    {
        if (m_file != nullptr)
            gzclose(m_file);
    }

    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    void write(const unsigned char* bytes, std::size_t count)
    {
        for (std::size_t at = 0; at < count; at += g_chunkBytes) {
            throwIfInterrupted();
            const auto part = static_cast<unsigned>(std::min(g_chunkBytes, count - at));
            if (gzwrite(m_file, bytes + at, part) != static_cast<int>(part))
                throw Refusal(systemReason(errno));
        }
    }

    /// Buffered bytes may be refused as late as here.
    void close()
    {
        if (gzclose(std::exchange(m_file, nullptr)) != Z_OK)
            throw Refusal(systemReason(errno));
    }

private:
    gzFile m_file;
};

void describeSpace(Header& header, const VolumeSpace& space)
{
    NiftiSpace nifti;
    if (space.nifti) {
        nifti = *space.nifti;
    } else {
        nifti.pixdim.fill(1);
        if (space.spacing) {
            nifti.units = 2;
            std::copy(space.spacing->begin(), space.spacing->end(), nifti.pixdim.begin() + 1);
        }
    }
    header.set(g_units, nifti.units);
    header.set(g_pixdim, nifti.pixdim);
    header.set(g_qformCode, nifti.qformCode);
    header.set(g_sformCode, nifti.sformCode);
    header.set(g_quaternion, nifti.quaternion);
    header.set(g_offset, nifti.offset);
    header.set(g_srow, nifti.srow);
}

}  // namespace

Volume readNifti(std::FILE* file, std::uint64_t fileBytes)
{
    Source source(file);
    const Header header = readHeader(source);
    Volume volume;
    readSizes(header, volume);
    const Layout layout = readLayout(header, volume.sampleType);
    volume.space = readSpace(header);
    const std::size_t bytes = checkedBytes(volume), each = bytesPerSample(volume.sampleType);
    const std::string what = "volume of " + sizeText(volume);
    // 1032 is the most that deflate ever gains: 258 bytes from two bits.
    const std::uint64_t stored = layout.start + bytes / each * layout.bytesPerStored;
    requireRoomFor(source.isCompressed() ? stored / 1032 : stored, fileBytes, what);
    requireMemoryFor(bytes, availableMemory(), what);
    volume.samples.reserve(bytes);

    source.skip(layout.start - header.bytes().size());
    std::vector<unsigned char> chunk(g_chunkBytes);
    for (std::size_t left = bytes / each; left > 0;) {
        throwIfInterrupted();
        const std::size_t count = std::min(left, chunk.size() / layout.bytesPerStored);
        source.read(chunk.data(), count * layout.bytesPerStored);
        if (header.isSwapped())
            swapSamples(chunk.data(), count, layout.bytesPerStored);
        // Grown behind each chunk, so that a damaged file fails before memory for all of it is filled.
        volume.samples.resize(volume.samples.size() + count * each);
        convert(layout, chunk.data(), count, volume.samples.data() + volume.samples.size() - count * each);
        left -= count;
    }
    source.readToEnd();
    return volume;
}

void writeNifti(std::FILE* file, const Volume& volume, bool isCompressed)
{
    const unsigned long sizes[] = {volume.sizeX, volume.sizeY, volume.sizeZ, 1, 1, 1, 1};
    Header header(*std::max_element(sizes, sizes + 3) > 32767 ? 2 : 1);
    header.set(g_sizes, 3);
    for (std::size_t axis = 0; axis < 7; ++axis)
        header.set(g_sizes, sizes[axis], axis + 1);
    header.set(g_type, storedType(volume.sampleType));
    header.set(g_bits, 8 * bytesPerSample(volume.sampleType));
    header.set(g_slope, 1);
    describeSpace(header, volume.space);
    const unsigned char noExtension[4] = {};
    header.set(g_start, header.bytes().size() + sizeof noExtension);
    Target target(file, isCompressed);
    target.write(header.bytes().data(), header.bytes().size());
    target.write(noExtension, sizeof noExtension);
    target.write(volume.samples.data(), volume.samples.size());
    target.close();
}

}  // namespace orvik::examples::codec
