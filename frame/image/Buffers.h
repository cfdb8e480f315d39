#pragma once

#include "frame/image/BufferType.h"

#include <vector>

namespace orvik { namespace image {

/// A buffer in one block.
class ORVIK_API BaseBlockBuffer
{
public:
    BaseBlockBuffer();
    virtual ~BaseBlockBuffer();
    BaseBlockBuffer(const BaseBlockBuffer&) = delete;
    BaseBlockBuffer& operator=(const BaseBlockBuffer&) = delete;

    void* getDataPtr() const { return m_block; }

protected:
    void* m_block = nullptr;
};

/// Memory of its own, aligned to 64 bytes and zeroed. A second `init` of the same or a smaller size keeps the memory.
class ORVIK_API TypedOwnBuffer : public BaseBlockBuffer
{
public:
    TypedOwnBuffer();
    ~TypedOwnBuffer() override;

    void init(unsigned long nbValues, eDataType type);
    eDataType getDataType() const { return m_type; }

private:
    unsigned long m_capacity = 0;  // bytes
    eDataType m_type = eDT_None;
};

/// A buffer in fragments of equal size, such as lines.
class ORVIK_API BaseFragBuffer
{
public:
    BaseFragBuffer();
    virtual ~BaseFragBuffer();

    unsigned long getNbFragments() const { return m_fragments.size(); }
    void* getDataPtr(unsigned long fragment) const { return m_fragments[fragment]; }
    /// Value `offset` of a fragment.
    void* getDataPtr(unsigned long fragment, unsigned long offset) const
    {
        return static_cast<char*>(m_fragments[fragment]) + offset * m_valueSize;
    }
    /// Turns the ring by one: fragment 1 becomes 0 and so on, the old fragment 0 becomes the last. Nothing is copied.
    void rollUpFragments();

protected:
    std::vector<void*> m_fragments;
    unsigned long m_valueSize = 0;
};

/// Fragments in one block of memory of their own: the rolling lines of the kernels. A second `init` that needs no more
/// memory makes none.
class ORVIK_API FragHybridBuffer : public BaseFragBuffer
{
public:
    FragHybridBuffer();
    ~FragHybridBuffer() override;

    /// Each fragment starts at a multiple of 64 bytes and is readable up to 64 values past its size.
    void init(eDataType type, unsigned long fragmentSize, unsigned long nbFragments);

private:
    TypedOwnBuffer m_memory;
};

}}  // namespace orvik::image
