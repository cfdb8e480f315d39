#include "frame/util/KeptText.h"

#include <mutex>
#include <set>

namespace orvik {

const std::string& keptText(const std::string& text)
{
    static std::mutex mutex;
    static auto* const texts = new std::set<std::string>;
    const std::lock_guard<std::mutex> lock(mutex);
    return *texts->insert(text).first;
}

}  // namespace orvik
