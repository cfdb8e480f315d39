#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvik::examples {

class OutputFiles;

/// A picture file could not be read or written. The text names the file and the reason.
class PictureError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

enum class SampleType
{
    UInt8,
    Int8,
    UInt16,
    Int16,
    UInt32,
    Int32,
    Real32
};

/// Bytes taken by one sample: 1, 2 or 4.
std::size_t bytesPerSample(SampleType sampleType);

/// "16 bit signed".
std::string nameOf(SampleType sampleType);

/// One grey plane: rows top to bottom, row-major without padding, samples in the byte order of this machine.
struct Picture
{
    unsigned long sizeX = 0;
    unsigned long sizeY = 0;
    SampleType sampleType = SampleType::UInt8;
    std::vector<unsigned char> samples;

    /// Distance in bytes from one row to the next.
    std::size_t rowBytes() const { return sizeX * bytesPerSample(sampleType); }

    /// The sample in column x (below sizeX) and row y (below sizeY) as a number; throws std::out_of_range otherwise.
    double valueAt(unsigned long x, unsigned long y) const;
};

/// Reads a PNG, JPEG or TIFF file as one grey plane; the format is told by the file's first bytes, not by its name.
///
/// - PNG: 8 or 16 bit; 1, 2 and 4 bit grey are spread over the full 8 bit range.
/// - JPEG: 8 bit grey or colour.
/// - TIFF: the first page; 8, 16 and 32 bit, unsigned or signed, and 32 bit real, in strips or tiles.
///
/// Colour becomes 0.299 R + 0.587 G + 0.114 B, rounded to nearest in the depth of the file. Alpha and any other extra
/// channel, gamma, colour profiles and orientation marks are ignored. Where a TIFF file stores white as zero, integers
/// are complemented and reals, having no fixed range, are negated.
///
/// Throws PictureError if the file cannot be opened or is no regular file, is damaged or incomplete (also when the
/// codec itself would go on with a warning), has a kind of samples not listed above, or takes more than 2^34 bytes or
/// the memory available.
Picture readPicture(const std::string& path);

/// Writes 8 bit grey samples as a PNG file, replacing any previous file of that name (a symbolic link is replaced, not
/// followed). The file appears complete or not at all.
///
/// `samples` is the first sample of the topmost row and `rowStride` the distance in bytes from one row to the next,
/// negative for rows stored bottom to top. Sizes run from 1 to 1000000 samples each way.
///
/// Throws PictureError if the sizes are out of range, `samples` is null, `path` is something other than a regular
/// file, or the system refuses.
void writeGreyPng(const std::string& path, unsigned long sizeX, unsigned long sizeY, const unsigned char* samples,
                  long rowStride);

/// As writeGreyPng(), with three bytes (red, green, blue) for each pixel.
void writeRgbPng(const std::string& path, unsigned long sizeX, unsigned long sizeY, const unsigned char* samples,
                 long rowStride);

/// As these, among files of which all appear or none does.
void addGreyPng(OutputFiles& files, const std::string& path, unsigned long sizeX, unsigned long sizeY,
                const unsigned char* samples, long rowStride);
void addRgbPng(OutputFiles& files, const std::string& path, unsigned long sizeX, unsigned long sizeY,
               const unsigned char* samples, long rowStride);

/// The picture in 8 bit, for showing. 8 bit samples stay as they are; others are stretched linearly, the smallest
/// finite sample to 0 and the largest to 255. NaN gives 0, infinities the nearer end, and a picture without two
/// different finite samples gives 0 everywhere. Throws std::invalid_argument if `samples` does not fit the sizes.
std::vector<unsigned char> toDisplay8(const Picture& picture);

}  // namespace orvik::examples
