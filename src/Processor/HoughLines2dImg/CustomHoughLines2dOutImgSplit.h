#pragma once

#include "Processor/HoughLines2dImg/HoughLines2dImgLvl3.h"
#include "Processor/HoughLines2dImg/HoughLinesRowsMutexColl.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/imaproc/ImageSplits.h"

namespace orvik { namespace imaproc { namespace fd {

/// The whole accumulator for each strip of the image, with one collection of row locks for all.
class CustomHoughLines2dOutImgSplit
    : public processor::TypedSplit<HoughLines2dImgLvl3, attr::OutImg, BaseImageStripSplit<image::BaseImage>>
{
public:
    /// @throws processor::ORVIKBaseProcessingException for a null image.
    void init(const ImagePtr& image)
    {
        if (!image)
            throwNullInputSharedPtr();
        m_image = image;
        m_rowsMutexColl = boost::make_shared<HoughLinesRowsMutexColl>(image->getSizeY());
    }
    eImageStripSplitType getImageStripSplitType() const override { return eISST_Custom; }
    BoolResult processAttribute(processor::BaseProcessor& child, unsigned long, unsigned long,
                                const core::BaseRequestOrigin&) override
    {
        static_cast<HoughLines2dImgLvl3&>(child).setRowsMutexColl(m_rowsMutexColl);
        return give(child, m_image);
    }

private:
    boost::shared_ptr<HoughLinesRowsMutexColl> m_rowsMutexColl;
};

/// Part of a stage: what the split gives.
struct SharedAccumulator
{
    ImagePtr image;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit>>& splits) const
    {
        const auto split = boost::make_shared<CustomHoughLines2dOutImgSplit>();
        split->init(image);
        splits.push_back(split);
        return success();
    }
};

}}}  // namespace orvik::imaproc::fd
