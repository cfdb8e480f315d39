#pragma once

#include "frame/util/Export.h"

#include <cstddef>
#include <string>

namespace orvik {

/// Types of values in buffers of the frame's own.
enum eDataType : unsigned int
{
    eDT_None = 0,
    eDT_Int8,
    eDT_UInt8,
    eDT_Int16,
    eDT_UInt16,
    eDT_Int32,
    eDT_UInt32,
    eDT_Real32,
    eDT_Real64
};

/// Bytes of one value.
ORVIK_API std::size_t getDataTypeSize(eDataType type);

template<class T>
struct DataTypeOf;
// clang-format off
template<>
struct DataTypeOf<signed char> { static constexpr eDataType value = eDT_Int8; };
template<>
struct DataTypeOf<unsigned char> { static constexpr eDataType value = eDT_UInt8; };
template<>
struct DataTypeOf<short> { static constexpr eDataType value = eDT_Int16; };
template<>
struct DataTypeOf<unsigned short> { static constexpr eDataType value = eDT_UInt16; };
template<>
struct DataTypeOf<int> { static constexpr eDataType value = eDT_Int32; };
template<>
struct DataTypeOf<unsigned int> { static constexpr eDataType value = eDT_UInt32; };
template<>
struct DataTypeOf<float> { static constexpr eDataType value = eDT_Real32; };
template<>
struct DataTypeOf<double> { static constexpr eDataType value = eDT_Real64; };
// clang-format on

namespace image {

/// Sample type of an image together with its meaning. Any other value stands for no type.
enum eImageBufferType : unsigned int
{
    eIBT_Int8 = 1,
    eIBT_UInt8 = 2,
    eIBT_Int16 = 3,
    eIBT_UInt16 = 4,
    eIBT_Int32 = 5,
    eIBT_UInt32 = 6,
    eIBT_Real32 = 7,
    eIBT_Binary = 8,    ///< `unsigned char`, 0 or 1
    eIBT_Label16 = 9,   ///< `unsigned short`
    eIBT_Label32 = 10,  ///< `unsigned int`
    eIBT_Label8 = 11    ///< `unsigned char`
};

ORVIK_API bool isValid(eImageBufferType type);
/// Bytes of one sample; 0 for no type.
ORVIK_API unsigned int getImageBufferBaseSize(eImageBufferType type);
ORVIK_API eDataType toDataType(eImageBufferType type);
/// "signed 8 bits", "binary" and the like, with the number of the type.
ORVIK_API std::string toString(eImageBufferType type);

/// Calls `f` with a value of the sample type of `type`; without effect when that is no type.
template<class F>
void withSampleType(eDataType type, F&& f)
{
    switch (type) {
    case eDT_Int8: f(static_cast<signed char>(0)); break;
    case eDT_UInt8: f(static_cast<unsigned char>(0)); break;
    case eDT_Int16: f(static_cast<short>(0)); break;
    case eDT_UInt16: f(static_cast<unsigned short>(0)); break;
    case eDT_Int32: f(0); break;
    case eDT_UInt32: f(0u); break;
    case eDT_Real32: f(0.0f); break;
    case eDT_Real64: f(0.0); break;
    case eDT_None: break;
    }
}

}
}  // namespace orvik::image
