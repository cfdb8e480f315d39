#include "Processor/HoughLines2dImg/HoughLines2dImgLvl3.h"

#include "Processor/HoughLines2dImg/HoughLines2dImgKernel.h"

#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"
#include "Processor/HoughLines2dImg/HoughLinesRowsMutexColl.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(HoughLines2dImgLvl3)

void HoughLines2dImgLvl3::setRowsMutexColl(const boost::shared_ptr<HoughLinesRowsMutexColl>& rowsMutexColl)
{
    m_rowsMutexColl = rowsMutexColl;
}

processor::StageResult HoughLines2dImgLvl3::preProcess()
{
    const HoughLinesImgParams& params = *value<InOptHoughLinesImgParams>();
    const image::InputImageYStrip2d& strip = *value<InYStrip2d>();
    if (!m_rowsMutexColl)
        return failure(getObjectName() + ": the accumulator has no locks for its rows");
    m_tables = boost::make_shared<HoughLinesTables>();
    const BoolResult made = m_tables->init(getObjectName(), params, strip, *value<OutImg>());
    if (!made)
        return made;
    m_threshold = params.get<HoughLinesImgParams::PixelThreshold>();

    const unsigned long slack = 64, mostVoters = 4096;  // twice 16 KB stay near while all rows are gone through
    const unsigned long nbVoters = std::min(mostVoters, strip.getNbLines() * strip.getSizeX() + slack);
    m_positions.resize(nbVoters + slack);
    m_weights.resize(nbVoters + slack);
    m_nbVoters = 0;
    m_segments.clear();
    m_segments.reserve(std::min(nbVoters, strip.getNbLines()) + 1);
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
