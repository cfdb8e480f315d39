#include "frame/util/Arena.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace orvik {

namespace {

/// The head of a block; its memory follows. Objects are counted where they are given back alone, by whichever thread;
/// those that were made are only known when the scope is done with the block. Until then the count is out of reach of 0.
struct alignas(std::max_align_t) Head
{
    std::atomic<long> nbLeft;
    long nbMade;
    std::size_t used, size;
};

const long g_open = 1l << 40;
const std::size_t g_blockBytes = 1000;  // the C library hands those out from a list of the thread's own

// The library stays loaded, so these may lie where access is cheap.
__attribute__((tls_model("initial-exec"))) thread_local Head* t_block = nullptr;
__attribute__((tls_model("initial-exec"))) thread_local bool t_inScope = false;

Head& headOf(ArenaBlock& block)
{
    return reinterpret_cast<Head&>(block);
}

char* memoryOf(Head& head)
{
    return reinterpret_cast<char*>(&head) + sizeof(Head);
}

std::size_t aligned(std::size_t bytes)
{
    const std::size_t alignment = alignof(std::max_align_t);
    return (bytes + alignment - 1) / alignment * alignment;
}

Head* makeBlock(std::size_t bytes)
{
    const std::size_t size = std::max(aligned(bytes), g_blockBytes - sizeof(Head));
    void* const memory = std::malloc(sizeof(Head) + size);
    if (!memory)
        throw std::bad_alloc();
    Head* const head = new (memory) Head;
    head->nbLeft.store(g_open, std::memory_order_relaxed);
    head->nbMade = 0;
    head->used = 0;
    head->size = size;
    return head;
}

void subtract(Head& head, long nb)
{
    if (head.nbLeft.fetch_sub(nb, std::memory_order_acq_rel) == nb)
        std::free(&head);
}

/// The scope makes no more objects in its block.
void close()
{
    if (t_block)
        subtract(*t_block, g_open - t_block->nbMade);
    t_block = nullptr;
}

}  // namespace

ArenaBlock* ArenaBlock::withRoom(std::size_t bytes)
{
#ifdef __SANITIZE_ADDRESS__
    return nullptr;  // an object in memory of its own is guarded
#endif
    if (!t_inScope)
        return nullptr;
    if (!t_block || t_block->size - t_block->used < aligned(bytes)) {
        Head* const next = makeBlock(bytes);
        close();
        t_block = next;
    }
    return reinterpret_cast<ArenaBlock*>(t_block);
}

void* ArenaBlock::take(std::size_t bytes)
{
    Head& head = headOf(*this);
    if (head.size - head.used < aligned(bytes))
        throw std::bad_alloc();
    void* const memory = memoryOf(head) + head.used;
    head.used += aligned(bytes);
    ++head.nbMade;
    return memory;
}

void ArenaBlock::giveBack()
{
    subtract(headOf(*this), 1);
}

ArenaScope::ArenaScope() : m_isOutermost(!t_inScope)
{
    t_inScope = true;
}

ArenaScope::~ArenaScope()
{
    if (!m_isOutermost)
        return;
    t_inScope = false;
    close();
}

}  // namespace orvik
