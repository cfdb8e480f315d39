#pragma once

// What programs that read volumes do alike: options, reading, volumes as images of the library, names.

#include "ProgramSupport.h"
#include "VolumeIo.h"

namespace orvik::examples {

/// For files that have samples and nothing else.
struct RawOptions
{
    std::string size;  ///< empty for files that tell what they are
    std::string type = "uint8";
    bool isBigEndian = false;
};

void addRawOptions(CLI::App& app, RawOptions& options);

/// By readRawVolume() where a size is given, else by readVolume().
Volume readVolume(const std::string& path, const RawOptions& options);

/// An image on the samples of a volume, without copying: the volume has to outlive it.
imaproc::ConstImagePtr wrapVolume(const Volume& volume);

/// Lines of a report: the file, its sizes and type, and how large a voxel is where the file tells.
std::string describeVolume(const std::string& path, const Volume& volume);

/// The start of the names of what is written for a file: its own name in the folder, without the ending.
std::string outputStart(const std::string& folder, const std::string& path);

/// An option for the format of the volume that a program writes, which `what` names, and the ending that it stands for: that of
/// the volume that was read, where the option is not given.
void addVolumeFormat(CLI::App& app, const std::string& option, std::string& format, const std::string& what);
std::string endingOf(const std::string& format, const Volume& volume);

/// Refuses work that takes more memory than there is before it begins, in the words of readVolume().
void requireMemoryFor(const Volume& volume, unsigned bytesPerVoxel);

}  // namespace orvik::examples
