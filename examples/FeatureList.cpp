#include "FeatureList.h"

#include "OutputFiles.h"

#include <cmath>
#include <filesystem>
#include <locale>
#include <sstream>

namespace orvik::examples {

namespace {

std::string toCsv(const FeatureList& list, std::ostringstream& text)
{
    for (std::size_t i = 0; i < list.names.size(); ++i)
        text << (i > 0 ? "," : "") << list.names[i];
    text << '\n';
    for (const std::vector<double>& row : list.rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            text << (i > 0 ? "," : "") << row[i];
        text << '\n';
    }
    return text.str();
}

std::string toJson(const FeatureList& list, std::ostringstream& text)
{
    text << '[';
    for (const std::vector<double>& row : list.rows) {
        text << (&row != &list.rows.front() ? ",\n {" : "\n {");
        for (std::size_t i = 0; i < row.size(); ++i) {
            text << (i > 0 ? ", \"" : "\"") << list.names[i] << "\": ";
            if (std::isfinite(row[i]))
                text << row[i];
            else
                text << "null";  // JSON knows no infinities
        }
        text << '}';
    }
    text << "\n]\n";
    return text.str();
}

std::string toText(const FeatureList& list, const std::string& format)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(17);
    return format == "json" ? toJson(list, text) : toCsv(list, text);
}

}  // namespace

void addListOptions(CLI::App& app, ListOptions& options)
{
    addNumber(app, "--max", options.max, "list no more, the first ones (default: " + std::to_string(options.max) + ")",
              isWholeNumberFrom(0, 1000000000), "N");
    addFolder(app, options.folder);
    addChoice(app, "--format", options.format, "of the list: csv or json (default: csv)", {"csv", "json"});
    addCommonOptions(app, options.common);
}

void addList(OutputFiles& files, const std::string& path, const ListOptions& options, const FeatureList& list)
{
    files.addText(path, toText(list, options.format));
}

ListFiles writeList(const ListOptions& options, const std::string& what, const FeatureList& list, const Picture& picture,
                    const std::vector<unsigned char>& mask)
{
    const std::vector<unsigned char> overlay = drawOverlay(picture, mask);
    makeFolder(options.folder);
    namespace fs = std::filesystem;
    const std::string start = (fs::path(options.folder) / fs::path(options.picture).stem()).string() + "-" + what;
    const ListFiles files = {start + "." + options.format, start + "-overlay.png"};
    OutputFiles output;
    addList(output, files.list, options, list);
    addRgbPng(output, files.overlay, picture.sizeX, picture.sizeY, overlay.data(), 3 * static_cast<long>(picture.sizeX));
    output.putInPlace();
    return files;
}

}  // namespace orvik::examples
