#pragma once

// What programs that list features of a picture do alike: options, the list, the overlay.

#include "ProgramSupport.h"

namespace orvik::examples {

struct ListOptions
{
    std::string picture;
    unsigned long max = 0;
    std::string folder = ".";
    std::string format = "csv";  ///< csv or json
    CommonOptions common;
};

/// Adds them, all but the picture, which comes first; the common ones come last.
void addListOptions(CLI::App& app, ListOptions& options);

/// A row of numbers for each feature, as many as there are names.
struct FeatureList
{
    std::vector<std::string> names;
    std::vector<std::vector<double>> rows;
};

/// Adds a list as csv or json among files of which all appear or none does. Numbers are written so that they read back as
/// they were.
void addList(OutputFiles& files, const std::string& path, const ListOptions& options, const FeatureList& list);

struct ListFiles
{
    std::string list, overlay;
};

/// Writes NAME-what.csv, or .json, and NAME-what-overlay.png, the picture in grey with the pixels of a mask in red; both
/// files or none of them.
ListFiles writeList(const ListOptions& options, const std::string& what, const FeatureList& list, const Picture& picture,
                    const std::vector<unsigned char>& mask);

}  // namespace orvik::examples
