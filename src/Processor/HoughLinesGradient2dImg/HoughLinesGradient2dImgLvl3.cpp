#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl3.h"

#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgKernel.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(HoughLinesGradient2dImgLvl3)

void HoughLinesGradient2dImgLvl3::setRowsMutexColl(const boost::shared_ptr<HoughLinesRowsMutexColl>& rowsMutexColl)
{
    m_rowsMutexColl = rowsMutexColl;
}

processor::StageResult HoughLinesGradient2dImgLvl3::preProcess()
{
    if (!m_rowsMutexColl)
        return failure(getObjectName() + ": the accumulator has no locks for its rows");
    m_tables = boost::make_shared<HoughLinesTables>();
    const BoolResult made = m_tables->init(getObjectName(), *value<InOptHoughLinesGradientImgParams>(),
                                           *value<InGxYStrip2d>(), *value<OutRealImg>());
    if (!made)
        return made;
    m_voters = boost::make_shared<GradientVoters>();
    m_voters->init(m_tables->nbRows);
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
