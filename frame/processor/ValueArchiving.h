#pragma once

// How the value of an attribute is archived; included where the attributes of a type are compiled.

#include "frame/processor/BaseAttribute.h"
#include "frame/serialization/Archive.h"

namespace orvik { namespace processor {

/// Enumerators are archived as numbers.
template<class T>
using ArchivedAs = typename std::conditional<std::is_enum<T>::value, unsigned long, T>::type;

template<class T>
BoolResult BaseValueAttribute<T>::write(BaseOArchive& archive) const
{
    const ArchivedAs<T> value = m_value;
    archive << SerializationOItem<ArchivedAs<T>>("value", value);
    return success();
}

template<class T>
BoolResult BaseValueAttribute<T>::read(BaseIArchive& archive)
{
    ArchivedAs<T> value;
    archive >> SerializationIItem<ArchivedAs<T>>("value", value);
    initBase(static_cast<T>(value));
    return success();
}

#define ORVIK_VALUE_ATTRIBUTE(T) \
    template ORVIK_API BoolResult BaseValueAttribute<T>::write(BaseOArchive&) const; \
    template ORVIK_API BoolResult BaseValueAttribute<T>::read(BaseIArchive&);

}}  // namespace orvik::processor
