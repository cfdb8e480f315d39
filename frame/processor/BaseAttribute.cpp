#include "frame/processor/BaseAttribute.h"

#include "frame/attr/Enumerations.h"
#include "frame/serialization/Archive.h"

namespace orvik { namespace processor {

BaseAttribute::BaseAttribute() : m_hasValue(false), m_madeByInitializer(false) {}
BaseAttribute::~BaseAttribute() = default;

void BaseAttribute::setHasValue(bool hasValue)
{
    m_hasValue = hasValue;
    m_madeByInitializer = false;
}

void BaseAttribute::clear()
{
    setHasValue(false);
}

bool BaseAttribute::isStored() const
{
    return false;
}

BoolResult BaseAttribute::write(BaseOArchive&) const
{
    return success();
}

BoolResult BaseAttribute::read(BaseIArchive&)
{
    return success();
}

BaseDataItemAttribute::~BaseDataItemAttribute() = default;
BaseInputMandatoryDataItemAttribute::~BaseInputMandatoryDataItemAttribute() = default;
BaseInputOptionalDataItemAttribute::~BaseInputOptionalDataItemAttribute() = default;
BaseOutputMandatoryDataItemAttribute::~BaseOutputMandatoryDataItemAttribute() = default;

namespace {

/// Enumerators are archived as numbers.
template<class T, bool IsEnum = std::is_enum<T>::value>
struct ArchivedAs
{
    typedef T type;
};

template<class T>
struct ArchivedAs<T, true>
{
    typedef unsigned long type;
};

}  // namespace

template<class T>
BoolResult BaseValueAttribute<T>::write(BaseOArchive& archive) const
{
    const typename ArchivedAs<T>::type value = m_value;
    archive << SerializationOItem<typename ArchivedAs<T>::type>("value", value);
    return success();
}

template<class T>
BoolResult BaseValueAttribute<T>::read(BaseIArchive& archive)
{
    typename ArchivedAs<T>::type value;
    archive >> SerializationIItem<typename ArchivedAs<T>::type>("value", value);
    initBase(static_cast<T>(value));
    return success();
}

#define ORVIK_VALUE_ATTRIBUTE(T) \
    template ORVIK_API BoolResult BaseValueAttribute<T>::write(BaseOArchive&) const; \
    template ORVIK_API BoolResult BaseValueAttribute<T>::read(BaseIArchive&);
ORVIK_VALUE_ATTRIBUTE(double)
ORVIK_VALUE_ATTRIBUTE(float)
ORVIK_VALUE_ATTRIBUTE(unsigned int)
ORVIK_VALUE_ATTRIBUTE(unsigned long)
ORVIK_VALUE_ATTRIBUTE(imaproc::attr::eProcessingOptimizationPolicy)
ORVIK_VALUE_ATTRIBUTE(imaproc::attr::eNeighborhood2d)
ORVIK_VALUE_ATTRIBUTE(imaproc::attr::eNeighborhood3d)
ORVIK_VALUE_ATTRIBUTE(imaproc::attr::eLocalExtremumType)

}}  // namespace orvik::processor
