#pragma once

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/BaseOutputInitializer.h"

namespace orvik { namespace imaproc {

/// Whether a new image is kept in one place; this frame runs in one process and knows one way.
enum eImageInitializerStoragePolicy : unsigned int
{
    eIISP_Local = 0
};

enum ePromoteUnaryType : unsigned int
{
    ePUT_Real = 4  ///< float 32 for all types: holds fractions, and keeps the sign
};

/// Makes an image.
class ORVIK_API BaseImageProcessingOutputInitializer : public processor::BaseOutputInitializer
{
public:
    ~BaseImageProcessingOutputInitializer() override;
    processor::eOutputInitializerType getOutputInitializerType() const override { return processor::eOIT_ImageProcessing; }
    BoolResult initAttribute() override;
    std::string createInitializerEvaluatedString() const override;

protected:
    /// Sizes and sample type of the image to make. False, with the reason, while they are not known.
    virtual BoolResult getOutputGeometry(image::ImageSizes& sizes, image::eImageBufferType& type) const = 0;
};

/// Makes an image of the sizes of an input image.
class ORVIK_API BaseUnaryImageInitializer : public BaseImageProcessingOutputInitializer
{
public:
    ~BaseUnaryImageInitializer() override;
    std::string createInitializerFormalString() const override;

protected:
    /// @throws ORVIKBaseProcessingException for an attribute that was null.
    void initImages(const boost::weak_ptr<BaseOutputImageAttribute>& out, const WeakImage& in);
    BoolResult getOutputGeometry(image::ImageSizes& sizes, image::eImageBufferType& type) const override;
    /// Sample type of the image to make.
    virtual image::eImageBufferType getOutputType(const image::BaseImage& input) const = 0;
    /// The same in words, for when there is no input image yet.
    virtual std::string getDescription() const = 0;

private:
    WeakImage m_input;
};

/// An image of the size of the input, of a given type or of the input's (type 0).
class ORVIK_API BaseDuplicateImageInitializer : public BaseUnaryImageInitializer
{
public:
    ~BaseDuplicateImageInitializer() override;
    void init(const boost::weak_ptr<BaseOutputImageAttribute>& out, const WeakImage& in, const image::eImageBufferType& type,
              const eImageInitializerStoragePolicy& policy);

protected:
    image::eImageBufferType getOutputType(const image::BaseImage& input) const override;
    std::string getDescription() const override;

private:
    image::eImageBufferType m_type = static_cast<image::eImageBufferType>(0);
};

template<class In, class Out>
class DuplicateImageInitializer : public BaseDuplicateImageInitializer
{
};

/// An image of the size of the input, of a type that holds what real-valued results become.
class ORVIK_API BasePromoteUnaryImageInitializer : public BaseUnaryImageInitializer
{
public:
    ~BasePromoteUnaryImageInitializer() override;
    void init(const boost::weak_ptr<BaseOutputImageAttribute>& out, const WeakImage& in, const ePromoteUnaryType& promotion);

protected:
    image::eImageBufferType getOutputType(const image::BaseImage& input) const override;
    std::string getDescription() const override;
};

template<class In, class Out>
class PromoteUnaryImageInitializer : public BasePromoteUnaryImageInitializer
{
};

/// Sizes and type of an image that a family computes.
class ORVIK_API BaseCustomImageInfo
{
public:
    virtual ~BaseCustomImageInfo();
    virtual unsigned long getSizeX() const = 0;
    virtual unsigned long getSizeY() const = 0;
    virtual unsigned long getSizeZ() const = 0;
    virtual unsigned long getSizeC() const = 0;
    virtual unsigned long getSizeT() const = 0;
    virtual image::eImageBufferType getImageBufferType() const = 0;
};

/// Takes from an input image what the family does not override.
class ORVIK_API BaseFromImageCustomImageInfo : public BaseCustomImageInfo
{
public:
    ~BaseFromImageCustomImageInfo() override;
    void initBase(const WeakImage& input) { m_input = input; }
    /// @throws ORVIKBaseProcessingException when the attribute is gone or has no value.
    boost::shared_ptr<const image::BaseImage> getInputImage() const;
    unsigned long getSizeX() const override { return getInputImage()->getSizeX(); }
    unsigned long getSizeY() const override { return getInputImage()->getSizeY(); }
    unsigned long getSizeZ() const override { return getInputImage()->getSizeZ(); }
    unsigned long getSizeC() const override { return getInputImage()->getSizeC(); }
    unsigned long getSizeT() const override { return getInputImage()->getSizeT(); }
    image::eImageBufferType getImageBufferType() const override { return getInputImage()->getBufferType(); }

private:
    WeakImage m_input;
};

/// An image of the sizes and type that a family computes.
class ORVIK_API BaseCustomImageInitializer : public BaseImageProcessingOutputInitializer
{
public:
    ~BaseCustomImageInitializer() override;
    void init(const boost::weak_ptr<BaseOutputImageAttribute>& out, const boost::shared_ptr<BaseCustomImageInfo>& info);
    std::string createInitializerFormalString() const override;

protected:
    BoolResult getOutputGeometry(image::ImageSizes& sizes, image::eImageBufferType& type) const override;

private:
    boost::shared_ptr<BaseCustomImageInfo> m_info;
};

template<class Out>
class CustomImageInitializer : public BaseCustomImageInitializer
{
};

template<class In, class Out>
processor::InitializerPtr duplicateInOut(const boost::shared_ptr<Out>& out, const boost::shared_ptr<In>& in,
                                         const image::eImageBufferType& type,
                                         const eImageInitializerStoragePolicy& policy = eIISP_Local)
{
    const boost::shared_ptr<DuplicateImageInitializer<In, Out>> initializer =
        makeTogether<DuplicateImageInitializer<In, Out>>();
    initializer->init(out, in, type, policy);
    return initializer;
}

template<class In, class Out>
processor::InitializerPtr promoteUnary(const boost::shared_ptr<Out>& out, const boost::shared_ptr<In>& in,
                                       const ePromoteUnaryType& promotion = ePUT_Real)
{
    const boost::shared_ptr<PromoteUnaryImageInitializer<In, Out>> initializer =
        makeTogether<PromoteUnaryImageInitializer<In, Out>>();
    initializer->init(out, in, promotion);
    return initializer;
}

/// Enters such an initialiser for each of some outputs.
template<class In, class... Out>
void promoteEach(processor::InitializerMap& initializers, const boost::shared_ptr<In>& in,
                 const boost::shared_ptr<Out>&... outs)
{
    (void(initializers[Out::getObjectNameStr()] = promoteUnary(outs, in)), ...);
}

template<class Out>
processor::InitializerPtr customOutput(const boost::shared_ptr<Out>& out, const boost::shared_ptr<BaseCustomImageInfo>& info)
{
    const boost::shared_ptr<CustomImageInitializer<Out>> initializer = makeTogether<CustomImageInitializer<Out>>();
    initializer->init(out, info);
    return initializer;
}

}}  // namespace orvik::imaproc
