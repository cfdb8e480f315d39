#include "siblings/Utility/Processor/EraseImg/EraseImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/image/ImageLines.h"
#include "frame/processor/ProcessorFactory.h"

#include <cstring>

namespace orvik { namespace imaproc { namespace util {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(EraseImgLvl2)

BoolResult EraseImgLvl2::runDerived()
{
    image::BaseImage& image = *value<OutSubImg2d>();
    const std::size_t lineSize = image.getSizeX() * image::getImageBufferBaseSize(image.getBufferType());
    image::forEachLine(image, [&](unsigned long y, unsigned long z, unsigned long c, unsigned long t) {
        std::memset(image.accessLine(y, z, c, t), 0, lineSize);
    });
    return success();
}

}}}  // namespace orvik::imaproc::util
