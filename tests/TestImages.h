#pragma once

// Images of any sample type for tests: filling, reading, comparing.

#include "frame/image/BaseImage.h"
#include "frame/util/NumericLimits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

namespace orvik::test {

typedef boost::shared_ptr<image::BaseImage> ImagePtr;

constexpr image::eImageBufferType kAllTypes[] = {image::eIBT_Int8,    image::eIBT_UInt8,  image::eIBT_Int16,
                                                 image::eIBT_UInt16,  image::eIBT_Int32,  image::eIBT_UInt32,
                                                 image::eIBT_Real32,  image::eIBT_Binary, image::eIBT_Label16,
                                                 image::eIBT_Label32, image::eIBT_Label8};

inline ImagePtr blank(unsigned long x, unsigned long y, unsigned long z = 1, unsigned long c = 1,
                      image::eImageBufferType type = image::eIBT_UInt8)
{
    return image::createImage(type, image::ImageSizes(x, y, z, c));
}

/// Calls f(x, y, z, c, t) for each sample, x fastest.
template<class F>
void forEachSample(const image::ImageSizes& sizes, F&& f)
{
    for (unsigned long t = 0; t < sizes.t; ++t)
        for (unsigned long c = 0; c < sizes.c; ++c)
            for (unsigned long z = 0; z < sizes.z; ++z)
                for (unsigned long y = 0; y < sizes.y; ++y)
                    for (unsigned long x = 0; x < sizes.x; ++x)
                        f(x, y, z, c, t);
}

inline bool isSigned(image::eImageBufferType type)
{
    const eDataType data = image::toDataType(type);
    return data == eDT_Int8 || data == eDT_Int16 || data == eDT_Int32 || data == eDT_Real32;
}

/// A sample of any type; exact, since double holds them all.
inline double sampleAt(const image::BaseImage& image, unsigned long x, unsigned long y, unsigned long z = 0,
                       unsigned long c = 0, unsigned long t = 0)
{
    double value = 0;
    image::withSampleType(image::toDataType(image.getBufferType()), [&](auto sample) {
        value = static_cast<double>(static_cast<const decltype(sample)*>(image.getLine(y, z, c, t))[x]);
    });
    return value;
}

/// Whole numbers keep the low bits of the value's whole part.
inline void setSample(image::BaseImage& image, double value, unsigned long x, unsigned long y, unsigned long z = 0,
                      unsigned long c = 0, unsigned long t = 0)
{
    image::withSampleType(image::toDataType(image.getBufferType()), [&](auto sample) {
        typedef decltype(sample) T;
        static_cast<T*>(image.accessLine(y, z, c, t))[x] =
            std::is_integral<T>::value ? static_cast<T>(static_cast<long>(value)) : static_cast<T>(value);
    });
}

/// Random samples: any value of an integer type, 0 and 1 for binary, -1000 to 1000 with fractions for float.
inline void fillRandom(image::BaseImage& image, unsigned int seed)
{
    std::mt19937 random(seed);
    const image::eImageBufferType type = image.getBufferType();
    const unsigned long bits = type == image::eIBT_Binary ? 1 : ~0ul;
    std::uniform_real_distribution<float> real(-1000, 1000);
    forEachSample(image.getGeometry().getSizes(), [&](auto... at) {
        setSample(image, type == image::eIBT_Real32 ? real(random) : static_cast<double>(random() & bits), at...);
    });
}

inline ImagePtr randomImage(image::eImageBufferType type, const image::ImageSizes& sizes, unsigned int seed = 1)
{
    const ImagePtr image = image::createImage(type, sizes);
    fillRandom(*image, seed);
    return image;
}

/// Samples that are drawn from few values, so that equal ones meet.
inline ImagePtr drawnImage(image::eImageBufferType type, const image::ImageSizes& sizes, const std::vector<double>& values,
                           unsigned int seed)
{
    const ImagePtr image = image::createImage(type, sizes);
    std::mt19937 random(seed);
    forEachSample(sizes, [&](auto... at) { setSample(*image, values[random() % values.size()], at...); });
    return image;
}

/// The limits of a type and what lies next to them; of floats, all that are odd.
inline std::vector<double> oddValues(image::eImageBufferType type)
{
    std::vector<double> values;
    image::withSampleType(image::toDataType(type), [&](auto sample) {
        typedef NumericLimits<decltype(sample)> Limits;
        const double min = static_cast<double>(Limits::s_min), max = static_cast<double>(Limits::s_max);
        values = {min, max, max - 1, std::floor(max / 2), max > 16777217 ? 16777217.0 : 3.0};  // the first that floats round
    });
    values.insert(values.end(), {0, 1, 1, 2, 3});
    const double infinity = std::numeric_limits<double>::infinity();
    if (type == image::eIBT_Real32)
        values.insert(values.end(), {std::nan(""), infinity, -infinity, -0.0, -1, 1e-45, 1e20, -1e20});
    return values;
}

inline void copySamples(const image::BaseImage& from, image::BaseImage& to)
{
    const std::size_t lineSize = from.getSizeX() * image::getImageBufferBaseSize(from.getBufferType());
    forEachSample(from.getGeometry().getSizes(), [&](auto x, auto... line) {
        if (x == 0)
            std::memcpy(to.accessLine(line...), from.getLine(line...), lineSize);
    });
}

inline ImagePtr copyOf(const image::BaseImage& image)
{
    const ImagePtr copy = image::createImageLike(image, image.getBufferType());
    copySamples(image, *copy);
    return copy;
}

/// Same sizes, types and bits; the first difference is told by its coordinates.
inline ::testing::AssertionResult sameSamples(const image::BaseImage& a, const image::BaseImage& b)
{
    const image::ImageSizes& sizes = a.getGeometry().getSizes();
    if (!(sizes == b.getGeometry().getSizes()) || a.getBufferType() != b.getBufferType())
        return ::testing::AssertionFailure() << toString(sizes) << ", " << toString(a.getBufferType()) << " against "
                                             << toString(b.getGeometry().getSizes()) << ", " << toString(b.getBufferType());
    const std::size_t sampleSize = image::getImageBufferBaseSize(a.getBufferType());
    ::testing::AssertionResult result = ::testing::AssertionSuccess();
    forEachSample(sizes, [&](unsigned long x, unsigned long y, unsigned long z, unsigned long c, unsigned long t) {
        if (result
            && std::memcmp(static_cast<const char*>(a.getLine(y, z, c, t)) + x * sampleSize,
                           static_cast<const char*>(b.getLine(y, z, c, t)) + x * sampleSize, sampleSize)
                   != 0)
            result = ::testing::AssertionFailure()
                     << toString(a.getBufferType()) << ", size " << toString(sizes) << ": at (" << x << ", " << y << ", "
                     << z << ", " << c << ", " << t << ") " << sampleAt(a, x, y, z, c, t) << " against "
                     << sampleAt(b, x, y, z, c, t);
    });
    return result;
}

/// An image on a caller's buffer, the lines apart by `gap` samples that belong to nobody: they must still hold what they
/// held when it ends. The buffer ends with the last sample, so that tools that watch memory see what is read past it.
class GuardedImage
{
public:
    GuardedImage(image::eImageBufferType type, const image::ImageSizes& sizes, unsigned long gap)
        : m_sampleSize(image::getImageBufferBaseSize(type)), m_lineSize(sizes.x * m_sampleSize),
          m_stride((sizes.x + gap) * m_sampleSize)
    {
        const unsigned long nbLines = sizes.y * sizes.z * sizes.c * sizes.t;
        m_bytes.assign((nbLines - 1) * m_stride + m_lineSize, s_guard);
        const long line = static_cast<long>(m_stride), plane = line * static_cast<long>(sizes.y);
        const long volume = plane * static_cast<long>(sizes.z);
        m_image = image::wrapBuffer(static_cast<void*>(m_bytes.data()), type, sizes,
                                    image::ImageStrides(line, plane, volume, volume * static_cast<long>(sizes.c)));
    }

    GuardedImage(const image::BaseImage& from, unsigned long gap)
        : GuardedImage(from.getBufferType(), from.getGeometry().getSizes(), gap)
    {
        copySamples(from, *m_image);
    }
    GuardedImage(const GuardedImage&) = delete;
    ~GuardedImage()
    {
        for (std::size_t i = 0; i < m_bytes.size(); ++i)
            if (i % m_stride >= m_lineSize && m_bytes[i] != s_guard) {
                ADD_FAILURE() << "byte " << i << ", between lines of " << m_lineSize << " bytes, was written";
                return;
            }
    }

    const ImagePtr& get() const { return m_image; }

private:
    static constexpr unsigned char s_guard = 0xA5;

    unsigned long m_sampleSize, m_lineSize, m_stride;
    std::vector<unsigned char> m_bytes;
    ImagePtr m_image;
};

}  // namespace orvik::test
