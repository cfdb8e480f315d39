#include "frame/imaproc/ImagesApartRule.h"

#include "frame/image/SharedMemory.h"
#include "frame/imaproc/BaseImageRules.h"
#include "frame/imaproc/ImageRuleParts.h"

#include <algorithm>
#include <cstdlib>

namespace orvik { namespace imaproc {

namespace {

using details::PairSet;

/// An image and where it lies.
struct PlacedImage
{
    const image::BaseImage* image;  // null while there is none
    image::MemoryExtent extent;
};

bool mayLieSo(const PlacedImage& a, const PlacedImage& b, bool mayBeSame)
{
    if (a.extent.end <= b.extent.first || b.extent.end <= a.extent.first)
        return true;
    return (mayBeSame && isSame(*a.image, *b.image)) || !shareMemory(*a.image, *b.image);
}

class ImagesApartRule : public BaseImageRule
{
public:
    ImagesApartRule(const WeakImage* images, unsigned int nbImages, PairSet compared, PairSet same)
        : m_images(images), m_nbImages(nbImages), m_compared(compared), m_same(same)
    {
    }

    eImageRuleType getImageRuleType() const override { return eIRT_BinaryMixed; }

    bool testRule() const override
    {
        PlacedImage placed[details::g_maxImagesApart];
        for (unsigned int j = 0; j < m_nbImages; ++j) {
            if (!place(j, placed[j]))
                continue;
            for (unsigned int i = 0; i < j; ++i)
                if (placed[i].image && isIn(m_compared, i, j) && !mayLieSo(placed[i], placed[j], isIn(m_same, i, j)))
                    return false;
        }
        return true;
    }

    std::string createRuleFormalString() const override
    {
        std::string text;
        for (unsigned int i = 0; i < m_nbImages; ++i)
            text += (i > 0 ? ", " : "") + nameOf(i);
        text = textOf(eImageRuleMessage::eAllApart, text);
        forEachPair([&](unsigned int i, unsigned int j) {
            if (isIn(m_same, i, j))
                text += textOf(eImageRuleMessage::eButForSame, nameOf(i), nameOf(j));
        });
        return text;
    }

    /// The pairs that fail, a line each; when none does, the condition.
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        const std::string start = createRuleEvaluatedStartString(depth);
        std::string text;
        forEachPair([&](unsigned int i, unsigned int j) {
            PlacedImage a = {}, b = {};
            const bool mayBeSame = isIn(m_same, i, j);
            if (place(i, a) && place(j, b) && !mayLieSo(a, b, mayBeSame))
                text += start
                        + textOf(mayBeSame ? eImageRuleMessage::eSameOrApart : eImageRuleMessage::eApart,
                                 readImage(i, *a.image), readImage(j, *b.image))
                        + readOverlap(i, *a.image, j, *b.image) + "\n";
        });
        return text.empty() ? start + createRuleFormalString() + "\n" : text;
    }

private:
    static bool isIn(PairSet pairs, unsigned int i, unsigned int j) { return (pairs & details::pairOf(i, j)) != 0; }

    template<class F>
    void forEachPair(const F& f) const
    {
        for (unsigned int j = 1; j < m_nbImages; ++j)
            for (unsigned int i = 0; i < j; ++i)
                if (isIn(m_compared, i, j))
                    f(i, j);
    }

    const std::string& nameOf(unsigned int i) const { return lock(m_images[i], true)->getObjectName(); }

    /// False while attribute `i` has no value.
    bool place(unsigned int i, PlacedImage& placed) const
    {
        placed.image = static_cast<const BaseImageAttribute&>(*lock(m_images[i], true)).peekImage();
        if (placed.image)
            placed.extent = extentOf(*placed.image);
        return placed.image != nullptr;
    }

    std::string readImage(unsigned int i, const image::BaseImage& image) const
    {
        return textOf(eImageRuleMessage::eSideWithValue, nameOf(i),
                      textOf(eImageRuleMessage::eSizesAndType, toString(image.getGeometry().getSizes()),
                             toString(image.getBufferType())));
    }
    /// Where b begins as seen from a, by their first samples: distances within what is shared are the same in every run,
    /// which addresses are not.
    std::string readOverlap(unsigned int i, const image::BaseImage& a, unsigned int j, const image::BaseImage& b) const
    {
        const long distance = static_cast<const char*>(b.getLine(0)) - static_cast<const char*>(a.getLine(0));
        if (distance == 0)
            return textOf(eImageRuleMessage::eBeginsAtOnce, nameOf(j), nameOf(i));
        return textOf(distance < 0 ? eImageRuleMessage::eBeginsBefore : eImageRuleMessage::eBeginsAfter, nameOf(j),
                      nameOf(i), std::to_string(std::labs(distance)));
    }

    const WeakImage* const m_images;
    const unsigned int m_nbImages;
    const PairSet m_compared, m_same;
};

/// With room for `N` images of its own, all in the one piece of memory that the rule is made in.
template<unsigned int N>
class ImagesApartRuleOf : public ImagesApartRule
{
public:
    ImagesApartRuleOf(WeakImage* images, unsigned int nbImages, PairSet compared, PairSet same)
        : ImagesApartRule(m_room, nbImages, compared, same)
    {
        std::swap_ranges(images, images + nbImages, m_room);
    }

private:
    WeakImage m_room[N];
};

}  // namespace

processor::RulePtr details::makeImagesApartRule(WeakImage* images, unsigned int nbImages, PairSet compared, PairSet same)
{
    if (nbImages <= 2)
        return makeTogether<ImagesApartRuleOf<2>>(images, nbImages, compared, same);
    if (nbImages <= 6)
        return makeTogether<ImagesApartRuleOf<6>>(images, nbImages, compared, same);
    return makeTogether<ImagesApartRuleOf<g_maxImagesApart>>(images, nbImages, compared, same);
}

processor::RulePtr noInSitu(const WeakImage& a, const WeakImage& b)
{
    WeakImage images[] = {a, b};
    return details::makeImagesApartRule(images, 2, details::pairOf(0, 1), 0);
}

}}  // namespace orvik::imaproc
