#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/PlanIndexedInitializers.h"

#include "frame/util/FrameMessages.h"

namespace orvik { namespace imaproc {

namespace {

template<class... Arguments>
std::string textOf(eImageInitializerMessage::domain message, const Arguments&... arguments)
{
    return messageText(getORVIKImageProcessingLogMessageManager(), message, arguments...);
}

boost::shared_ptr<const BaseImageAttribute> lockInput(const WeakImage& input)
{
    const boost::shared_ptr<const BaseImageAttribute> locked = input.lock();
    if (!locked)
        ORVIK_THROW(processor::ORVIKBaseProcessingException, processor::g_baseProcessingLogSource,
                    processor::eOutputInitializerMessage::eAttributeExpired);
    return locked;
}

void checkInput(const WeakImage& input)
{
    if (!input.lock())
        ORVIK_THROW(processor::ORVIKBaseProcessingException, processor::g_baseProcessingLogSource,
                    processor::eOutputInitializerMessage::eNullAttribute);
}

/// The image of an attribute; false with its name when there is none.
BoolResult imageOf(const WeakImage& input, boost::shared_ptr<const image::BaseImage>& image)
{
    const boost::shared_ptr<const BaseImageAttribute> attribute = lockInput(input);
    image = attribute->getImage();
    return image ? success() : failure(textOf(eImageInitializerMessage::eInputUnset, attribute->getObjectName()));
}

}  // namespace

BaseImageProcessingOutputInitializer::~BaseImageProcessingOutputInitializer() = default;
BaseUnaryImageInitializer::~BaseUnaryImageInitializer() = default;
BaseDuplicateImageInitializer::~BaseDuplicateImageInitializer() = default;
BasePromoteUnaryImageInitializer::~BasePromoteUnaryImageInitializer() = default;
BaseCustomImageInfo::~BaseCustomImageInfo() = default;
BaseFromImageCustomImageInfo::~BaseFromImageCustomImageInfo() = default;
BaseCustomImageInitializer::~BaseCustomImageInitializer() = default;
BaseFromImagePlanIndexedInitializer::~BaseFromImagePlanIndexedInitializer() = default;

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

void BaseFromImagePlanIndexedInitializer::initBase(const boost::weak_ptr<BasePlanIndexedAttribute>& out, const WeakImage& in,
                                                   const eFromImagePlanIndexedPolicy& policy)
{
    initBase(out);
    checkInput(in);
    m_input = in;
    m_policy = policy;
}

BoolResult BaseFromImagePlanIndexedInitializer::initAttribute()
{
    boost::shared_ptr<const image::BaseImage> input;
    const BoolResult result = imageOf(m_input, input);
    if (!result)
        return result;
    return initAttribute(static_cast<BasePlanIndexedAttribute&>(*getOutputAttribute()),
                         m_policy == eFIPIP_Planes ? input->getSizeZ() : 1, input->getSizeC(), input->getSizeT());
}

void BaseFromImagePlanIndexedInitializer::initPlanIndexed(unsigned long sizeZ, unsigned long sizeC, unsigned long sizeT,
                                                          BasePlanIndexedColl& coll,
                                                          const CreationFunction& creationFunction)
{
    for (unsigned long t = 0; t < sizeT; ++t)
        for (unsigned long c = 0; c < sizeC; ++c)
            for (unsigned long z = 0; z < sizeZ; ++z)
                if (!coll.getStorage(PlanIndex(z, c, t)))
                    coll.insert(PlanIndex(z, c, t), creationFunction());
}

std::string BaseFromImagePlanIndexedInitializer::createInitializerFormalString() const
{
    return textOf(m_policy == eFIPIP_Planes ? eImageInitializerMessage::eEntryPerPlane
                                            : eImageInitializerMessage::eEntryPerVolume,
                  getOutputAttribute()->getObjectName(), lockInput(m_input)->getObjectName());
}

std::string BaseFromImagePlanIndexedInitializer::createInitializerEvaluatedString() const
{
    boost::shared_ptr<const image::BaseImage> input;
    const BoolResult result = imageOf(m_input, input);
    return result.getValue() ? textOf(eImageInitializerMessage::eEntriesOf, createInitializerFormalString(),
                                      toString(input->getGeometry().getSizes()))
                             : result.getMessage();
}

}}  // namespace orvik::imaproc
