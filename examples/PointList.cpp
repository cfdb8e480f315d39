#include "PointList.h"

#include "PictureCodec.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <locale>
#include <sstream>

namespace orvik::examples {

namespace {

using imaproc::attr::Pixel2d;
using imaproc::attr::Pixels2d;

std::string toText(const Pixels2d& points, bool json)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(17);
    text << (json ? "[" : "x,y,value\n");
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double x = points[i].get<Pixel2d::X>(), y = points[i].get<Pixel2d::Y>();
        const double value = points[i].get<Pixel2d::Value>();
        if (!json) {
            text << x << ',' << y << ',' << value << '\n';
            continue;
        }
        text << (i > 0 ? ",\n " : "\n ") << "{\"x\": " << x << ", \"y\": " << y << ", \"value\": ";
        if (std::isfinite(value))
            text << value << '}';
        else
            text << "null}";  // JSON knows no infinities
    }
    if (json)
        text << "\n]\n";
    return text.str();
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

struct PointFiles
{
    std::string list, overlay;
};

/// Both files, or none of them.
PointFiles writeFiles(const PointOptions& options, const Picture& picture, const Pixels2d& points, const std::string& what)
{
    const std::string text = toText(points, options.format == "json");
    const std::vector<unsigned char> overlay = drawOverlay(picture, toMask(picture, points));
    makeFolder(options.folder);
    namespace fs = std::filesystem;
    const std::string start = (fs::path(options.folder) / fs::path(options.picture).stem()).string() + "-" + what;
    const PointFiles files = {start + "." + options.format, start + "-overlay.png"};
    codec::writeFile(files.list, [&](std::FILE* file) {
        if (std::fwrite(text.data(), 1, text.size(), file) != text.size())
            throw codec::Refusal(codec::systemReason(errno));
    });
    try {
        writeRgbPng(files.overlay, picture.sizeX, picture.sizeY, overlay.data(), 3 * static_cast<long>(picture.sizeX));
    } catch (...) {
        std::remove(files.list.c_str());
        throw;
    }
    return files;
}

}  // namespace

void addPointOptions(CLI::App& app, PointOptions& options, const std::string& nearby)
{
    app.add_option("--distance", options.distance, nearby + ", 0 to 1000000 (default: 5)")
        ->check(isWholeNumberTo(1000000))
        ->type_name("PIXELS");
    app.add_option("--max", options.max, "list no more, the first ones (default: " + std::to_string(options.max) + ")")
        ->check(isWholeNumberTo(1000000000))
        ->type_name("N");
    app.add_option("-o,--output", options.folder, "folder to write to, made if missing (default: the current one)")
        ->type_name("FOLDER");
    app.add_option("--format", options.format, "of the list: csv or json (default: csv)")
        ->check(CLI::IsMember({"csv", "json"}))
        ->type_name("NAME");
    addCommonOptions(app, options.common);
}

void listPoints(const PointOptions& options, const std::string& what,
                const std::function<FoundPoints(const Picture& picture)>& find)
{
    StageTimes times;
    const Picture picture = times.measure("read", [&] { return readPicture(options.picture); });
    const FoundPoints found = times.measure(what, [&] { return find(picture); });
    const PointFiles files = times.measure("write", [&] { return writeFiles(options, picture, *found.points, what); });
    if (options.common.quiet)
        return;
    std::cout << "picture     " << options.picture << ", " << describe(picture) << '\n'
              << found.settings << "distance    " << options.distance << " pixels\n"
              << "threads     " << core::getNbThreads() << '\n'
              << "kernels     " << found.kernels << '\n'
              << what << std::string(12 - what.size(), ' ') << found.points->size() << " listed, at most " << options.max
              << '\n'
              << "time        " << times.toString() << '\n'
              << "written     " << files.list << ", " << files.overlay << std::endl;
}

}  // namespace orvik::examples
