#include "frame/imaproc/ImageSplits.h"

namespace orvik { namespace imaproc {

template<class Image>
BaseSubImageSplit<Image>::~BaseSubImageSplit() = default;

template<class Image>
BoolResult BaseSubImageSplit<Image>::initBase(const eSubImageSplitType& splitType, const eVolumeParsingType& volume,
                                              const eColorParsingType&, const eTemporalParsingType&,
                                              const boost::shared_ptr<Image>& image)
{
    if (!image)
        throwNullInputSharedPtr();
    if ((splitType == eSIST_Volume) != (volume == eVPT_Whole))
        return failure("An image is cut into planes slice by slice, or into whole volumes");
    m_image = image;
    m_sizeZ = splitType == eSIST_Volume ? 1 : image->getSizeZ();
    m_nbElements = m_sizeZ * image->getSizeC() * image->getSizeT();
    return success();
}

template<class Image>
BoolResult BaseSubImageSplit<Image>::getSubImage(unsigned long index, boost::shared_ptr<Image>& subImage) const
{
    if (!m_image || index >= m_nbElements)
        return failure("There is no sub-image " + std::to_string(index) + " among " + std::to_string(m_nbElements));
    if (m_nbElements == 1) {
        subImage = m_image;
        return success();
    }
    subImage = m_image->getView(planAt(index, m_sizeZ, m_image->getSizeC()), m_sizeZ == 1 ? m_image->getSizeZ() : 1);
    return success();
}

template class BaseSubImageSplit<image::BaseImage>;
template class BaseSubImageSplit<const image::BaseImage>;

BasePlanIndexedSplit::~BasePlanIndexedSplit() = default;

BoolResult BasePlanIndexedSplit::initBase(const boost::shared_ptr<BasePlanIndexedColl>& coll, unsigned long sizeZ,
                                          unsigned long sizeC, unsigned long sizeT, bool)
{
    if (!coll)
        throwNullInputSharedPtr();
    m_coll = coll;
    m_sizeZ = sizeZ;
    m_sizeC = sizeC;
    m_sizeT = sizeT;
    if (coll->getNbPlans() == 0)
        forEachPlan(sizeZ, sizeC, sizeT, [&](const PlanIndex& plan) { coll->insert(plan, coll->createEntry()); });
    return success();
}

BoolResult BasePlanIndexedSplit::getEntry(unsigned long index, boost::shared_ptr<BaseSerializationObject>& entry) const
{
    const PlanIndex plan = m_coll->getNbPlans() >= 2 ? planAt(index, m_sizeZ, m_sizeC) : PlanIndex();
    entry = m_coll->getStorage(plan);
    if (!entry)
        return failure("The plan-indexed collection has no entry for plane (" + std::to_string(plan.z) + ", "
                       + std::to_string(plan.c) + ", " + std::to_string(plan.t) + ")");
    return success();
}

template<class Image>
BaseImageStripSplit<Image>::~BaseImageStripSplit() = default;

template<class Image>
BoolResult BaseImageStripSplit<Image>::initImage(const boost::shared_ptr<Image>& image)
{
    if (!image)
        throwNullInputSharedPtr();
    m_image = image;
    const bool ofPlane = getImageStripSplitType() < eISST_ZStrip3d;
    if (image->getSizeC() != 1 || image->getSizeT() != 1 || (ofPlane && image->getSizeZ() != 1))
        return failure("Strips are cut from one plane or one volume, not from an image of size "
                       + image::toString(image->getGeometry().getSizes()));
    return success();
}

template class BaseImageStripSplit<image::BaseImage>;
template class BaseImageStripSplit<const image::BaseImage>;

}}  // namespace orvik::imaproc
