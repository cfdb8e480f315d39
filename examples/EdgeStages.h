#pragma once

// What programs that look for edges do alike: options, gradient, edges.

#include "EdgeThresholds.h"
#include "ProgramSupport.h"

namespace orvik::examples {

struct EdgeOptions
{
    double sigma = 1.0;
    std::optional<double> low, high;
};

void addEdgeOptions(CLI::App& app, EdgeOptions& options);

/// Refuses thresholds in the wrong order, in the words of the command line.
void checkEdgeOptions(const EdgeOptions& options);

struct Gradient
{
    imaproc::ImagePtr x, y;
    EdgeThresholds thresholds;
};

/// Gradient and thresholds of a picture. Each stage adds its time.
Gradient findGradient(const Picture& picture, const EdgeOptions& options, const CommonOptions& common, StageTimes& times);

struct Edges
{
    imaproc::ImagePtr image;  ///< 1 on edges, 0 elsewhere
    EdgeThresholds thresholds;
};

/// The same and edges. `viaLabels` is one of two ways to the same edges.
Edges findEdges(const Picture& picture, const EdgeOptions& options, bool viaLabels, const CommonOptions& common,
                StageTimes& times);

/// Lines of a report: thresholds, and sigma with them.
std::string describe(const EdgeThresholds& thresholds);
std::string describe(const EdgeOptions& options, const EdgeThresholds& thresholds);

/// A line of a report: how many pixels are edges.
std::string describeEdges(const std::vector<unsigned char>& mask);

}  // namespace orvik::examples
