#pragma once

#include "PictureIo.h"

#include <array>
#include <optional>

namespace orvik::examples {

/// The fields of a NIfTI header that say where a volume lies, as they stand there.
struct NiftiSpace
{
    int units = 0;                   ///< of lengths: 1 metres, 2 millimetres, 3 micrometres
    std::array<double, 4> pixdim{};  ///< the first one is the handedness of the quaternion
    int qformCode = 0, sformCode = 0;
    std::array<double, 3> quaternion{}, offset{};
    std::array<double, 12> srow{};
};

/// How far voxels are apart along x, y and z, and where they lie. Programs look at voxels alone; it is kept for what they
/// write.
struct VolumeSpace
{
    std::optional<std::array<double, 3>> spacing;  ///< millimetres
    std::optional<NiftiSpace> nifti;

    /// Distances that are none, such as 0, leave the spacing unknown.
    void setSpacing(double x, double y, double z);
};

/// Slices of rows without padding: x is fastest, then y, then z. Samples are in the byte order of this machine.
struct Volume
{
    unsigned long sizeX = 0;
    unsigned long sizeY = 0;
    unsigned long sizeZ = 0;
    SampleType sampleType = SampleType::UInt8;
    std::vector<unsigned char> samples;
    VolumeSpace space;
};

/// "181 x 217 x 181".
std::string sizeText(const Volume& volume);

/// A picture is a volume of one slice, and the other way round.
Volume toVolume(Picture picture);
Picture toPicture(Volume volume);

/// What the samples of a file without a header are.
struct RawLayout
{
    unsigned long sizeX = 0, sizeY = 0, sizeZ = 0;
    SampleType sampleType = SampleType::UInt8;
    bool isBigEndian = false;
};

/// Reads a volume; the format is told by the file's first bytes, not by its name.
///
/// - TIFF: a slice for each page, of kinds as by readPicture(). Pages that are reduced ones or masks are passed over; all
///   others have equal sizes and types. Spacing is read where addVolume() wrote the file.
/// - NIfTI-1 and 2 in one file, .nii or .nii.gz, of either byte order, with one volume. Integers of 8, 16 and 32 bits and
///   32 bit reals stay what they are. 64 bit integers become 32 bit ones and 64 bit reals 32 bit ones where all samples fit
///   exactly; otherwise the file is refused. Where the header scales samples (scl_slope, scl_inter), they become 32 bit
///   reals: slope * sample + intercept, rounded once.
/// - PNG and JPEG: one slice.
///
/// Throws PictureError in the cases of readPicture(). Before any memory is taken, what the file says about its size is
/// compared with what it can hold and with the memory available.
Volume readVolume(const std::string& path);

/// Reads a file that has the samples and nothing else. Throws PictureError if it has another size.
Volume readRawVolume(const std::string& path, const RawLayout& layout);

/// Writes a volume among files of which all appear or none does. The name's ending tells the format: .tif or .tiff (a page
/// for each slice, deflated; spacing in its description and resolution), .nii or .nii.gz (spacing and orientation as read;
/// version 2 where a size exceeds 32767). Sample types stay what they are. Throws PictureError as OutputFiles does, for
/// another ending, or for TIFF if there are more than 2^31 - 1 columns or lines.
void addVolume(OutputFiles& files, const std::string& path, const Volume& volume);

}  // namespace orvik::examples
