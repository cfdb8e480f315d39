#pragma once

// What programs that look for round things are told alike.

#include "ProgramSupport.h"

#include "frame/attr/Enumerations.h"

namespace orvik::examples {

struct RoundOptions
{
    unsigned int minRadius = 5, maxRadius = 50;
    std::string kind = "both";
    double angle = 0.1;
    double ratio = 0.5;
    double threshold = 0.0;
    double apart = 1.0;

    /// Bright ones have their gradient inward, dark ones outward.
    imaproc::attr::eCircleIntensityType getKind() const;
    Ptr<imaproc::attr::HoughCirclesRadiusRange> createRange() const;
    Ptr<imaproc::attr::AccumIntensityThreshold> createThreshold() const;
    Ptr<imaproc::attr::RemoveTooCloseCirclesParams> createRemoval() const;
};

/// Adds them. `things` are "circles" or "spheres", `unit` is what radii are told in, "pixels" or "voxels".
void addRoundOptions(CLI::App& app, RoundOptions& options, const std::string& things, const std::string& unit);

/// Refuses a range that is upside down, or of which all is above `largest`, half of what is looked at: the library narrows
/// ranges to that. `whole` names it.
void checkRange(const RoundOptions& options);
void checkRangeOf(const RoundOptions& options, unsigned long largest, const std::string& whole);

/// "5 to 50 pixels, bright", as narrowed.
std::string describeRange(const RoundOptions& options, unsigned long largest, const std::string& unit);

}  // namespace orvik::examples
