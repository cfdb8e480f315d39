#pragma once

// Images and numbers that follow from bytes, as arguments of calls: any type, size and layout, images that share memory,
// values at the ends of their ranges.

#include "FamilyShapes.h"

#include <boost/make_shared.hpp>

#include <sanitizer/asan_interface.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <ostream>

namespace orvik::fuzz {

using test::forEachSample;
using test::ImagePtr;
using test::Numbers;

/// What a call does with an image.
enum class Use
{
    input,    // reads it
    working,  // leaves anything there
    result    // writes what it is asked for
};

class Scenario
{
public:
    /// `apart`: images that would share memory get some of their own, all else is the same. Of each of the two kinds there
    /// is one at a time, since they use the same memory again. What is chosen is written to `log`, if there is one.
    Scenario(const std::uint8_t* data, std::size_t size, bool apart, std::ostream* log = nullptr)
        : m_data(data), m_size(size), m_log(log), m_apart(apart), m_memory(memoryOf(apart)), m_sizes(chooseSizes()),
          m_type(oneIn(4) ? image::eIBT_Real32 : chooseType()),
          m_resultType(among({image::eIBT_Real32, image::eIBT_UInt8, image::eIBT_Real32, chooseType()}))
    {
    }
    Scenario(const Scenario&) = delete;
    ~Scenario() { watchMemory(false); }

    // --- choices; when there are no more bytes, each is the first one

    /// 0 to n - 1; n is at most 65536.
    unsigned int below(unsigned int n)
    {
        unsigned int value = 0;
        for (unsigned int left = n; left > 1 && m_size > 0; left = (left + 255) / 256, --m_size)
            value = value << 8 | *m_data++;
        return n > 1 ? value % n : 0;
    }
    bool oneIn(unsigned int n) { return below(n) == n - 1; }
    template<class T>
    T among(std::initializer_list<T> values)
    {
        return values.begin()[below(static_cast<unsigned int>(values.size()))];
    }
    /// One of those that are usual, or else one at the ends of the range, one that is no number, or any.
    template<class T>
    T number(const char* name, std::initializer_list<T> usual)
    {
        typedef std::numeric_limits<T> Limits;
        const T any = static_cast<T>(below(256)) / T(std::is_floating_point<T>::value ? 16 : 1);
        const T odd = among({T(0), T(1), T(-1), Limits::lowest(), Limits::max(), Limits::min(), Limits::epsilon(),
                             Limits::infinity(), static_cast<T>(-Limits::infinity()), Limits::quiet_NaN()});
        const T value = oneIn(4) ? odd : oneIn(4) ? any : among(usual);
        tell(name, value);
        return value;
    }

    // --- images

    /// The next one; one in `nullIn` is null, with 0 none. As a rule inputs are alike, and so are the others.
    ImagePtr image(Use use, unsigned int nullIn)
    {
        const image::eImageBufferType type = oneIn(32) ? chooseType() : use == Use::input ? m_type : m_resultType;
        return image(use, nullIn, type, oneIn(64) ? chooseSizes() : m_sizes);
    }
    ImagePtr image(Use use, unsigned int nullIn, image::eImageBufferType type, const image::ImageSizes& sizes)
    {
        if (nullIn > 0 && oneIn(nullIn)) {
            tell("image", "null");
            return nullptr;
        }
        const bool shares = oneIn(4) && !m_given.empty();
        const unsigned int choice = below(256), shift = below(256);
        // Memory of its own comes first, so that further choices do not depend on m_apart.
        const Given other = shares ? m_given[choice % m_given.size()] : Given();
        Given given = shares ? place(other.image->getBufferType(), other.image->getGeometry().getSizes())
                             : place(type, sizes);
        if (shares && !m_apart)
            given = placeOver(other, shift);
        given.use = use;
        m_sharesMemory = m_sharesMemory || shares;
        tell("image", toString(given.image->getBufferType()) + ", " + toString(given.image->getGeometry().getSizes())
                          + ", bytes " + std::to_string(given.begin) + " to " + std::to_string(given.end));
        m_given.push_back(given);
        return given.image;
    }
    const image::ImageSizes& sizes() const { return m_sizes; }
    bool hasType(image::eImageBufferType type) const
    {
        return std::any_of(m_given.begin(), m_given.end(),
                           [&](const Given& given) { return given.image->getBufferType() == type; });
    }
    bool hasNan() const { return m_hasNan; }
    bool sharesMemory() const { return m_sharesMemory; }

