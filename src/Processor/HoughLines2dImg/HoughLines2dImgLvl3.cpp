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
    const image::BaseImage& out = *value<OutImg>();
    m_nbRows = params.get<HoughLinesImgParams::NbThetaBins>();
    if (!m_rowsMutexColl || out.getSizeY() < m_nbRows)
        return failure(getObjectName() + ": the accumulator has no lock for each of its rows, or "
                       + std::to_string(out.getSizeY()) + " rows for " + std::to_string(m_nbRows) + " angles");

    const double rhoStep = params.get<HoughLinesImgParams::RhoStep>();
    const double thetaMin = params.get<HoughLinesImgParams::ThetaMin>(), thetaStep = thetaStepOf(params);
    m_threshold = params.get<HoughLinesImgParams::PixelThreshold>();
    // NaN for a step that is none, so that no vote finds a column.
    const double halfRho = halfRhoOf(strip.getSizeX(), strip.getImageSizeY(), rhoStep);
    m_centre = rhoStep > 0.0 ? halfRho : std::numeric_limits<double>::quiet_NaN();
    m_cosines.resize(m_nbRows);
    m_sines.resize(m_nbRows);
    for (unsigned long t = 0; t < m_nbRows; ++t) {
        double sine, cosine;
        sincos(static_cast<double>(t) * thetaStep + thetaMin, &sine, &cosine);
        m_cosines[t] = static_cast<float>(cosine / rhoStep);
        m_sines[t] = static_cast<float>(sine / rhoStep);
    }
    m_firstRow = m_nbRows * strip.getStripStartOffsetY() / strip.getImageSizeY();

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
