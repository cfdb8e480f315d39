#pragma once

// What the codecs of volumes share among themselves; programs include VolumeIo.h.

#include "PictureCodec.h"
#include "VolumeIo.h"

namespace orvik::examples::codec {

Volume readTiffVolume(const std::string& path, std::uint64_t fileBytes);
Volume readNifti(std::FILE* file, std::uint64_t fileBytes);

void writeTiffVolume(std::FILE* file, const Volume& volume);
void writeNifti(std::FILE* file, const Volume& volume, bool isCompressed);

/// What a TIFF file says of the distance of its pages, which no field of the format does: for printf and scanf.
constexpr const char tiffSpacingPrint[] = "unit=mm\nspacing=%.9g\n";
constexpr const char tiffSpacingScan[] = "unit=mm\nspacing=%lg";

/// Bytes of a volume's samples; refuses what is empty or above 2^44.
std::size_t checkedBytes(const Volume& volume);

/// Turns the bytes of each sample round.
void swapSamples(unsigned char* samples, std::size_t count, std::size_t bytesPerSample);

}  // namespace orvik::examples::codec
