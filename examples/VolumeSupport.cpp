#include "VolumeSupport.h"

#include "PictureCodec.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <sstream>

namespace orvik::examples {

namespace {

const std::map<std::string, SampleType> g_types = {{"uint8", SampleType::UInt8},   {"int8", SampleType::Int8},
                                                   {"uint16", SampleType::UInt16}, {"int16", SampleType::Int16},
                                                   {"uint32", SampleType::UInt32}, {"int32", SampleType::Int32},
                                                   {"float32", SampleType::Real32}};

bool parseSizes(const std::string& text, RawLayout& layout)
{
    const bool hasOnlyThese = text.find_first_not_of("0123456789x") == std::string::npos;
    int end = 0;
    // Nine digits: the product of three such sizes is checked later.
    const int found = std::sscanf(text.c_str(), "%9lux%9lux%9lu%n", &layout.sizeX, &layout.sizeY, &layout.sizeZ, &end);
    return hasOnlyThese && found == 3 && text[static_cast<std::size_t>(end)] == '\0' && layout.sizeX > 0 && layout.sizeY > 0
           && layout.sizeZ > 0;
}

std::string checkSizes(const std::string& text)
{
    RawLayout layout;
    return parseSizes(text, layout) ? std::string() : "'" + text + "' is no size such as 181x217x181";
}

image::eImageBufferType bufferType(SampleType type)
{
    const Picture pixel = {1, 1, type, std::vector<unsigned char>(bytesPerSample(type))};
    return wrapPicture(pixel)->getBufferType();
}

}  // namespace

void addRawOptions(CLI::App& app, RawOptions& options)
{
    CLI::Option* const size =
        app.add_option("--raw-size", options.size,
                       "columns, lines and slices, as 181x217x181, of a file that has samples and nothing else")
            ->check(CLI::Validator([](std::string& text) { return checkSizes(text); }, std::string()))
            ->type_name("XxYxZ");
    std::vector<std::string> names;
    for (const auto& type : g_types)
        names.push_back(type.first);
    app.add_option("--raw-type", options.type,
                   "of such samples: int8, uint8, int16, uint16, int32, uint32 or float32 (default: uint8)")
        ->check(CLI::IsMember(names))
        ->type_name("TYPE")
        ->needs(size);
    app.add_flag("--raw-big-endian", options.isBigEndian, "such samples have their highest byte first")->needs(size);
}

Volume readVolume(const std::string& path, const RawOptions& options)
{
    if (options.size.empty())
        return readVolume(path);
    RawLayout layout;
    parseSizes(options.size, layout);
    layout.sampleType = g_types.at(options.type);
    layout.isBigEndian = options.isBigEndian;
    return readRawVolume(path, layout);
}

imaproc::ConstImagePtr wrapVolume(const Volume& volume)
{
    const void* const samples = volume.samples.data();
    return image::wrapBuffer(samples, bufferType(volume.sampleType),
                             image::ImageSizes(volume.sizeX, volume.sizeY, volume.sizeZ));
}

std::string describeVolume(const std::string& path, const Volume& volume)
{
    std::ostringstream text;
    text << "volume      " << path << ", " << sizeText(volume) << ", " << nameOf(volume.sampleType) << '\n';
    if (volume.space.spacing) {
        const auto& spacing = *volume.space.spacing;
        text << "voxel       " << spacing[0] << " x " << spacing[1] << " x " << spacing[2] << " mm\n";
    }
    return text.str();
}

void addVolumeFormat(CLI::App& app, const std::string& option, std::string& format, const std::string& what)
{
    addChoice(app, option, format, "of the " + what + ": nii.gz, nii or tif (default: nii.gz for NIfTI files, else tif)",
              {"nii.gz", "nii", "tif"});
}

std::string endingOf(const std::string& format, const Volume& volume)
{
    if (!format.empty())
        return format;
    return volume.space.nifti ? "nii.gz" : "tif";
}

std::string outputStart(const std::string& folder, const std::string& path)
{
    namespace fs = std::filesystem;
    fs::path name = fs::path(path).filename();
    if (name.extension() == ".gz" && name.stem().extension() == ".nii")
        name = name.stem();
    return (fs::path(folder) / name.stem()).string();
}

void requireMemoryFor(const Volume& volume, unsigned bytesPerVoxel)
{
    const std::uint64_t nbVoxels = volume.samples.size() / bytesPerSample(volume.sampleType);
    codec::requireMemoryFor(bytesPerVoxel * nbVoxels, codec::availableMemory(),
                            "result for a volume of " + sizeText(volume));
}

}  // namespace orvik::examples
