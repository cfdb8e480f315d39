#include "RoundOptions.h"

#include "frame/attr/Records.h"

#include <algorithm>
#include <map>

namespace orvik::examples {

namespace attr = imaproc::attr;

attr::eCircleIntensityType RoundOptions::getKind() const
{
    const std::map<std::string, attr::eCircleIntensityType> kinds = {
        {"dark", attr::eCIT_Outward}, {"bright", attr::eCIT_Inward}, {"both", attr::eCIT_Both}};
    return kinds.at(kind);
}

Ptr<attr::HoughCirclesRadiusRange> RoundOptions::createRange() const
{
    return attr::createHoughCirclesRadiusRange(minRadius, maxRadius);
}

Ptr<attr::AccumIntensityThreshold> RoundOptions::createThreshold() const
{
    return attr::AccumIntensityThreshold::createNode(threshold, ratio);
}

Ptr<attr::RemoveTooCloseCirclesParams> RoundOptions::createRemoval() const
{
    return attr::RemoveTooCloseCirclesParams::createNode(true, apart);
}

void addRoundOptions(CLI::App& app, RoundOptions& options, const std::string& things, const std::string& unit)
{
    std::string typeName = unit;
    std::transform(typeName.begin(), typeName.end(), typeName.begin(), [](unsigned char c) { return std::toupper(c); });
    const auto text = [](unsigned int radius) { return " (default: " + std::to_string(radius) + ")"; };
    addNumber(app, "--min-radius", options.minRadius, "smallest radius, 1 to 10000 " + unit + text(options.minRadius),
              isWholeNumberFrom(1, 10000), typeName);
    addNumber(app, "--max-radius", options.maxRadius,
              "greatest radius, 1 to 10000 " + unit + "; half of the smallest side at most" + text(options.maxRadius),
              isWholeNumberFrom(1, 10000), typeName);
    addChoice(app, "--kind", options.kind, "bright " + things + ", dark ones, or both (default: both)",
              {"bright", "dark", "both"});
    addNumber(app, "--angle", options.angle,
              "greatest angle between gradient and radius, above 0 to 3.14 radians (default: 0.1)", isNumberFrom(1e-6, 3.14),
              "RADIANS");
    addNumber(app, "--ratio", options.ratio,
              "list " + things + " with at least this share of the greatest score, 0 to 1 (default: 0.5)",
              isNumberFrom(0, 1), "SHARE");
    addNumber(app, "--threshold", options.threshold,
              "and with at least this score, in grey levels per " + unit.substr(0, unit.size() - 1) + " (default: 0)",
              isNumberFrom(0), "SCORE");
    addNumber(app, "--apart", options.apart,
              "of overlapping " + things
                  + " list the strongest alone: 0 those within one another, 1 those whose centre is in\n"
                    "another, 2 all that overlap, up to 100 (default: 1)",
              isNumberFrom(0, 100), "FACTOR");
}

void checkRange(const RoundOptions& options)
{
    if (options.minRadius > options.maxRadius)
        throw CLI::ValidationError("--min-radius", std::to_string(options.minRadius) + " is above --max-radius, "
                                                       + std::to_string(options.maxRadius));
}

void checkRangeOf(const RoundOptions& options, unsigned long largest, const std::string& whole)
{
    if (options.minRadius > largest)
        throw CLI::ValidationError("--min-radius", std::to_string(options.minRadius) + " is above half of the " + whole
                                                       + ", " + std::to_string(largest));
}

std::string describeRange(const RoundOptions& options, unsigned long largest, const std::string& unit)
{
    return std::to_string(options.minRadius) + " to " + std::to_string(std::min<unsigned long>(options.maxRadius, largest))
           + ' ' + unit + ", " + options.kind;
}

}  // namespace orvik::examples
