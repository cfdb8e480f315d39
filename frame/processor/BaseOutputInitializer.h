#pragma once

#include "frame/processor/BaseRule.h"

#include <map>

namespace orvik { namespace processor {

enum eOutputInitializerType : unsigned int
{
    eOIT_Allocate = 0,
    eOIT_ImageProcessing = 1
};

/// Makes an output that the caller did not give.
class ORVIK_API BaseOutputInitializer
{
public:
    virtual ~BaseOutputInitializer();

    /// @throws ORVIKBaseProcessingException for an attribute that was null.
    void initBase(const boost::weak_ptr<BaseAttribute>& outputAttribute);
    /// @throws ORVIKBaseProcessingException before `initBase`, and when the attribute is gone.
    boost::shared_ptr<const BaseAttribute> getOutputAttribute() const;
    boost::shared_ptr<BaseAttribute> getOutputAttribute();

    /// Makes the output unless it has a value already.
    BoolResult initOutputAttribute();

    virtual eOutputInitializerType getOutputInitializerType() const = 0;
    virtual BoolResult initAttribute() = 0;
    /// What would be made, without and with values.
    virtual std::string createInitializerFormalString() const = 0;
    virtual std::string createInitializerEvaluatedString() const = 0;

protected:
    /// What an initialiser says that makes an empty record.
    std::string describeNewRecord(const std::string& recordName) const;

private:
    boost::weak_ptr<BaseAttribute> m_outputAttribute;
    bool m_initialised = false;
};

typedef boost::shared_ptr<BaseOutputInitializer> InitializerPtr;
/// By the name of the output attribute.
typedef std::map<std::string, InitializerPtr> InitializerMap;

/// Makes an empty record, or an empty collection of lists per plane.
template<class A>
class AllocateInitializer : public BaseOutputInitializer
{
public:
    eOutputInitializerType getOutputInitializerType() const override { return eOIT_Allocate; }
    BoolResult initAttribute() override
    {
        static_cast<A&>(*getOutputAttribute()).initEmpty();
        return success();
    }
    std::string createInitializerFormalString() const override { return describeNewRecord(A::Entry::getRecordName()); }
    std::string createInitializerEvaluatedString() const override { return createInitializerFormalString(); }
};

/// An empty record or collection for an output.
template<class A>
InitializerPtr newRecord(const boost::shared_ptr<A>& out)
{
    const boost::shared_ptr<AllocateInitializer<A>> initializer = makeTogether<AllocateInitializer<A>>();
    initializer->initBase(out);
    return initializer;
}

}}  // namespace orvik::processor
