#include "PictureCodec.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <type_traits>

namespace orvik::examples {
namespace {

using namespace codec;

double sampleAsNumber(SampleType sampleType, const unsigned char* at)
{
    return withSampleType(sampleType, [&](auto sample) { return static_cast<double>(loadSample<decltype(sample)>(at)); });
}

Picture readAnyFormat(const std::string& path)
{
    const OpenFile file = openFile(path);
    switch (file.format) {
    case FileFormat::Png: return readPng(file.handle.get(), file.bytes);
    case FileFormat::Jpeg: return readJpeg(file.handle.get(), file.bytes);
    case FileFormat::Tiff: return readTiff(path, file.bytes);
    default: break;
    }
    throw Refusal("neither a PNG, a JPEG nor a TIFF file");
}

}  // namespace

std::size_t bytesPerSample(SampleType sampleType)
{
    return withSampleType(sampleType, [](auto sample) { return sizeof sample; });
}

std::string nameOf(SampleType sampleType)
{
    if (sampleType == SampleType::Real32)
        return "32 bit real";
    const bool isSigned = withSampleType(sampleType, [](auto sample) { return std::is_signed_v<decltype(sample)>; });
    return std::to_string(8 * bytesPerSample(sampleType)) + (isSigned ? " bit signed" : " bit unsigned");
}

double Picture::valueAt(unsigned long x, unsigned long y) const
{
    if (x >= sizeX || y >= sizeY)
        throw std::out_of_range("no sample at " + std::to_string(x) + ", " + std::to_string(y));
    return sampleAsNumber(sampleType, samples.data() + y * rowBytes() + x * bytesPerSample(sampleType));
}

Picture readPicture(const std::string& path)
{
    try {
        return readAnyFormat(path);
    } catch (const Refusal& refusal) {
        throw PictureError("cannot read '" + path + "': " + refusal.what());
    } catch (const std::bad_alloc&) {
        throw PictureError("cannot read '" + path + "': not enough memory for the picture");
    }
}

std::vector<unsigned char> toDisplay8(const Picture& picture)
{
    const std::size_t bytes = bytesPerSample(picture.sampleType);
    const std::size_t count = picture.samples.size() / bytes;
    if (picture.samples.size() != picture.sizeX * picture.sizeY * bytes) {
        throw std::invalid_argument("a picture of " + sizeText(picture.sizeX, picture.sizeY) + " with "
                                    + std::to_string(picture.samples.size()) + " bytes");
    }
    if (picture.sampleType == SampleType::UInt8)
        return picture.samples;

    const GreyScale scale(picture.sampleType, picture.samples.data(), count);
    std::vector<unsigned char> display(count, 0);
    withSampleType(picture.sampleType, [&](auto sample) {
        for (std::size_t i = 0; i < count; ++i)
            display[i] = scale.levelOf(loadSample<decltype(sample)>(picture.samples.data() + i * bytes));
    });
    return display;
}

namespace codec {

GreyScale::GreyScale(SampleType sampleType, const unsigned char* samples, std::size_t count)
    : m_isStretched(sampleType != SampleType::UInt8), m_smallest(std::numeric_limits<double>::infinity()),
      m_largest(-m_smallest)
{
    if (!m_isStretched)
        return;
    withSampleType(sampleType, [&](auto sample) {
        for (std::size_t i = 0; i < count; ++i) {
            const double value = loadSample<decltype(sample)>(samples + i * sizeof sample);
            if (std::isfinite(value)) {
                m_smallest = std::min(m_smallest, value);
                m_largest = std::max(m_largest, value);
            }
        }
    });
}

unsigned char GreyScale::levelOf(double value) const
{
    if (!m_isStretched)
        return static_cast<unsigned char>(value);
    if (!(m_smallest < m_largest) || std::isnan(value))
        return 0;
    const double share = (std::clamp(value, m_smallest, m_largest) - m_smallest) / (m_largest - m_smallest);
    return static_cast<unsigned char>(std::lround(255.0 * share));
}

}  // namespace codec

}  // namespace orvik::examples
