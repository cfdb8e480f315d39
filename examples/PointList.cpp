#include "PointList.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"

#include <cmath>
#include <iostream>

namespace orvik::examples {

namespace {

using imaproc::attr::Pixel2d;
using imaproc::attr::Pixels2d;

FeatureList toList(const Pixels2d& points)
{
    FeatureList list = {{"x", "y", "value"}, {}};
    for (std::size_t i = 0; i < points.size(); ++i)
        list.rows.push_back({points[i].get<Pixel2d::X>(), points[i].get<Pixel2d::Y>(), points[i].get<Pixel2d::Value>()});
    return list;
}

/// Pixels of crosses of 7 by 7 pixels about the points.
std::vector<unsigned char> toMask(const Picture& picture, const Pixels2d& points)
{
    const long reach = 3, sizeX = static_cast<long>(picture.sizeX), sizeY = static_cast<long>(picture.sizeY);
    std::vector<unsigned char> mask(picture.sizeX * picture.sizeY, 0);
    const auto mark = [&](long x, long y) {
        if (x >= 0 && y >= 0 && x < sizeX && y < sizeY)
            mask[static_cast<std::size_t>(y * sizeX + x)] = 255;
    };
    for (std::size_t i = 0; i < points.size(); ++i) {
        const long x = std::lround(points[i].get<Pixel2d::X>()), y = std::lround(points[i].get<Pixel2d::Y>());
        for (long step = -reach; step <= reach; ++step) {
            mark(x + step, y);
            mark(x, y + step);
        }
    }
    return mask;
}

}  // namespace

void addPointOptions(CLI::App& app, PointOptions& options, const std::string& nearby)
{
    addNumber(app, "--distance", options.distance, nearby + ", 0 to 1000000 (default: 5)", isWholeNumberFrom(0, 1000000),
              "PIXELS");
    addListOptions(app, options.list);
}

void listPoints(const PointOptions& options, const std::string& what,
                const std::function<FoundPoints(const Picture& picture)>& find)
{
    StageTimes times;
    const Picture picture = times.measure("read", [&] { return readPicture(options.list.picture); });
    const FoundPoints found = times.measure(what, [&] { return find(picture); });
    const ListFiles files = times.measure("write", [&] {
        return writeList(options.list, what, toList(*found.points), picture, toMask(picture, *found.points));
    });
    if (options.list.common.quiet)
        return;
    std::cout << "picture     " << options.list.picture << ", " << describe(picture) << '\n'
              << found.settings << "distance    " << options.distance << " pixels\n"
              << "threads     " << core::getNbThreads() << '\n'
              << "kernels     " << found.kernels << '\n'
              << what << std::string(12 - what.size(), ' ') << found.points->size() << " listed, at most "
              << options.list.max << '\n'
              << "time        " << times.toString() << '\n'
              << "written     " << files.list << ", " << files.overlay << std::endl;
}

}  // namespace orvik::examples
