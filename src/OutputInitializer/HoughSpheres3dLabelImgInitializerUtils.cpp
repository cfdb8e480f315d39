#include "OutputInitializer/HoughSpheres3dLabelImgInitializerUtils.h"

#include "Rule/SphereLabelsRule.h"
#include "WeakAttributes.h"

#include "frame/attr/ValueAttributes.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

CustomHoughSpheres3dLabelImgOutputInitializer::~CustomHoughSpheres3dLabelImgOutputInitializer() = default;

void CustomHoughSpheres3dLabelImgOutputInitializer::init(const WeakImage& input, const WeakPIHoughSpheres3dPpties& spheres)
{
    checkNotNull<eOutputInitializerMessage>(input);
    checkNotNull<eOutputInitializerMessage>(spheres);
    initBase(input);
    m_spheres = spheres;
}

image::eImageBufferType CustomHoughSpheres3dLabelImgOutputInitializer::getImageBufferType() const
{
    return typesOfSphereLabels(*lockAttribute(m_spheres)).front();
}

boost::shared_ptr<CustomHoughSpheres3dLabelImgOutputInitializer> outputHoughSpheres3dLabelImg(
    const WeakImage& input, const WeakPIHoughSpheres3dPpties& spheres)
{
    return makeInitialised<CustomHoughSpheres3dLabelImgOutputInitializer>(input, spheres);
}

}}}  // namespace orvik::imaproc::fd
