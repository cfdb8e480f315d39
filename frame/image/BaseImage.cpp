#include "frame/image/BaseImage.h"

#include "frame/image/ImageLines.h"
#include "frame/util/FrameMessages.h"

#include <boost/make_shared.hpp>

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <new>

namespace orvik { namespace image {

namespace {

const unsigned long g_alignment = 64;    // bytes; a line starts on a cache line and on a vector of the widest set
const unsigned long g_linePadding = 64;  // samples

#define ORVIK_THROW_IMAGE(text) \
    ORVIK_THROW(imaproc::ORVIKImageProcessingException, imaproc::g_imageProcessingLogSource, \
                imaproc::eImageMessage::eInvalidImage, text)

/// Tells what there was no memory for, without asking for more.
class NoMemoryForImage : public std::bad_alloc
{
public:
    NoMemoryForImage(const ImageSizes& sizes, unsigned long bytes)
    {
        std::snprintf(m_text, sizeof m_text,
                      "there is no memory for an image of size %lu x %lu x %lu x %lu x %lu, %lu bytes", sizes.x, sizes.y,
                      sizes.z, sizes.c, sizes.t, bytes);
    }
    const char* what() const noexcept override { return m_text; }

private:
    char m_text[200];
};

char* alignedUp(char* address)
{
    const std::uintptr_t place = reinterpret_cast<std::uintptr_t>(address);
    return address + (g_alignment - place % g_alignment) % g_alignment;
}

/// A large image meets the system at each page when it is first written: that takes as long as a fast filter, and a
/// fraction of it with pages 512 times as large. A system that has none goes on as before.
void askForHugePages(char* origin, unsigned long bytes)
{
    const unsigned long hugePage = 2ul << 20;
    const unsigned long skipped = (hugePage - reinterpret_cast<std::uintptr_t>(origin) % hugePage) % hugePage;
    if (bytes >= skipped + hugePage)
        madvise(origin + skipped, (bytes - skipped) / hugePage * hugePage, MADV_HUGEPAGE);
}

/// Product that is refused when it would pass what a signed distance in bytes can tell.
unsigned long checkedProduct(unsigned long a, unsigned long b, const ImageSizes& sizes)
{
    unsigned long product = 0;
    if (__builtin_mul_overflow(a, b, &product) || product > static_cast<unsigned long>(std::numeric_limits<long>::max()))
        ORVIK_THROW_IMAGE("the number of bytes of size " + toString(sizes) + " overflows");
    return product;
}

void checkTypeAndSizes(eImageBufferType type, const ImageSizes& sizes)
{
    if (!isValid(type))
        ORVIK_THROW_IMAGE("buffer type " + std::to_string(static_cast<unsigned int>(type))
                          + " is none of the types 1 to 11");
    if (sizes.x < 1 || sizes.y < 1 || sizes.z < 1 || sizes.c < 1 || sizes.t < 1)
        ORVIK_THROW_IMAGE("every size must be at least 1, not " + toString(sizes));
}

/// Strides of lines of `lineBytes` that follow one another without gaps.
ImageStrides contiguousStrides(unsigned long lineBytes, const ImageSizes& sizes)
{
    const unsigned long plane = checkedProduct(lineBytes, sizes.y, sizes);
    const unsigned long volume = checkedProduct(plane, sizes.z, sizes);
    const unsigned long channels = checkedProduct(volume, sizes.c, sizes);
    checkedProduct(channels, sizes.t, sizes);
    return ImageStrides(static_cast<long>(lineBytes), static_cast<long>(plane), static_cast<long>(volume),
                        static_cast<long>(channels));
}

/// Fills strides that were not given, and refuses those under which two samples could share a byte.
ImageStrides checkedStrides(const ImageStrides& asked, eImageBufferType type, const ImageSizes& sizes)
{
    const unsigned long sampleSize = getImageBufferBaseSize(type);
    const unsigned long lineBytes = checkedProduct(sizes.x, sampleSize, sizes);
    const ImageStrides contiguous = contiguousStrides(lineBytes, sizes);
    if (asked.y == 0 && asked.z == 0 && asked.c == 0 && asked.t == 0)
        return contiguous;

    struct Axis
    {
        const char* name;
        unsigned long size;
        long stride;
    };
    Axis axes[] = {{"Y", sizes.y, asked.y}, {"Z", sizes.z, asked.z}, {"C", sizes.c, asked.c}, {"T", sizes.t, asked.t}};
    const auto distance = [](const Axis& axis) {
        return axis.stride < 0 ? 0ul - static_cast<unsigned long>(axis.stride) : static_cast<unsigned long>(axis.stride);
    };
    std::stable_sort(std::begin(axes), std::end(axes),
                     [&](const Axis& a, const Axis& b) { return distance(a) < distance(b); });
    unsigned long extent = lineBytes;  // bytes from the first sample to the end of the last one, over the axes so far
    for (const Axis& axis : axes) {
        if (axis.size == 1)
            continue;
        if (distance(axis) % sampleSize != 0)
            ORVIK_THROW_IMAGE("the stride of axis " + std::string(axis.name) + ", " + std::to_string(axis.stride)
                              + " bytes, is no multiple of the sample's size, " + std::to_string(sampleSize));
        if (distance(axis) < extent)
            ORVIK_THROW_IMAGE("the stride of axis " + std::string(axis.name) + ", " + std::to_string(axis.stride)
                              + " bytes, is too small: " + std::to_string(extent) + " bytes lie within one step of it");
        const unsigned long span = checkedProduct(distance(axis), axis.size - 1, sizes);
        if (__builtin_add_overflow(extent, span, &extent)
            || extent > static_cast<unsigned long>(std::numeric_limits<long>::max()))
            ORVIK_THROW_IMAGE("the number of bytes of size " + toString(sizes) + " overflows");
    }
    return asked;
}

boost::shared_ptr<BaseImage> wrap(char* data, eImageBufferType type, const ImageSizes& sizes, const ImageStrides& strides,
                                  const boost::shared_ptr<void>& keepAlive)
{
    checkTypeAndSizes(type, sizes);
    if (!data)
        ORVIK_THROW_IMAGE(std::string("the buffer is null"));
    if (reinterpret_cast<std::uintptr_t>(data) % getImageBufferBaseSize(type) != 0)
        ORVIK_THROW_IMAGE("the buffer is not aligned to its samples of " + std::to_string(getImageBufferBaseSize(type))
                          + " bytes");
    return boost::make_shared<BaseImage>(keepAlive, data, ImageGeometry(sizes, type), checkedStrides(strides, type, sizes),
                                         false);
}

}  // namespace

bool operator==(const ImageSizes& a, const ImageSizes& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z && a.c == b.c && a.t == b.t;
}

std::string toString(const ImageSizes& sizes)
{
    return std::to_string(sizes.x) + " x " + std::to_string(sizes.y) + " x " + std::to_string(sizes.z) + " x "
           + std::to_string(sizes.c) + " x " + std::to_string(sizes.t);
}

BaseImage::BaseImage(const boost::shared_ptr<void>& memory, char* origin, const ImageGeometry& geometry,
                     const ImageStrides& strides, bool hasSlack)
    : m_memory(memory), m_origin(origin), m_geometry(geometry), m_strides(strides), m_hasSlack(hasSlack)
{
}

BaseImage::~BaseImage() = default;

bool BaseImage::hasBinary8BitsStorage() const
{
    return toDataType(getBufferType()) == eDT_UInt8;
}

BasePlanStorage BaseImage::planStorage(const PlanIndex& index) const
{
    return BasePlanStorage(m_origin + static_cast<long>(index.z) * m_strides.z + static_cast<long>(index.c) * m_strides.c
                               + static_cast<long>(index.t) * m_strides.t,
                           m_strides.y, ImagePlanGeometry(getSizeX(), getSizeY(), getBufferType()));
}

boost::shared_ptr<BaseImage> BaseImage::makeView(const PlanIndex& index, unsigned long sizeZ) const
{
    const ImageGeometry geometry(ImageSizes(getSizeX(), getSizeY(), sizeZ), getBufferType());
    char* const origin = static_cast<char*>(planStorage(index).accessLine(0));
    return boost::make_shared<BaseImage>(m_memory, origin, geometry, m_strides, m_hasSlack);
}

boost::shared_ptr<const BaseImage> BaseImage::getView(const PlanIndex& index, unsigned long sizeZ) const
{
    return makeView(index, sizeZ);
}

boost::shared_ptr<BaseImage> BaseImage::getView(const PlanIndex& index, unsigned long sizeZ)
{
    return makeView(index, sizeZ);
}

boost::shared_ptr<BaseImage> BaseImage::getViewAlongZ()
{
    const ImageGeometry geometry(ImageSizes(getSizeX(), getSizeZ(), getSizeY()), getBufferType());
    return boost::make_shared<BaseImage>(m_memory, m_origin, geometry, ImageStrides(m_strides.z, m_strides.y), m_hasSlack);
}

boost::shared_ptr<BaseImage> createImage(eImageBufferType type, const ImageSizes& sizes)
{
    checkTypeAndSizes(type, sizes);
    unsigned long paddedX = 0;
    if (__builtin_add_overflow(sizes.x, g_linePadding - 1, &paddedX))
        ORVIK_THROW_IMAGE("the number of bytes of size " + toString(sizes) + " overflows");
    paddedX = paddedX / g_linePadding * g_linePadding;
    // 64 samples of any type are a multiple of 64 bytes, so every line keeps the alignment of the first.
    const unsigned long lineBytes = checkedProduct(paddedX, getImageBufferBaseSize(type), sizes);
    const ImageStrides strides = contiguousStrides(lineBytes, sizes);
    const unsigned long bytes = static_cast<unsigned long>(strides.t) * sizes.t;

    // Memory fresh from the system is zero already; then calloc does not touch it, and the threads that fill it will.
    const boost::shared_ptr<void> memory(std::calloc(bytes + g_alignment, 1), [](void* block) { std::free(block); });
    if (!memory)
        throw NoMemoryForImage(sizes, bytes);
    char* const origin = alignedUp(static_cast<char*>(memory.get()));
    askForHugePages(origin, bytes);
    return boost::make_shared<BaseImage>(memory, origin, ImageGeometry(sizes, type), strides, true);
}

boost::shared_ptr<BaseImage> createImageLike(const BaseImage& image, eImageBufferType type)
{
    return createImage(type, image.getGeometry().getSizes());
}

boost::shared_ptr<BaseImage> wrapBuffer(void* data, eImageBufferType type, const ImageSizes& sizes,
                                        const ImageStrides& strides, const boost::shared_ptr<void>& keepAlive)
{
    return wrap(static_cast<char*>(data), type, sizes, strides, keepAlive);
}

boost::shared_ptr<const BaseImage> wrapBuffer(const void* data, eImageBufferType type, const ImageSizes& sizes,
                                              const ImageStrides& strides, const boost::shared_ptr<void>& keepAlive)
{
    return wrap(static_cast<char*>(const_cast<void*>(data)), type, sizes, strides, keepAlive);
}

void copyIn(BaseImage& image, const void* data, const ImageStrides& strides)
{
    const boost::shared_ptr<const BaseImage> from =
        wrapBuffer(data, image.getBufferType(), image.getGeometry().getSizes(), strides);
    copySamples(*from, image);
}

void copyOut(const BaseImage& image, void* data, const ImageStrides& strides)
{
    const boost::shared_ptr<BaseImage> to = wrapBuffer(data, image.getBufferType(), image.getGeometry().getSizes(), strides);
    copySamples(image, *to);
}

}}  // namespace orvik::image