    // --- the memory of all images, with guards around them

    /// Fills it as that of another scenario, made from the same bytes.
    void copyFrom(const Scenario& other)
    {
        for (std::size_t i = 0; i < m_given.size(); ++i)
            test::copySamples(*other.m_given[i].image, *m_given[i].image);
    }
    /// Notes what it holds; `restore` brings that back.
    void note()
    {
        m_before.assign(m_memory.begin(), m_memory.begin() + m_end);
        m_writable.assign(m_before.size(), 0);
        forEachLine(false, [&](const unsigned char* line, unsigned long size) {
            std::fill_n(m_writable.begin() + (line - m_memory.data()), size, 1);
        });
    }
    void restore() { std::copy(m_before.begin(), m_before.end(), m_memory.begin()); }
    /// While it is watched, the address sanitizer ends a program that touches what lies between and around the samples.
    void watchMemory(bool watched) const
    {
        ASAN_UNPOISON_MEMORY_REGION(m_memory.data(), m_memory.size());
        if (watched)
            ASAN_POISON_MEMORY_REGION(m_memory.data(), m_memory.size());
        forEachLine(true, [](const unsigned char* line, unsigned long size) {
            ASAN_UNPOISON_MEMORY_REGION(line, size);
            static_cast<void>(line), static_cast<void>(size);  // without the sanitizer
        });
    }
    /// Whether something has changed that a call may not write: inputs, gaps between lines, guards; of a call that was
    /// refused, anything.
    bool isOverwritten(bool refused) const
    {
        for (std::size_t i = 0; i < m_before.size(); ++i)
            if (m_memory[i] != m_before[i] && (refused || m_writable[i] == 0))
                return true;
        return false;
    }
    /// The results that were written to it.
    void appendResults(Numbers& numbers) const
    {
        for (const Given& given : m_given)
            if (given.use == Use::result)
                test::append(numbers, test::numbersOf(*given.image));
    }

    // --- what arguments that depend on one another remember

    double largestStdDev = 1;
    unsigned long nbRhoBins = 1, nbThetaBins = 1;

private:
    struct Given
    {
        ImagePtr image;
        Use use = Use::input;
        long begin = 0, end = 0;  // in the memory
    };

    static std::vector<unsigned char>& memoryOf(bool apart)
    {
        static std::vector<unsigned char> memories[] = {std::vector<unsigned char>(1 << 24),
                                                        std::vector<unsigned char>(1 << 24)};
        return memories[apart];
    }
    static unsigned long padded(unsigned long n) { return (n + 63) / 64 * 64; }

    image::eImageBufferType chooseType() { return test::kAllTypes[below(11)]; }
    image::ImageSizes chooseSizes()
    {
        const unsigned long mostSamples = 6000;
        if (oneIn(64))
            return {1, 4742};
        image::ImageSizes sizes(1 + below(70), 1 + below(40));
        if (oneIn(4))
            sizes.x = among({1ul, 2ul, 63ul, 64ul, 65ul, 127ul, 128ul, 129ul, 200ul, 257ul, 300ul});
        if (oneIn(8))
            sizes.y = among({1ul, 2ul, 100ul, 300ul});
        sizes.y = std::min(sizes.y, mostSamples / sizes.x);
        for (unsigned long* const each : {&sizes.z, &sizes.c, &sizes.t})
            if (oneIn(4) && sizes.x * sizes.y * sizes.z * sizes.c * 3 <= mostSamples)
                *each = 1 + below(3);
        return sizes;
    }

