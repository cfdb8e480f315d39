#pragma once

#include "frame/image/BufferType.h"
#include "frame/serialization/PlanIndexedColl.h"

#include <boost/shared_ptr.hpp>

#include <string>

namespace orvik { namespace image {

/// Numbers of samples along each axis: X columns, Y lines, Z slices, C channels, T times. X runs fastest.
struct ImageSizes
{
    ImageSizes(unsigned long sizeX = 1, unsigned long sizeY = 1, unsigned long sizeZ = 1, unsigned long sizeC = 1,
               unsigned long sizeT = 1)
        : x(sizeX), y(sizeY), z(sizeZ), c(sizeC), t(sizeT)
    {
    }

    unsigned long x, y, z, c, t;
};

ORVIK_API bool operator==(const ImageSizes& a, const ImageSizes& b);
/// "640 x 480 x 1 x 1 x 1".
ORVIK_API std::string toString(const ImageSizes& sizes);

/// Distances in bytes between neighbours along each axis but X, whose samples always follow one another. May be
/// negative, and 0 where the size is 1.
struct ImageStrides
{
    ImageStrides(long strideY = 0, long strideZ = 0, long strideC = 0, long strideT = 0)
        : y(strideY), z(strideZ), c(strideC), t(strideT)
    {
    }

    long y, z, c, t;
};

enum eVolumeGeometryType : unsigned int
{
    eVGT_Plane = 0,
    eVGT_Volume = 1
};

enum eColorGeometryType : unsigned int
{
    eCGT_Single = 0,
    eCGT_Multiple = 1
};

/// Sizes, sample type and what follows from them.
class ImageGeometry
{
public:
    ImageGeometry(const ImageSizes& sizes, eImageBufferType type) : m_sizes(sizes), m_type(type) {}

    const ImageSizes& getSizes() const { return m_sizes; }
    const eImageBufferType& getBufferType() const { return m_type; }
    eVolumeGeometryType getVolumeGeometryType() const { return m_sizes.z > 1 ? eVGT_Volume : eVGT_Plane; }
    eColorGeometryType getColorGeometryType() const { return m_sizes.c > 1 ? eCGT_Multiple : eCGT_Single; }

private:
    ImageSizes m_sizes;
    eImageBufferType m_type;
};

class ImagePlanGeometry
{
public:
    ImagePlanGeometry(unsigned long sizeX, unsigned long sizeY, eImageBufferType type)
        : m_sizeX(sizeX), m_sizeY(sizeY), m_type(type)
    {
    }

    unsigned long getSizeX() const { return m_sizeX; }
    unsigned long getSizeY() const { return m_sizeY; }
    const eImageBufferType& getBufferType() const { return m_type; }

private:
    unsigned long m_sizeX, m_sizeY;
    eImageBufferType m_type;
};

/// One plane of an image: where its lines lie. A light handle; the image keeps the memory alive.
class BasePlanStorage
{
public:
    BasePlanStorage(char* origin, long strideY, const ImagePlanGeometry& geometry)
        : m_origin(origin), m_strideY(strideY), m_geometry(geometry)
    {
    }

    const ImagePlanGeometry& getPlanGeometry() const { return m_geometry; }
    const void* getLine(unsigned long y) const { return m_origin + static_cast<long>(y) * m_strideY; }
    void* accessLine(unsigned long y) { return m_origin + static_cast<long>(y) * m_strideY; }

private:
    char* m_origin;
    long m_strideY;
    ImagePlanGeometry m_geometry;
};

/// An image: planes of samples of one type, addressed by PlanIndex(z, c, t). Views share the memory of their image.
class ORVIK_API BaseImage
{
public:
    /// The frame's own way to make images; users call the functions below.
    BaseImage(const boost::shared_ptr<void>& memory, char* origin, const ImageGeometry& geometry,
              const ImageStrides& strides, bool hasSlack);
    virtual ~BaseImage();

