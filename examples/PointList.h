#pragma once

#include "FeatureList.h"

#include <functional>
#include <string>

namespace orvik::examples {

/// What programs that list points of a picture are told alike.
struct PointOptions
{
    unsigned int distance = 5;
    ListOptions list;
};

/// Adds them, all but the picture, which comes first, and the common ones, which come last. `nearby` says what is true of
/// the pixels within the distance of a listed one.
void addPointOptions(CLI::App& app, PointOptions& options, const std::string& nearby);

/// The points of a picture, found by `find`, and what they were found with: lines for the report.
struct FoundPoints
{
    Ptr<imaproc::attr::Pixels2d> points;
    std::string settings;
    std::string kernels;
};

/// Reads the picture, finds `what`, writes a list with columns x, y and value and an overlay with a cross on each point,
/// and reports unless it is to be quiet.
void listPoints(const PointOptions& options, const std::string& what,
                const std::function<FoundPoints(const Picture& picture)>& find);

}  // namespace orvik::examples
