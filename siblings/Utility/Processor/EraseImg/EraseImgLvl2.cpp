#include "siblings/Utility/Processor/EraseImg/EraseImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/processor/ProcessorFactory.h"

#include <cstring>

namespace orvik { namespace imaproc { namespace util {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(EraseImgLvl2)

BoolResult EraseImgLvl2::runDerived()
{
    image::BaseImage& image = *value<OutSubImg2d>();
    const std::size_t lineSize = image.getSizeX() * image::getImageBufferBaseSize(image.getBufferType());
    for (unsigned long t = 0; t < image.getSizeT(); ++t)
        for (unsigned long c = 0; c < image.getSizeC(); ++c)
            for (unsigned long z = 0; z < image.getSizeZ(); ++z)
                for (unsigned long y = 0; y < image.getSizeY(); ++y)
                    std::memset(image.accessLine(y, z, c, t), 0, lineSize);
    return success();
}

}}}  // namespace orvik::imaproc::util
