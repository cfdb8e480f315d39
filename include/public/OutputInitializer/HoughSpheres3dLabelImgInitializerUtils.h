#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ImageInitializers.h"

namespace orvik { namespace imaproc { namespace fd {

typedef boost::weak_ptr<const attr::InPIHoughSpheres3dPpties> WeakPIHoughSpheres3dPpties;

/// Labels of the sizes of an image, wide enough for the longest list: 8 bits up to 255 spheres, 16 up to 65535, else 32.
class ORVIK_API CustomHoughSpheres3dLabelImgOutputInitializer : public BaseFromImageCustomImageInfo
{
public:
    ~CustomHoughSpheres3dLabelImgOutputInitializer() override;
    /// @throws ORVIKIPLFeatureDetectionException for an attribute that is null.
    void init(const WeakImage& input, const WeakPIHoughSpheres3dPpties& spheres);
    /// @throws ORVIKIPLFeatureDetectionException when the lists are gone.
    image::eImageBufferType getImageBufferType() const override;

private:
    WeakPIHoughSpheres3dPpties m_spheres;
};

/// For customOutput. @throws ORVIKIPLFeatureDetectionException for an attribute that is null.
ORVIK_API boost::shared_ptr<CustomHoughSpheres3dLabelImgOutputInitializer> outputHoughSpheres3dLabelImg(
    const WeakImage& input, const WeakPIHoughSpheres3dPpties& spheres);

}}}  // namespace orvik::imaproc::fd