    /// Behind all others. Lines are padded as in images of the library's own, or wrapped with gaps.
    Given place(image::eImageBufferType type, const image::ImageSizes& sizes)
    {
        const bool isTall = sizes.y > 300;  // with slack some of these would not fit into the memory
        const bool hasSlack = oneIn(4) && !isTall, hasGaps = oneIn(2);
        const long sampleSize = image::getImageBufferBaseSize(type), unit = hasSlack ? 64 * sampleSize : sampleSize;
        long extent = static_cast<long>(hasSlack ? padded(sizes.x) : sizes.x) * sampleSize, origin = 0;
        const auto step = [&](unsigned long count) {
            const long stride = extent + (hasGaps ? below(7) * unit : 0), way = (static_cast<long>(count) - 1) * stride;
            const bool isBackwards = oneIn(8);
            extent += way;
            origin += isBackwards ? way : 0;
            return isBackwards ? -stride : stride;
        };
        const image::ImageStrides strides{step(sizes.y), step(sizes.z), step(sizes.c), step(sizes.t)};
        const long begin = m_end / 64 * 64 + s_guard + (hasSlack ? 0 : below(64) * sampleSize), end = begin + extent;
        std::fill(&m_memory.at(m_end), &m_memory.at(end + s_guard), 0xA5);
        m_end = end + s_guard;
        const auto image = boost::make_shared<image::BaseImage>(nullptr, reinterpret_cast<char*>(&m_memory[begin + origin]),
                                                                image::ImageGeometry(sizes, type), strides, hasSlack);
        fill(*image);
        return {image, Use::input, begin, end};
    }
    /// On the memory of another one, or some samples, lines or slices beside it.
    Given placeOver(const Given& other, unsigned int choice) const
    {
        const image::BaseImage& image = *other.image;
        const long sample = image::getImageBufferBaseSize(image.getBufferType());
        const long line = image.getStrides().y, slice = image.getStrides().z, half = (other.end - other.begin) / 8 * 4;
        const long shifts[] = {0, 0, 0, sample, -sample, line, -line, slice, -slice, half};
        long shift = shifts[choice % std::size(shifts)];
        if (other.begin + shift < s_guard || other.end + shift + s_guard > m_end)
            shift = 0;
        const auto over =
            boost::make_shared<image::BaseImage>(nullptr, static_cast<char*>(other.image->accessLine(0)) + shift,
                                                 image.getGeometry(), image.getStrides(), image.hasSlack() && shift == 0);
        return {over, Use::input, other.begin + shift, other.end + shift};
    }
    /// By noise or by a pattern of many or few values, odd ones among them.
    void fill(image::BaseImage& image)
    {
        const unsigned int kind = below(5), slopeX = below(4), slopeY = below(4), seed = below(65536);
        const unsigned long noise = among({1ul, 1ul, 4ul, 16ul});
        if (kind == 0) {
            test::fillRandom(image, seed);
            return;
        }
        std::vector<double> values = {0, 1, 2, 3, 5, 8, 13, 21, 34, 55, 89, 120};
        if (kind == 1)
            values = test::oddValues(image.getBufferType());
        else if (kind == 2)
            values = {0, 0, 0, 0, 0, 0, 1};
        std::minstd_rand random(1 + seed);
        forEachSample(image.getGeometry().getSizes(), [&](auto x, auto y, auto... plane) {
            const double value = values[(slopeX * x + slopeY * y + random() / 8 % noise) % values.size()];
            test::setSample(image, value, x, y, plane...);
            m_hasNan = m_hasNan || std::isnan(value);
        });
    }
    /// Calls f(first byte, bytes that may be touched) for each line of these images.
    template<class F>
    void forEachLine(bool inputsAsWell, const F& f) const
    {
        for (const Given& given : m_given)
            if (inputsAsWell || given.use != Use::input)
                forEachSample(given.image->getGeometry().getSizes(), [&](auto x, auto... line) {
                    const unsigned long sizeX = given.image->getSizeX();
                    if (x == 0)
                        f(static_cast<unsigned char*>(given.image->accessLine(line...)),
                          (given.image->hasSlack() ? padded(sizeX) : sizeX)
                              * image::getImageBufferBaseSize(given.image->getBufferType()));
                });
    }
    template<class T>
    void tell(const char* name, const T& value)
    {
        if (m_log)
            *m_log << "  " << name << ": " << value << '\n';
    }

    static constexpr long s_guard = 2048;  // bytes around each image

    const std::uint8_t* m_data;
    std::size_t m_size;
    std::ostream* m_log;
    const bool m_apart;
    std::vector<unsigned char>& m_memory;
    long m_end = 0;  // of what is used of it
    std::vector<unsigned char> m_before, m_writable;
    std::vector<Given> m_given;
    image::ImageSizes m_sizes;
    image::eImageBufferType m_type, m_resultType;
    bool m_hasNan = false, m_sharesMemory = false;
};

}  // namespace orvik::fuzz
