#include "frame/image/Buffers.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace orvik { namespace image {

namespace {

const unsigned long g_alignment = 64;

unsigned long alignedUp(unsigned long bytes)
{
    return (bytes + g_alignment - 1) / g_alignment * g_alignment;
}

}  // namespace

BaseBlockBuffer::BaseBlockBuffer() = default;
BaseBlockBuffer::~BaseBlockBuffer() = default;

TypedOwnBuffer::TypedOwnBuffer() = default;
TypedOwnBuffer::~TypedOwnBuffer()
{
    std::free(m_block);
}

void TypedOwnBuffer::init(unsigned long nbValues, eDataType type)
{
    const unsigned long bytes = std::max(g_alignment, alignedUp(nbValues * getDataTypeSize(type)));
    if (bytes > m_capacity) {
        std::free(m_block);
        m_block = std::aligned_alloc(g_alignment, bytes);
        m_capacity = m_block ? bytes : 0;
        if (!m_block)
            throw std::bad_alloc();
    }
    m_type = type;
    std::memset(m_block, 0, bytes);
}

BaseFragBuffer::BaseFragBuffer() = default;
BaseFragBuffer::~BaseFragBuffer() = default;

void BaseFragBuffer::rollUpFragments()
{
    std::rotate(m_fragments.begin(), m_fragments.begin() + 1, m_fragments.end());
}

FragHybridBuffer::FragHybridBuffer() = default;
FragHybridBuffer::~FragHybridBuffer() = default;

void FragHybridBuffer::init(eDataType type, unsigned long fragmentSize, unsigned long nbFragments)
{
    const unsigned long slack = 64;  // values that a kernel may touch past the end when it works in whole blocks
    m_valueSize = getDataTypeSize(type);
    const unsigned long bytes = alignedUp((fragmentSize + slack) * m_valueSize);
    m_memory.init(nbFragments * (bytes / m_valueSize), type);
    m_fragments.resize(nbFragments);
    for (unsigned long i = 0; i < nbFragments; ++i)
        m_fragments[i] = static_cast<char*>(m_memory.getDataPtr()) + i * bytes;
}

}}  // namespace orvik::image
