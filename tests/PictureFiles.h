#pragma once

// What tests of files that programs read and write share.

#include "PictureIo.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

namespace orvik::examples {

using Bytes = std::vector<unsigned char>;

template<typename Sample>
Bytes bytesOf(const std::vector<Sample>& samples)
{
    const auto* first = reinterpret_cast<const unsigned char*>(samples.data());
    return Bytes(first, first + samples.size() * sizeof(Sample));
}

inline Bytes readBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

/// Files are made in a folder of their own, one after the other under the same name, and nothing may be printed.
class PictureFiles : public testing::Test
{
protected:
    PictureFiles() : m_folder(std::filesystem::temp_directory_path() / ("PictureFiles-" + std::to_string(getpid())))
    {
        std::filesystem::create_directory(m_folder);
        testing::internal::CaptureStderr();
    }

    ~PictureFiles() override
    {
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "a codec printed";
        std::filesystem::remove_all(m_folder);
    }

    std::string in(const std::string& name) const { return (m_folder / name).string(); }

    std::string written(const Bytes& bytes) const
    {
        std::filesystem::remove(in("bytes"));  // file systems wait for the disk when a file is cut and written anew
        std::ofstream(in("bytes"), std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return in("bytes");
    }

    /// The text of the error that `f` gives, without the part that names the file.
    template<class F>
    static std::string reason(const std::string& start, F&& f)
    {
        try {
            f();
        } catch (const PictureError& error) {
            EXPECT_EQ(std::string(error.what()).substr(0, start.size()), start);
            return std::string(error.what()).substr(start.size());
        }
        return "no error";
    }

    std::size_t filesInFolder() const
    {
        return std::distance(std::filesystem::directory_iterator(m_folder), std::filesystem::directory_iterator());
    }

    std::filesystem::path m_folder;
};

}  // namespace orvik::examples
