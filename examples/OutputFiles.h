#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orvik::examples {

/// Files that belong together: all of them appear, complete, or none does, and files of those names that were there before
/// stay as they were. (A symbolic link is replaced, not followed.)
class OutputFiles
{
public:
    OutputFiles();

    /// Removes what was not put in place.
    ~OutputFiles();

    OutputFiles(const OutputFiles&) = delete;
    OutputFiles& operator=(const OutputFiles&) = delete;

    /// Has `fill` write a file beside that of the name; it may throw codec::Refusal. Throws PictureError if the name is taken
    /// by something other than a regular file, or the system refuses.
    void add(const std::string& path, const std::function<void(std::FILE*)>& fill);

    /// As add(), with a text.
    void addText(const std::string& path, const std::string& text);

    /// Gives the files their names. Throws PictureError, with all files as they were before, if the system refuses one.
    void putInPlace();

private:
    class NewFile;

    std::vector<std::unique_ptr<NewFile>> m_files;
};

}  // namespace orvik::examples
