#pragma once

// Blocks of values in arrays of one lane width, so that loops over several of them become vectors on every set.

#include "frame/simd/Simd.h"

#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

template<class T, class From>
void copyBlock(const From* from, T* to, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i)
        to[i] = static_cast<T>(from[i]);
}

/// Values in the lanes that a block is compared in: where they lie, when they are that wide and of that kind (whole
/// numbers with or without sign), else in room of the block's own.
template<class T, class From>
const T* inLanes(const From* from, T* room, unsigned long n)
{
    if constexpr (sizeof(T) == sizeof(From) && std::is_floating_point<T>::value == std::is_floating_point<From>::value) {
        return reinterpret_cast<const T*>(from);
    } else {
        copyBlock(from, room, n);
        return room;
    }
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
