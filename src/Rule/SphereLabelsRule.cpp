#include "Rule/SphereLabelsRule.h"

#include "WeakAttributes.h"

#include "frame/attr/Records.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/util/Arena.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

namespace {

class SphereLabels : public BaseCustomCheckedImageProperty
{
public:
    SphereLabels(const WeakImage& in, const WeakPIHoughSpheres3dPpties& spheres) : m_spheres(spheres)
    {
        initBase(in);
        enableCheck(eCIP_BufferType);
    }
    image::eImageBufferType getImageBufferType() const override { return getAllowedImageBufferTypes().front(); }
    std::vector<image::eImageBufferType> getAllowedImageBufferTypes() const override
    {
        return typesOfSphereLabels(*lockAttribute(m_spheres));
    }

private:
    WeakPIHoughSpheres3dPpties m_spheres;
};

}  // namespace

std::vector<image::eImageBufferType> typesOfSphereLabels(const InPIHoughSpheres3dPpties& spheres)
{
    std::size_t nbMost = 0;
    if (const Ptr<PlanIndexedHoughSpheres3dPpties>& lists = spheres.getStorage())
        for (const PlanIndex& plan : lists->getPlans())
            if (const auto list = boost::static_pointer_cast<HoughSpheres3dPpties>(lists->getStorage(plan)))
                nbMost = std::max(nbMost, list->get<HoughSpheres3dPpties::Coll>().size());
    std::vector<image::eImageBufferType> types = {image::eIBT_Label8, image::eIBT_UInt8,   image::eIBT_Label16,
                                                  image::eIBT_UInt16, image::eIBT_Label32, image::eIBT_UInt32};
    types.erase(types.begin(), types.begin() + (nbMost <= 255 ? 0 : nbMost <= 65535 ? 2 : 4));
    return types;
}

processor::RulePtr canNameSpheres(const WeakImage& in, const WeakImage& out, const WeakPIHoughSpheres3dPpties& spheres)
{
    return customImageProperty(out, makeTogether<SphereLabels>(in, spheres));
}

}}}  // namespace orvik::imaproc::fd
