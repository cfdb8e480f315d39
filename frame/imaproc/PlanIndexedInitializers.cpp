#include "frame/imaproc/PlanIndexedInitializers.h"

#include "frame/imaproc/ImageInitializerParts.h"

namespace orvik { namespace imaproc {

BaseFromImagePlanIndexedInitializer::~BaseFromImagePlanIndexedInitializer() = default;

void BaseFromImagePlanIndexedInitializer::initBase(const boost::weak_ptr<BasePlanIndexedAttribute>& out, const WeakImage& in,
                                                   const eFromImagePlanIndexedPolicy& policy)
{
    initBase(out);
    checkInput(in);
    m_input = in;
    m_policy = policy;
}

BoolResult BaseFromImagePlanIndexedInitializer::initAttribute()
{
    boost::shared_ptr<const image::BaseImage> input;
    const BoolResult result = imageOf(m_input, input);
    if (!result)
        return result;
    return initAttribute(static_cast<BasePlanIndexedAttribute&>(*getOutputAttribute()),
                         m_policy == eFIPIP_Planes ? input->getSizeZ() : 1, input->getSizeC(), input->getSizeT());
}

void BaseFromImagePlanIndexedInitializer::initPlanIndexed(unsigned long sizeZ, unsigned long sizeC, unsigned long sizeT,
                                                          BasePlanIndexedColl& coll,
                                                          const CreationFunction& creationFunction)
{
    forEachPlan(sizeZ, sizeC, sizeT, [&](const PlanIndex& plan) {
        if (!coll.getStorage(plan))
            coll.insert(plan, creationFunction());
    });
}

std::string BaseFromImagePlanIndexedInitializer::createInitializerFormalString() const
{
    return textOf(m_policy == eFIPIP_Planes ? eImageInitializerMessage::eEntryPerPlane
                                            : eImageInitializerMessage::eEntryPerVolume,
                  getOutputAttribute()->getObjectName(), lockInput(m_input)->getObjectName());
}

std::string BaseFromImagePlanIndexedInitializer::createInitializerEvaluatedString() const
{
    boost::shared_ptr<const image::BaseImage> input;
    const BoolResult result = imageOf(m_input, input);
    return result.getValue() ? textOf(eImageInitializerMessage::eEntriesOf, createInitializerFormalString(),
                                      toString(input->getGeometry().getSizes()))
                             : result.getMessage();
}

}}  // namespace orvik::imaproc
