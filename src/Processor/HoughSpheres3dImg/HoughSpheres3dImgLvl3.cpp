#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl3.h"

#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgKernel.h"

#include "Processor/StripMarginsCheck.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(HoughSpheres3dImgLvl3)

eRingForm HoughSpheres3dImgLvl3::s_form = eRF_ByCost;

void HoughSpheres3dImgLvl3::setShells(const ConstPtr<Shells>& shells)
{
    m_shells = shells;
}

void HoughSpheres3dImgLvl3::forceForm(eRingForm form)
{
    s_form = form;
}

processor::StageResult HoughSpheres3dImgLvl3::preProcess()
{
    BoolResult fits = makeShellsOnce(*value<InHoughSpheresKernelXYZ>(), *value<InHoughCirclesRadiusRange>(),
                                     value<InCircleIntensityType>(), value<InMaxAngleWithGradDir>(), m_shells);
    if (fits)
        fits = checkMargins(getObjectName(), static_cast<unsigned long>(m_shells->getMaxRadius()), value<InGxKnlZStrip3d>(),
                            value<InGyKnlZStrip3d>(), value<InGzKnlZStrip3d>());
    if (!fits)
        return fits;
    setBorder<InGxKnlZStrip3d>(image::valuedBorder3d(0.0));
    setBorder<InGyKnlZStrip3d>(image::valuedBorder3d(0.0));
    setBorder<InGzKnlZStrip3d>(image::valuedBorder3d(0.0));
    readOnDemand<InGxKnlZStrip3d>();
    readOnDemand<InGyKnlZStrip3d>();
    readOnDemand<InGzKnlZStrip3d>();
    if (!m_buffers)
        m_buffers = boost::make_shared<ShellBuffers>();
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
