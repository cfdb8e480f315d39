#pragma once

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/BaseOutputInitializer.h"

#include <boost/function.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

namespace orvik { namespace imaproc {

enum eFromImagePlanIndexedPolicy : unsigned int
{
    eFIPIP_Planes = 0,
    eFIPIP_Volumes = 1
};

/// Fills a plan-indexed output: an empty entry for each plane or volume of an input image that has none.
class ORVIK_API BaseFromImagePlanIndexedInitializer : public processor::BaseOutputInitializer
{
public:
    typedef boost::function<boost::shared_ptr<BaseSerializationObject>()> CreationFunction;

    ~BaseFromImagePlanIndexedInitializer() override;
    using processor::BaseOutputInitializer::initBase;
    void initBase(const boost::weak_ptr<BasePlanIndexedAttribute>& out, const WeakImage& in,
                  const eFromImagePlanIndexedPolicy& policy);
    processor::eOutputInitializerType getOutputInitializerType() const override { return processor::eOIT_ImageProcessing; }
    using processor::BaseOutputInitializer::initAttribute;
    BoolResult initAttribute() override;
    virtual BoolResult initAttribute(BasePlanIndexedAttribute& attribute, unsigned long sizeZ, unsigned long sizeC,
                                     unsigned long sizeT) = 0;
    std::string createInitializerFormalString() const override;
    std::string createInitializerEvaluatedString() const override;

protected:
    static void initPlanIndexed(unsigned long sizeZ, unsigned long sizeC, unsigned long sizeT, BasePlanIndexedColl& coll,
                                const CreationFunction& creationFunction);

private:
    WeakImage m_input;
    eFromImagePlanIndexedPolicy m_policy = eFIPIP_Planes;
};

template<class A>
class FromImagePlanIndexedInitializer : public BaseFromImagePlanIndexedInitializer
{
public:
    using BaseFromImagePlanIndexedInitializer::initAttribute;
    BoolResult initAttribute(BasePlanIndexedAttribute& attribute, unsigned long sizeZ, unsigned long sizeC,
                             unsigned long sizeT) override
    {
        if (!attribute.hasValue())
            attribute.initEmpty();
        initPlanIndexed(sizeZ, sizeC, sizeT, *attribute.accessStorage(), &A::Entry::createNode);
        return success();
    }
};

/// One empty entry per plane (z, c, t), or per volume (c, t).
template<class A, class In>
processor::InitializerPtr fromImage(const boost::shared_ptr<A>& out, const boost::shared_ptr<In>& in,
                                    const eFromImagePlanIndexedPolicy& policy = eFIPIP_Planes)
{
    const boost::shared_ptr<FromImagePlanIndexedInitializer<A>> initializer =
        makeTogether<FromImagePlanIndexedInitializer<A>>();
    initializer->initBase(out, in, policy);
    return initializer;
}
template<class A, class In>
processor::InitializerPtr fromImageButVolume(const boost::shared_ptr<A>& out, const boost::shared_ptr<In>& in)
{
    return fromImage(out, in, eFIPIP_Volumes);
}

}}  // namespace orvik::imaproc
