#include "frame/imaproc/ImageInitializers.h"

#include "frame/imaproc/ImageInitializerParts.h"

namespace orvik { namespace imaproc {

BaseImageProcessingOutputInitializer::~BaseImageProcessingOutputInitializer() = default;
BaseUnaryImageInitializer::~BaseUnaryImageInitializer() = default;
BaseDuplicateImageInitializer::~BaseDuplicateImageInitializer() = default;
BasePromoteUnaryImageInitializer::~BasePromoteUnaryImageInitializer() = default;
BaseCustomImageInfo::~BaseCustomImageInfo() = default;
BaseFromImageCustomImageInfo::~BaseFromImageCustomImageInfo() = default;
BaseCustomImageInitializer::~BaseCustomImageInitializer() = default;

BoolResult BaseImageProcessingOutputInitializer::initAttribute()
{
    image::ImageSizes sizes;
    image::eImageBufferType type = image::eImageBufferType();
    const BoolResult result = getOutputGeometry(sizes, type);
    if (result.getValue())
        static_cast<BaseOutputImageAttribute&>(*getOutputAttribute()).init(image::createImage(type, sizes));
    return result;
}

std::string BaseImageProcessingOutputInitializer::createInitializerEvaluatedString() const
{
    image::ImageSizes sizes;
    image::eImageBufferType type = image::eImageBufferType();
    const BoolResult result = getOutputGeometry(sizes, type);
    return result.getValue() ? textOf(eImageInitializerMessage::eNewImage, getOutputAttribute()->getObjectName(),
                                      toString(sizes), toString(type))
                             : result.getMessage();
}

void BaseUnaryImageInitializer::initImages(const boost::weak_ptr<BaseOutputImageAttribute>& out, const WeakImage& in)
{
    initBase(out);
    checkInput(in);
    m_input = in;
}

BoolResult BaseUnaryImageInitializer::getOutputGeometry(image::ImageSizes& sizes, image::eImageBufferType& type) const
{
    boost::shared_ptr<const image::BaseImage> input;
    const BoolResult result = imageOf(m_input, input);
    if (result.getValue()) {
        sizes = input->getGeometry().getSizes();
        type = getOutputType(*input);
    }
    return result;
}

std::string BaseUnaryImageInitializer::createInitializerFormalString() const
{
    return textOf(eImageInitializerMessage::eLikeInput, getOutputAttribute()->getObjectName(),
                  lockInput(m_input)->getObjectName(), getDescription());
}

void BaseDuplicateImageInitializer::init(const boost::weak_ptr<BaseOutputImageAttribute>& out, const WeakImage& in,
                                         const image::eImageBufferType& type, const eImageInitializerStoragePolicy&)
{
    initImages(out, in);
    m_type = type;
}

image::eImageBufferType BaseDuplicateImageInitializer::getOutputType(const image::BaseImage& input) const
{
    return image::isValid(m_type) ? m_type : input.getBufferType();
}

std::string BaseDuplicateImageInitializer::getDescription() const
{
    return image::isValid(m_type) ? toString(m_type) : textOf(eImageInitializerMessage::eOfItsType);
}

void BasePromoteUnaryImageInitializer::init(const boost::weak_ptr<BaseOutputImageAttribute>& out, const WeakImage& in,
                                            const ePromoteUnaryType&)
{
    initImages(out, in);
}

image::eImageBufferType BasePromoteUnaryImageInitializer::getOutputType(const image::BaseImage&) const
{
    return image::eIBT_Real32;
}

std::string BasePromoteUnaryImageInitializer::getDescription() const
{
    return toString(image::eIBT_Real32);
}

boost::shared_ptr<const image::BaseImage> BaseFromImageCustomImageInfo::getInputImage() const
{
    const boost::shared_ptr<const image::BaseImage> image = lockInput(m_input)->getImage();
    if (!image)
        ORVIK_THROW(processor::ORVIKBaseProcessingException, g_imageProcessingLogSource,
                    eImageInitializerMessage::eCustomInputUnset);
    return image;
}

void BaseCustomImageInitializer::init(const boost::weak_ptr<BaseOutputImageAttribute>& out,
                                      const boost::shared_ptr<BaseCustomImageInfo>& info)
{
    initBase(out);
    m_info = info;
}

BoolResult BaseCustomImageInitializer::getOutputGeometry(image::ImageSizes& sizes, image::eImageBufferType& type) const
{
    sizes = image::ImageSizes(m_info->getSizeX(), m_info->getSizeY(), m_info->getSizeZ(), m_info->getSizeC(),
                              m_info->getSizeT());
    type = m_info->getImageBufferType();
    return success();
}

std::string BaseCustomImageInitializer::createInitializerFormalString() const
{
    return textOf(eImageInitializerMessage::eAsComputed, getOutputAttribute()->getObjectName());
}

}}  // namespace orvik::imaproc
