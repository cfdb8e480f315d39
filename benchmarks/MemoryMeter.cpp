// Counts the memory of the whole process by standing in for the allocation functions of the C library.

#include "Ratios.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstddef>

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void __libc_free(void*);
}

namespace {

std::atomic<long> g_now(0), g_peak(0), g_start(0);

void* counted(void* block)
{
    if (block) {
        const long now = g_now += static_cast<long>(malloc_usable_size(block));
        long peak = g_peak;
        while (now > peak && !g_peak.compare_exchange_weak(peak, now)) {
        }
    }
    return block;
}

void discounted(void* block)
{
    if (block)
        g_now -= static_cast<long>(malloc_usable_size(block));
}

}  // namespace

extern "C" {

void* malloc(std::size_t size)
{
    return counted(__libc_malloc(size));
}

void* calloc(std::size_t n, std::size_t size)
{
    return counted(__libc_calloc(n, size));
}

void* realloc(void* block, std::size_t size)
{
    discounted(block);
    return counted(__libc_realloc(block, size));
}

void free(void* block)
{
    discounted(block);
    __libc_free(block);
}

void* memalign(std::size_t alignment, std::size_t size)
{
    return counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return counted(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    *block = counted(__libc_memalign(alignment, size));
    return *block ? 0 : ENOMEM;
}

}  // extern "C"

namespace orvik::bench {

void MemoryMeter::restart()
{
    g_start = g_now.load();
    g_peak = g_now.load();
}

long MemoryMeter::peakAboveStart()
{
    return g_peak - g_start;
}

}  // namespace orvik::bench
