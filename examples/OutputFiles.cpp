#include "OutputFiles.h"

#include "Interruption.h"
#include "PictureCodec.h"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>

#include <unistd.h>

namespace orvik::examples {
namespace {

namespace fs = std::filesystem;
using namespace codec;

/// A name beside the target. Not made from that of the target, which may already be as long as the system allows.
fs::path nameBeside(const fs::path& target)
{
    static std::atomic<unsigned> counter(0);
    return target.parent_path() / (".picture-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp");
}

/// Renaming would put a plain file in the place of a device.
void requireReplaceable(const fs::path& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status))
        throw Refusal(fs::is_directory(status) ? systemReason(EISDIR) : "not a regular file");
}

template<class Work>
void naming(const std::string& path, Work&& work)
{
    try {
        work();
    } catch (const Refusal& refusal) {
        throw PictureError("cannot write '" + path + "': " + refusal.what());
    } catch (const std::bad_alloc&) {
        throw PictureError("cannot write '" + path + "': not enough memory");
    }
}

}  // namespace

/// A new file beside its target, and later the target's old one, kept there until all files are in their places.
class OutputFiles::NewFile
{
public:
    explicit NewFile(const std::string& target) : m_target(target)
    {
        do {
            m_new = nameBeside(m_target);
            m_file.reset(std::fopen(m_new.c_str(), "w+bx"));
        } while (!m_file && errno == EEXIST);
        if (!m_file)
            throw Refusal(systemReason(errno));
    }

    ~NewFile()
    {
        m_file.reset();
        for (const fs::path& path : {m_new, m_old})
            if (!path.empty())
                std::remove(path.c_str());
    }

    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    const fs::path& target() const { return m_target; }

    std::FILE* file() const { return m_file.get(); }

    /// Buffered bytes may be refused as late as here.
    void close()
    {
        if (std::fclose(m_file.release()) != 0)
            throw Refusal(systemReason(errno));
    }

    /// Gives what is there a second name, so that it can come back; where the system knows none, the name alone.
    void keepOld()
    {
        const fs::path old = nameBeside(m_target);
        if (link(m_target.c_str(), old.c_str()) == 0 || std::rename(m_target.c_str(), old.c_str()) == 0)
            m_old = old;
        else if (errno != ENOENT)
            throw Refusal(systemReason(errno));
    }

    void putInPlace()
    {
        if (std::rename(m_new.c_str(), m_target.c_str()) != 0)
            throw Refusal(systemReason(errno));
        m_new.clear();
    }

    /// What was there is there again, as far as the system lets it.
    void takeBack()
    {
        if (m_old.empty()) {
            if (m_new.empty())
                std::remove(m_target.c_str());
        } else if (std::rename(m_old.c_str(), m_target.c_str()) != 0) {
            m_old.clear();  // better left beside than lost
        }
    }

private:
    fs::path m_target, m_new, m_old;
    FileHandle m_file;
};

OutputFiles::OutputFiles() = default;

OutputFiles::~OutputFiles() = default;

void OutputFiles::add(const std::string& path, const std::function<void(std::FILE*)>& fill)
{
    throwIfInterrupted();
    naming(path, [&] {
        requireReplaceable(path);
        auto file = std::make_unique<NewFile>(path);
        fill(file->file());
        file->close();
        m_files.push_back(std::move(file));
    });
}

void OutputFiles::addText(const std::string& path, const std::string& text)
{
    add(path, [&](std::FILE* file) {
        if (std::fwrite(text.data(), 1, text.size(), file) != text.size())
            throw Refusal(systemReason(errno));
    });
}

void OutputFiles::putInPlace()
{
    throwIfInterrupted();
    for (const auto& file : m_files) {
        try {
            naming(file->target().string(), [&] {
                requireReplaceable(file->target());  // still
                // The last one comes or does not; only what others wait for may have to be taken back.
                if (file != m_files.back())
                    file->keepOld();
                file->putInPlace();
            });
        } catch (...) {
            for (const auto& earlier : m_files)
                earlier->takeBack();
            throw;
        }
    }
    m_files.clear();
}

}  // namespace orvik::examples
