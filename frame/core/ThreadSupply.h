#pragma once

#include <mutex>
#include <new>

namespace orvik { namespace core {

/// How many threads of `nb` could be made at once just now; those that were made to see it are gone. oneTBB itself ends or
/// hangs the process when it fails to make one. @throws std::bad_alloc
unsigned int countMakeableThreads(unsigned int nb);

/// While it lives, an allocation by `new` that finds no memory takes it from a reserve: for what oneTBB asks for when it makes
/// threads or meets new ones, some hundred bytes each, without which it ends or hangs the process. One at a time in a process.
/// @throws std::bad_alloc where there is no memory for the reserve.
class MemoryReserve
{
public:
    MemoryReserve();
    ~MemoryReserve();
    MemoryReserve(const MemoryReserve&) = delete;
    MemoryReserve& operator=(const MemoryReserve&) = delete;

private:
    const std::lock_guard<std::mutex> m_lock;
    std::new_handler m_previous;
};

}}  // namespace orvik::core
