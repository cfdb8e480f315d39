#pragma once

#include "Processor/HoughLines2dImg/HoughLinesRowsMutexColl.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/imaproc/ImageSplits.h"

namespace orvik { namespace imaproc { namespace fd {

/// The whole accumulator for each strip of the image, with one collection of row locks for all.
template<class Lvl3, class Out>
class HoughLinesOutImgSplit : public processor::TypedSplit<Lvl3, Out, BaseImageStripSplit<image::BaseImage>>
{
public:
    /// @throws processor::ORVIKBaseProcessingException for a null image.
    void init(const ImagePtr& image)
    {
        if (!image)
            this->throwNullInputSharedPtr();
        this->m_image = image;
        m_rowsMutexColl = boost::make_shared<HoughLinesRowsMutexColl>(image->getSizeY());
    }
    eImageStripSplitType getImageStripSplitType() const override { return eISST_Custom; }
    BoolResult processAttribute(processor::BaseProcessor& child, unsigned long, unsigned long,
                                const core::BaseRequestOrigin&) override
    {
        static_cast<Lvl3&>(child).setRowsMutexColl(m_rowsMutexColl);
        return this->give(child, this->m_image);
    }

private:
    boost::shared_ptr<HoughLinesRowsMutexColl> m_rowsMutexColl;
};

/// Part of a stage: what the split gives.
template<class Split>
struct SharedAccumulator
{
    ImagePtr image;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit>>& splits) const
    {
        const auto split = boost::make_shared<Split>();
        split->init(image);
        splits.push_back(split);
        return success();
    }
};

}}}  // namespace orvik::imaproc::fd
