#pragma once

#include "frame/attr/Enumerations.h"
#include "frame/attr/Records.h"
#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/BaseAttribute.h"
#include "frame/util/NumericLimits.h"

namespace orvik { namespace imaproc { namespace attr {

template<class T>
using ValueOf = processor::BaseValueAttribute<T>;
template<class Record>
using InRecord = processor::InputDataItem<Record>;
template<class Record>
using InOptRecord = processor::InputOptionalDataItem<Record>;
template<class Record>
using OutRecord = processor::OutputDataItem<Record>;

#define ORVIK_ROLE(Role, ...) ORVIK_##Role(__VA_ARGS__)
#include "frame/attr/ValueAttributes.inc"
#undef ORVIK_ROLE

}}}  // namespace orvik::imaproc::attr
