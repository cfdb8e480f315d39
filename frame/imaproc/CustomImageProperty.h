#pragma once

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/BaseRule.h"

#include <vector>

namespace orvik { namespace imaproc {

/// What a property of an image can be checked for.
enum eCheckableImageProperty : unsigned int
{
    eCIP_SizeX = 1,
    eCIP_SizeY = 2,
    eCIP_BufferType = 4
};

/// Properties that an output image must have, told from an input image and whatever the family adds.
class ORVIK_API BaseCustomCheckedImageProperty
{
public:
    virtual ~BaseCustomCheckedImageProperty();
    void initBase(const WeakImage& input);
    void enableCheck(const eCheckableImageProperty& property) { m_checks |= property; }
    bool isChecked(const eCheckableImageProperty& property) const { return (m_checks & property) != 0; }
    /// @throws ORVIKBaseProcessingException when the attribute is gone.
    boost::shared_ptr<const image::BaseImage> getInputImage() const;

    virtual unsigned long getSizeX() const;
    virtual unsigned long getSizeY() const;
    virtual image::eImageBufferType getImageBufferType() const;
    /// The types that an image may have, of which the one above is one; that alone unless the family says otherwise.
    virtual std::vector<image::eImageBufferType> getAllowedImageBufferTypes() const;

private:
    WeakImage m_input;
    unsigned int m_checks = 0;
};

/// The checks that are enabled on the property hold for the image.
ORVIK_API processor::RulePtr customImageProperty(const WeakImage& a,
                                                 const boost::shared_ptr<BaseCustomCheckedImageProperty>& property);

}}  // namespace orvik::imaproc
