#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl3.h"

#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace advmorpho {

ORVIK_DEFINE_ALGORITHM(IterativeExtremumPropagation2dImgLvl3)

void IterativeExtremumPropagation2dImgLvl3::initDataParserColl(processor::DataParserColl& coll)
{
    coll.clear();
}

void WeakSpreader::seedLine(unsigned long y, unsigned long start, unsigned long end)
{
    const unsigned char* const line = m_access(y);
    for (unsigned long x = start; x < end; ++x)
        if (line[x] == 1 && (x == start || line[x - 1] != 1))
            m_seeds.push_back({static_cast<unsigned int>(x), static_cast<unsigned int>(y)});
}

void WeakSpreader::spreadFrom(unsigned long x, unsigned long y)
{
    m_seeds.push_back({static_cast<unsigned int>(x), static_cast<unsigned int>(y)});
    while (!m_seeds.empty()) {
        const Seed seed = m_seeds.back();
        m_seeds.pop_back();
        unsigned char* const line = m_access(seed.y);
        if (line[seed.x] != 1)
            continue;
        unsigned long start = seed.x, end = seed.x;
        while (start > 0 && line[start - 1] == 1)
            --start;
        while (end < m_sizeX && line[end] == 1)
            ++end;
        std::fill(line + start, line + end, static_cast<unsigned char>(2));
        const unsigned long from = start > 0 ? start - 1 : 0, to = std::min(end + 1, m_sizeX);
        if (seed.y > m_firstLine)
            seedLine(seed.y - 1, from, to);
        if (seed.y + 1 < m_endLine)
            seedLine(seed.y + 1, from, to);
    }
}

void WeakSpreader::spreadAcross(unsigned long y)
{
    if (y <= m_firstLine || y >= m_endLine)
        return;
    const unsigned long lines[2] = {y - 1, y};
    for (unsigned long side = 0; side < 2; ++side) {
        const unsigned char* const weak = m_access(lines[side]);
        const unsigned char* const strong = m_access(lines[1 - side]);
        for (unsigned long x = 0; x < m_sizeX; ++x)
            if (weak[x] == 1
                && (strong[x] > 1 || (x > 0 && strong[x - 1] > 1) || (x + 1 < m_sizeX && strong[x + 1] > 1)))
                spreadFrom(x, lines[side]);
    }
}

}}}  // namespace orvik::imaproc::advmorpho
