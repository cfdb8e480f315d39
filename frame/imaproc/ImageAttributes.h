#pragma once

#include "frame/image/Strips.h"
#include "frame/processor/BaseAttribute.h"

#include <boost/weak_ptr.hpp>

namespace orvik { namespace imaproc {

class ORVIK_API BaseImageAttribute : public processor::BaseAttribute
{
public:
    ~BaseImageAttribute() override;
    /// The image to look at; null when unset.
    virtual boost::shared_ptr<const image::BaseImage> getImage() const = 0;
};

typedef boost::weak_ptr<const BaseImageAttribute> WeakImage;

/// An image that is only read.
class ORVIK_API BaseInputImageAttribute : public BaseImageAttribute
{
public:
    typedef boost::shared_ptr<const image::BaseImage> StorageType;

    ~BaseInputImageAttribute() override;
    void init(const StorageType& value);
    void assign(const StorageType& value) { init(value); }
    const StorageType& getStorage() const { return m_value; }
    boost::shared_ptr<const image::BaseImage> getImage() const override { return m_value; }
    void clear() override;

private:
    StorageType m_value;
};

/// An image that is written.
class ORVIK_API BaseOutputImageAttribute : public BaseImageAttribute
{
public:
    typedef boost::shared_ptr<image::BaseImage> StorageType;

    ~BaseOutputImageAttribute() override;
    void init(const StorageType& value);
    void assign(const StorageType& value) { init(value); }
    const StorageType& getStorage() const { return m_value; }
    boost::shared_ptr<const image::BaseImage> getImage() const override { return m_value; }
    void clear() override;

private:
    StorageType m_value;
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

template<class Strip>
class StripStorage : public BaseStripAttribute
{
public:
    typedef boost::shared_ptr<Strip> StorageType;

    void init(const StorageType& value)
    {
        m_value = value;
        setHasValue(value != nullptr);
    }
    void assign(const StorageType& value) { init(value); }
    const StorageType& getStorage() const { return m_value; }
    boost::shared_ptr<image::BaseImageFragment> getImageStrip() const override { return m_value; }
    void clear() override
    {
        BaseStripAttribute::clear();
        m_value.reset();
    }

private:
    StorageType m_value;
};

class ORVIK_API BaseInputYStrip2dAttribute : public StripStorage<image::InputImageYStrip2d>
{
public:
    typedef BaseInputYStrip2dAttribute StripBase;
    static constexpr bool s_writable = false;
    ~BaseInputYStrip2dAttribute() override;
    const StorageType& getImageYStrip2d() const { return getStorage(); }
};

class ORVIK_API BaseOutputYStrip2dAttribute : public StripStorage<image::OutputImageYStrip2d>
{
public:
    typedef BaseOutputYStrip2dAttribute StripBase;
    static constexpr bool s_writable = true;
    ~BaseOutputYStrip2dAttribute() override;
};

class ORVIK_API BaseInputZStrip3dAttribute : public StripStorage<image::InputImageZStrip3d>
{
public:
    typedef BaseInputZStrip3dAttribute StripBase;
    static constexpr bool s_writable = false;
    ~BaseInputZStrip3dAttribute() override;
    const StorageType& getImageZStrip3d() const { return getStorage(); }
};

class ORVIK_API BaseOutputZStrip3dAttribute : public StripStorage<image::OutputImageZStrip3d>
{
public:
    typedef BaseOutputZStrip3dAttribute StripBase;
    static constexpr bool s_writable = true;
    ~BaseOutputZStrip3dAttribute() override;
    const StorageType& getImageZStrip3d() const { return getStorage(); }
};

class ORVIK_API BaseYStrip2dWithKernelAttribute : public StripStorage<image::InputImageYStrip2dWithKernel>
{
public:
    ~BaseYStrip2dWithKernelAttribute() override;
    const StorageType& getBaseImageYStrip2dWithKernel() const { return getStorage(); }
    unsigned long getStartingKernelSizeX() const { return getStorage()->getMargins().startX; }
    unsigned long getEndingKernelSizeX() const { return getStorage()->getMargins().endX; }
    unsigned long getStartingKernelSizeY() const { return getStorage()->getMargins().startY; }
    unsigned long getEndingKernelSizeY() const { return getStorage()->getMargins().endY; }
};

class ORVIK_API BaseInputYStrip2dWithKernelAttribute : public BaseYStrip2dWithKernelAttribute
{
public:
    typedef BaseInputYStrip2dWithKernelAttribute StripBase;
    static constexpr bool s_writable = false;
    ~BaseInputYStrip2dWithKernelAttribute() override;
    const StorageType& getImageYStrip2dWithKernel() const { return getStorage(); }
};

class ORVIK_API BaseZStrip3dWithKernelAttribute : public StripStorage<image::InputImageZStrip3dWithKernel>
{
public:
    ~BaseZStrip3dWithKernelAttribute() override;
    const StorageType& getBaseImageZStrip3dWithKernel() const { return getStorage(); }
    unsigned long getStartingKernelSizeX() const { return getStorage()->getMargins().startX; }
    unsigned long getEndingKernelSizeX() const { return getStorage()->getMargins().endX; }
    unsigned long getStartingKernelSizeY() const { return getStorage()->getMargins().startY; }
    unsigned long getEndingKernelSizeY() const { return getStorage()->getMargins().endY; }
    unsigned long getStartingKernelSizeZ() const { return getStorage()->getMargins().startZ; }
    unsigned long getEndingKernelSizeZ() const { return getStorage()->getMargins().endZ; }
};

class ORVIK_API BaseInputZStrip3dWithKernelAttribute : public BaseZStrip3dWithKernelAttribute
{
public:
    typedef BaseInputZStrip3dWithKernelAttribute StripBase;
    static constexpr bool s_writable = false;
    ~BaseInputZStrip3dWithKernelAttribute() override;
    const StorageType& getImageZStrip3dWithKernel() const { return getStorage(); }
};

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
class PlanIndexedStorage : public BasePlanIndexedAttribute
{
public:
    typedef boost::shared_ptr<Coll> StorageType;
    typedef typename Coll::Entry Entry;

    void init(const StorageType& value)
    {
        m_value = value;
        setHasValue(value != nullptr);
    }
    void assign(const StorageType& value) { init(value); }
    const StorageType& getStorage() const { return m_value; }
    boost::shared_ptr<BasePlanIndexedColl> accessStorage() const override { return m_value; }
    void initEmpty() override { init(Coll::createColl()); }
    void clear() override
    {
        BasePlanIndexedAttribute::clear();
        m_value.reset();
    }

private:
    StorageType m_value;
};

}}  // namespace orvik::imaproc
