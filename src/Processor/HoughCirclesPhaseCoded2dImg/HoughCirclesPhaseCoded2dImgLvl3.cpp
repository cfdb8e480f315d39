#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl3.h"

#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgKernel.h"

#include "Processor/RingRecords.h"
#include "Processor/StripMarginsCheck.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(HoughCirclesPhaseCoded2dImgLvl3)

eRingForm HoughCirclesPhaseCoded2dImgLvl3::s_form = eRF_ByCost;

void HoughCirclesPhaseCoded2dImgLvl3::setRings(const ConstPtr<Rings<2>>& rings)
{
    m_rings = rings;
}

void HoughCirclesPhaseCoded2dImgLvl3::forceForm(eRingForm form)
{
    s_form = form;
}

processor::StageResult HoughCirclesPhaseCoded2dImgLvl3::preProcess()
{
    BoolResult fits = makeRingsOnce(*value<InHoughCirclesPhaseCodedKernelXY>(), *value<InHoughCirclesRadiusRange>(),
                                    value<InCircleIntensityType>(), value<InMaxAngleWithGradDir>(), m_rings);
    if (fits)
        fits = checkMargins(getObjectName(), static_cast<unsigned long>(m_rings->getMaxRadius()), value<InGxKnlYStrip2d>(),
                            value<InGyKnlYStrip2d>());
    if (!fits)
        return fits;
    setBorder<InGxKnlYStrip2d>(image::valuedBorder2d(0.0));
    setBorder<InGyKnlYStrip2d>(image::valuedBorder2d(0.0));
    if (!m_buffers)
        m_buffers = boost::make_shared<RingBuffers>();
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
