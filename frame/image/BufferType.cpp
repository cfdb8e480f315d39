#include "frame/image/BufferType.h"

namespace orvik {

std::size_t getDataTypeSize(eDataType type)
{
    std::size_t size = 0;
    image::withSampleType(type, [&](auto sample) { size = sizeof sample; });
    return size;
}

namespace image {

namespace {

struct TypeRow
{
    eDataType dataType;
    const char* name;
};

const TypeRow g_types[] = {
    {eDT_None, "no type"},
    {eDT_Int8, "signed 8 bits"},
    {eDT_UInt8, "unsigned 8 bits"},
    {eDT_Int16, "signed 16 bits"},
    {eDT_UInt16, "unsigned 16 bits"},
    {eDT_Int32, "signed 32 bits"},
    {eDT_UInt32, "unsigned 32 bits"},
    {eDT_Real32, "float 32 bits"},
    {eDT_UInt8, "binary"},
    {eDT_UInt16, "label 16 bits"},
    {eDT_UInt32, "label 32 bits"},
    {eDT_UInt8, "label 8 bits"},
};

const TypeRow& rowOf(eImageBufferType type)
{
    return g_types[isValid(type) ? static_cast<unsigned int>(type) : 0];
}

}  // namespace

bool isValid(eImageBufferType type)
{
    return type >= eIBT_Int8 && type <= eIBT_Label8;
}

unsigned int getImageBufferBaseSize(eImageBufferType type)
{
    return static_cast<unsigned int>(getDataTypeSize(rowOf(type).dataType));
}

eDataType toDataType(eImageBufferType type)
{
    return rowOf(type).dataType;
}

std::string toString(eImageBufferType type)
{
    return std::string(rowOf(type).name) + " (type " + std::to_string(static_cast<unsigned int>(type)) + ")";
}

}
}  // namespace orvik::image