    unsigned long getSizeX() const { return m_geometry.getSizes().x; }
    unsigned long getSizeY() const { return m_geometry.getSizes().y; }
    unsigned long getSizeZ() const { return m_geometry.getSizes().z; }
    unsigned long getSizeC() const { return m_geometry.getSizes().c; }
    unsigned long getSizeT() const { return m_geometry.getSizes().t; }
    const eImageBufferType& getBufferType() const { return m_geometry.getBufferType(); }
    const ImageGeometry& getGeometry() const { return m_geometry; }
    const ImageStrides& getStrides() const { return m_strides; }
    /// Whether samples are one unsigned byte each: types 2, 8 and 11. Only these can hold classes of pixels in place.
    bool hasBinary8BitsStorage() const;
    /// Whether each line may be read and written up to the next multiple of 64 samples. True for the frame's own
    /// images; the bytes between the lines of a wrapped buffer belong to somebody else.
    bool hasSlack() const { return m_hasSlack; }

    // NOLINTNEXTLINE(readability-const-return-type): the planes of an image that is const are not written to
    const BasePlanStorage getPlanStorage(const PlanIndex& index) const { return planStorage(index); }
    BasePlanStorage getPlanStorage(const PlanIndex& index) { return planStorage(index); }

    /// First sample of a line.
    const void* getLine(unsigned long y, unsigned long z = 0, unsigned long c = 0, unsigned long t = 0) const
    {
        return planStorage(PlanIndex(z, c, t)).getLine(y);
    }
    void* accessLine(unsigned long y, unsigned long z = 0, unsigned long c = 0, unsigned long t = 0)
    {
        return planStorage(PlanIndex(z, c, t)).accessLine(y);
    }

    /// A view of `sizeZ` slices from `index`, of one channel and one time, that shares this image's memory.
    boost::shared_ptr<const BaseImage> getView(const PlanIndex& index, unsigned long sizeZ) const;
    boost::shared_ptr<BaseImage> getView(const PlanIndex& index, unsigned long sizeZ);
    /// A view of the first volume with Y and Z exchanged: its slice `i` has line `i` of every slice of this image.
    boost::shared_ptr<BaseImage> getViewAlongZ();

private:
    BasePlanStorage planStorage(const PlanIndex& index) const;
    boost::shared_ptr<BaseImage> makeView(const PlanIndex& index, unsigned long sizeZ) const;

    boost::shared_ptr<void> m_memory;
    char* m_origin;
    ImageGeometry m_geometry;
    ImageStrides m_strides;
    bool m_hasSlack;
};

/// A new image with all samples 0. Its lines start at multiples of 64 bytes and are padded to multiples of 64 samples.
/// @throws ORVIKImageProcessingException for a type outside 1 to 11, a size of 0, or sizes whose product overflows.
/// @throws std::bad_alloc when there is not enough memory.
ORVIK_API boost::shared_ptr<BaseImage> createImage(eImageBufferType type, const ImageSizes& sizes);

/// An image of the sizes and planes of another, with a sample type of its own.
ORVIK_API boost::shared_ptr<BaseImage> createImageLike(const BaseImage& image, eImageBufferType type);

/// An image on a caller's buffer, without copying. `data` is the sample (0, 0, 0, 0, 0). All-zero strides stand for
/// lines, slices, channels and times that follow one another without gaps. Bytes outside the samples are never read or
/// written. `keepAlive` is held as long as the image or one of its views lives; without it the buffer must outlive them.
/// @throws ORVIKImageProcessingException as createImage, and for a null or misaligned buffer, or strides that are no
/// multiples of the sample's size or so small that samples would overlap.
ORVIK_API boost::shared_ptr<BaseImage> wrapBuffer(void* data, eImageBufferType type, const ImageSizes& sizes,
                                                  const ImageStrides& strides = ImageStrides(),
                                                  const boost::shared_ptr<void>& keepAlive = boost::shared_ptr<void>());
ORVIK_API boost::shared_ptr<const BaseImage> wrapBuffer(
    const void* data, eImageBufferType type, const ImageSizes& sizes, const ImageStrides& strides = ImageStrides(),
    const boost::shared_ptr<void>& keepAlive = boost::shared_ptr<void>());

/// Copies samples from a buffer of the image's sample type and sizes into the image; strides as for wrapBuffer.
ORVIK_API void copyIn(BaseImage& image, const void* data, const ImageStrides& strides = ImageStrides());
/// Copies the image's samples into a buffer; strides as for wrapBuffer.
ORVIK_API void copyOut(const BaseImage& image, void* data, const ImageStrides& strides = ImageStrides());

}}  // namespace orvik::image
