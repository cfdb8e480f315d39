#pragma once

#include "frame/util/Export.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <cstddef>
#include <new>
#include <utility>

namespace orvik {

/// A piece of the heap that objects share which are made together and live about as long as one another: it is given back
/// when the last of them is gone. A small call makes some hundred objects, most of which would take longer to allocate than
/// to use.
class ORVIK_API ArenaBlock
{
public:
    /// A block of the scope that the calling thread is in, with room for that many bytes; null outside of scopes.
    static ArenaBlock* withRoom(std::size_t bytes);
    /// Memory of one object, for which the block was asked just before. @throws std::bad_alloc when it needs more.
    void* take(std::size_t bytes);
    /// The memory of an object is not used any more; said by any thread.
    void giveBack();

    ArenaBlock() = delete;
};

/// While it lives, what this thread makes by `makeTogether` comes from shared blocks. A scope within another one goes on
/// with its blocks.
class ORVIK_API ArenaScope
{
public:
    ArenaScope();
    ~ArenaScope();
    ArenaScope(const ArenaScope&) = delete;
    ArenaScope& operator=(const ArenaScope&) = delete;

private:
    bool m_isOutermost;
};

template<class T>
class ArenaAllocator
{
public:
    typedef T value_type;

    explicit ArenaAllocator(ArenaBlock* block) : m_block(block) {}
    template<class U>
    ArenaAllocator(const ArenaAllocator<U>& other) : m_block(other.getBlock())
    {
    }

    T* allocate(std::size_t n)
    {
        return static_cast<T*>(m_block ? m_block->take(n * sizeof(T)) : ::operator new(n * sizeof(T)));
    }
    void deallocate(T* memory, std::size_t)
    {
        if (m_block)
            m_block->giveBack();
        else
            ::operator delete(memory);
    }
    ArenaBlock* getBlock() const { return m_block; }

private:
    ArenaBlock* m_block;
};

template<class T, class U>
bool operator==(const ArenaAllocator<T>& a, const ArenaAllocator<U>& b)
{
    return a.getBlock() == b.getBlock();
}
template<class T, class U>
bool operator!=(const ArenaAllocator<T>& a, const ArenaAllocator<U>& b)
{
    return !(a == b);
}

/// As boost::make_shared, in memory shared with what else is made in the scope that this thread is in.
template<class T, class... Arguments>
boost::shared_ptr<T> makeTogether(Arguments&&... arguments)
{
    static_assert(alignof(T) <= alignof(std::max_align_t), "blocks are aligned as the heap is");
    const std::size_t counts = 96;  // bytes of a shared pointer's counts, its allocator included, and more
    const ArenaAllocator<T> allocator(ArenaBlock::withRoom(sizeof(T) + counts));
    return boost::allocate_shared<T>(allocator, std::forward<Arguments>(arguments)...);
}

}  // namespace orvik
