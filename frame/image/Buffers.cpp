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

void TypedOwnBuffer::Free::operator()(void* block) const
{
    std::free(block);
}

TypedOwnBuffer::TypedOwnBuffer() = default;
TypedOwnBuffer::~TypedOwnBuffer() = default;

void TypedOwnBuffer::init(unsigned long nbValues, eDataType type)
{
    const unsigned long bytes = std::max(g_alignment, alignedUp(nbValues * getDataTypeSize(type)));
    if (bytes > m_capacity) {
        m_data.reset(std::aligned_alloc(g_alignment, bytes));
        m_capacity = m_data ? bytes : 0;
        if (!m_data)
            throw std::bad_alloc();
    }
    m_type = type;
    std::memset(m_data.get(), 0, bytes);
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
