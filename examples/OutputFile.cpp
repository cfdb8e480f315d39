#include "PictureCodec.h"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>

#include <unistd.h>

namespace orvik::examples::codec {
namespace {

namespace fs = std::filesystem;

/// A new file beside the target, removed again unless it takes the target's place.
class TemporaryFile
{
public:
    explicit TemporaryFile(const fs::path& target) : m_target(target)
    {
        static std::atomic<unsigned> counter(0);
        do {
            // Not made from the target's name, which may already be as long as the system allows.
            const std::string name = ".picture-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp";
            m_path = target.parent_path() / name;
            m_file.reset(std::fopen(m_path.c_str(), "wbx"));
        } while (!m_file && errno == EEXIST);
        if (!m_file)
            throw Refusal(systemReason(errno));
    }

    ~TemporaryFile()
    {
        if (!m_isMoved) {
            m_file.reset();
            std::remove(m_path.c_str());
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    std::FILE* file() const { return m_file.get(); }

    void moveToTarget()
    {
        // Buffered bytes may be refused as late as here.
        if (std::fclose(m_file.release()) != 0 || std::rename(m_path.c_str(), m_target.c_str()) != 0)
            throw Refusal(systemReason(errno));
        m_isMoved = true;
    }

private:
    fs::path m_target;
    fs::path m_path;
    FileHandle m_file;
    bool m_isMoved = false;
};

}  // namespace

void writeFile(const std::string& path, const std::function<void(std::FILE*)>& fill)
{
    try {
        // Renaming would put a plain file in the place of a device.
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (fs::exists(status) && !fs::is_regular_file(status))
            throw Refusal(fs::is_directory(status) ? systemReason(EISDIR) : "not a regular file");
        TemporaryFile temporary(path);
        fill(temporary.file());
        temporary.moveToTarget();
    } catch (const Refusal& refusal) {
        throw PictureError("cannot write '" + path + "': " + refusal.what());
    } catch (const std::bad_alloc&) {
        throw PictureError("cannot write '" + path + "': not enough memory");
    }
}

}  // namespace orvik::examples::codec
