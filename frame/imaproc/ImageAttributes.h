#pragma once

#include "frame/image/Strips.h"
#include "frame/processor/BaseAttribute.h"

#include <boost/weak_ptr.hpp>

namespace orvik { namespace imaproc {

/// Of an attribute that points to its value: null is none.
template<class Base, class T>
class PointerStorage : public Base
{
public:
    typedef boost::shared_ptr<T> StorageType;

    void init(const StorageType& value)
    {
        m_value = value;
        this->setHasValue(value != nullptr);
    }
    void assign(const StorageType& value) { init(value); }
    const StorageType& getStorage() const { return m_value; }
    void clear() override
    {
        Base::clear();
        m_value.reset();
    }

private:
    StorageType m_value;
};

class ORVIK_API BaseImageAttribute : public processor::BaseAttribute
{
public:
    ~BaseImageAttribute() override;
    /// The image to look at; null when unset.
    virtual boost::shared_ptr<const image::BaseImage> getImage() const = 0;
    /// The same while the attribute holds it: for rules, which look often and keep nothing.
    virtual const image::BaseImage* peekImage() const = 0;
};

typedef boost::weak_ptr<const BaseImageAttribute> WeakImage;

template<class Image>
class ImageStorage : public PointerStorage<BaseImageAttribute, Image>
{
public:
    boost::shared_ptr<const image::BaseImage> getImage() const override { return this->getStorage(); }
    const image::BaseImage* peekImage() const override { return this->getStorage().get(); }
};

/// An image that is only read.
class ORVIK_API BaseInputImageAttribute : public ImageStorage<const image::BaseImage>
{
public:
    ~BaseInputImageAttribute() override;
};

/// An image that is written.
class ORVIK_API BaseOutputImageAttribute : public ImageStorage<image::BaseImage>
{
public:
    ~BaseOutputImageAttribute() override;
};

class ORVIK_API BaseStripAttribute : public processor::BaseAttribute
{
public:
    ~BaseStripAttribute() override;
    /// The strip to look at; null when unset.
    virtual boost::shared_ptr<image::BaseImageFragment> getImageStrip() const = 0;
    /// Type of the strip's samples; no type when unset.
    image::eImageBufferType getImageBufferType() const;
};

template<class StripClass, bool Writable>
class StripStorage : public PointerStorage<BaseStripAttribute, StripClass>
{
public:
    typedef StripClass Strip;
    static constexpr bool s_writable = Writable;

    boost::shared_ptr<image::BaseImageFragment> getImageStrip() const override { return this->getStorage(); }
};

/// Of strips with margins: how far their kernel reads, in samples on each side.
template<class StripClass>
class KernelStripStorage : public StripStorage<StripClass, false>
{
public:
    unsigned long getStartingKernelSizeX() const { return this->getStorage()->getMargins().startX; }
    unsigned long getEndingKernelSizeX() const { return this->getStorage()->getMargins().endX; }
    unsigned long getStartingKernelSizeY() const { return this->getStorage()->getMargins().startY; }
    unsigned long getEndingKernelSizeY() const { return this->getStorage()->getMargins().endY; }
    unsigned long getStartingKernelSizeZ() const { return this->getStorage()->getMargins().startZ; }
    unsigned long getEndingKernelSizeZ() const { return this->getStorage()->getMargins().endZ; }
};

// The kinds of strips, a line each: class, what it stores, under which name it shows it. Of strips with margins there is a
// base before the last one.
#define ORVIK_STRIP_ATTRIBUTE(Name, Base, accessor) \
    class ORVIK_API Name : public Base \
    { \
    public: \
        ~Name() override; \
        const StorageType& accessor() const { return getStorage(); } \
    }
#define ORVIK_STRIP_KIND(Name, Base, accessor) \
    class ORVIK_API Name : public Base \
    { \
    public: \
        typedef Name StripBase; \
        ~Name() override; \
        const StorageType& accessor() const { return getStorage(); } \
    }
typedef StripStorage<image::InputImageYStrip2d, false> InputYStrip2dStorage;
typedef StripStorage<image::OutputImageYStrip2d, true> OutputYStrip2dStorage;
typedef StripStorage<image::InputImageZStrip3d, false> InputZStrip3dStorage;
typedef StripStorage<image::OutputImageZStrip3d, true> OutputZStrip3dStorage;
typedef KernelStripStorage<image::InputImageYStrip2dWithKernel> KernelYStrip2dStorage;
typedef KernelStripStorage<image::InputImageZStrip3dWithKernel> KernelZStrip3dStorage;

ORVIK_STRIP_KIND(BaseInputYStrip2dAttribute, InputYStrip2dStorage, getImageYStrip2d);
ORVIK_STRIP_KIND(BaseOutputYStrip2dAttribute, OutputYStrip2dStorage, getImageYStrip2d);
ORVIK_STRIP_KIND(BaseInputZStrip3dAttribute, InputZStrip3dStorage, getImageZStrip3d);
ORVIK_STRIP_KIND(BaseOutputZStrip3dAttribute, OutputZStrip3dStorage, getImageZStrip3d);
ORVIK_STRIP_ATTRIBUTE(BaseYStrip2dWithKernelAttribute, KernelYStrip2dStorage, getBaseImageYStrip2dWithKernel);
ORVIK_STRIP_ATTRIBUTE(BaseZStrip3dWithKernelAttribute, KernelZStrip3dStorage, getBaseImageZStrip3dWithKernel);
ORVIK_STRIP_KIND(BaseInputYStrip2dWithKernelAttribute, BaseYStrip2dWithKernelAttribute, getImageYStrip2dWithKernel);
ORVIK_STRIP_KIND(BaseInputZStrip3dWithKernelAttribute, BaseZStrip3dWithKernelAttribute, getImageZStrip3dWithKernel);
#undef ORVIK_STRIP_ATTRIBUTE
#undef ORVIK_STRIP_KIND

/// A result or argument of one entry per plane or volume.
class ORVIK_API BasePlanIndexedAttribute : public processor::BaseAttribute
{
public:
    ~BasePlanIndexedAttribute() override;
    virtual boost::shared_ptr<BasePlanIndexedColl> accessStorage() const = 0;
    /// A new empty collection of the attribute's type becomes its value.
    virtual void initEmpty() = 0;
};

template<class Coll>
class PlanIndexedStorage : public PointerStorage<BasePlanIndexedAttribute, Coll>
{
public:
    typedef typename Coll::Entry Entry;

    boost::shared_ptr<BasePlanIndexedColl> accessStorage() const override { return this->getStorage(); }
    void initEmpty() override { this->init(Coll::createColl()); }
};

}}  // namespace orvik::imaproc
